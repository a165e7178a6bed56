#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Fails when a translation is unfinished or has other placeholders, blanks at its ends or mnemonics than its source, or
when one Alt key reaches two things in a window or menu. Usage: translations.py DESKTOP_FOLDER"""

import re
import sys
import xml.etree.ElementTree as xml
from pathlib import Path

failures = []


def mnemonics(text):
    return re.findall("&(.)", text.replace("&&", "").lower())


def shape(text):
    blanks = len(text) - len(text.lstrip()), len(text) - len(text.rstrip())
    return re.findall(r"%(?:[d@sn]|\d+)", text), blanks, len(mnemonics(text))


def read_catalogue(path):
    texts = {}
    for context in xml.parse(path).iter("context"):
        for message in context.iter("message"):
            source, translation = message.findtext("source"), message.find("translation")
            for form in translation.findall("numerusform") or [translation]:
                if translation.get("type") or not form.text or shape(form.text) != shape(source):
                    failures.append(f"{path.name}: {source!r} became {form.text!r}")
            texts[context.findtext("name"), source] = translation.text
    return texts


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


folder = Path(sys.argv[1])
catalogues = [read_catalogue(path) for path in folder.glob("translations/*.ts")]
for ui in folder.glob("*.ui"):
    for texts in [{}, *catalogues]:
        check_mnemonics(ui, texts)
sys.exit("\n".join(failures) or len(catalogues) < 2)
