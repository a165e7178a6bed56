#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Fails when a translation is unfinished or has other placeholders, blanks at its ends or mnemonics than its source, or
when one Alt key reaches two things in a window or menu. Usage: translations.py DESKTOP_FOLDER"""

import re
import sys
import xml.etree.ElementTree as xml
from pathlib import Path


def mnemonics(text):
    return re.findall("&(.)", text.replace("&&", "").lower())


def shape(text):
    return re.findall(r"%(?:[d@sn]|\d+)|^\s+|\s+$", text), len(mnemonics(text))


def read_catalogue(path):
    for context in xml.parse(path).iter("context"):
        for message in context.iter("message"):
            source, translation = message.findtext("source"), message.find("translation")
            for form in translation.findall("numerusform") or [translation]:
                if translation.get("type") or not form.text or shape(form.text) != shape(source):
                    failures.append(f"{path.name}: {source!r} became {form.text!r}")
            yield (context.findtext("name"), source), translation.text


def check_mnemonics(ui, texts):
    """Buttons, labels and menu titles are one group; the commands of each menu are another."""
    root = xml.parse(ui).getroot()

    def letters(elements, name):
        sources = [e.findtext(f"property[@name='{name}']/string") or "" for e in elements]
        return sum((mnemonics(texts.get((root.findtext("class"), s), s)) for s in sources), [])

    menus = root.findall(".//widget[@class='QMenu']")
    groups = [letters(root.iter("widget"), "text") + letters(menus, "title")]
    for menu in menus:
        names = {a.get("name") for a in menu.findall("addaction")}
        groups.append(letters((a for a in root.iter("action") if a.get("name") in names), "text"))
    failures.extend(f"{ui.name}: {group}" for group in groups if len(group) != len(set(group)))


failures = []
catalogues = [dict(read_catalogue(path)) for path in Path(sys.argv[1]).glob("translations/*.ts")]
for window in Path(sys.argv[1]).glob("*.ui"):
    for catalogue in [{}, *catalogues]:
        check_mnemonics(window, catalogue)
sys.exit("\n".join(failures) or len(catalogues) < 2)
