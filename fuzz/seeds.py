#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""seeds.py TARGET FOLDER: writes inputs for a fuzz target to begin with, made of the tables of the tests."""
import itertools
import pathlib
import plistlib
import re
import struct
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
NAMED = {"r": "\r", "n": "\n", "t": "\t", "0": "\0", "\\": "\\"}


def unescaped(text):
    """A cell without its escapes, which CaseTable.h has."""
    def one(match):
        escape = match.group(1)
        count, _, repeated = escape[1:].partition(";")
        if escape[0] == "*":
            return unescaped(repeated) * int(count)
        return NAMED.get(escape) or chr(int(escape[1:], 16))
    return re.sub(r"\\(\*\d+;(?:\\x..|.)|x[0-9A-Fa-f]{2}|[rnt0\\])", one, text)


def rows(*tables):
    text = "\n".join((ROOT / f"tests/data/{table}.tsv").read_bytes().decode("latin-1") for table in tables)
    cells = [line.split("\t") for line in text.split("\n") if line and not line.startswith("#")]
    return [[unescaped(cell).encode("latin-1") for cell in row] for row in cells]


def answers():
    whole = [row[1] for row in rows("answers") if len(row[1]) < 2000 and b"\x1e" not in row[1]]
    single = [bytes([i % 12, i % 5]) + answer for i, answer in enumerate(whole)]
    return single + [b"\x1e".join(single[i:i + 4]) for i in range(0, len(single), 4)]


def forks():
    rest = bytes(24) + struct.pack(">HHH4sHHHhLL", 28, 50, 0, b"url ", 0, 10, 128, -1, 0, 0)
    fork = struct.pack(">LLLL", 256, 263, 7, len(rest)).ljust(256, b"\0") + b"\0\0\0\3abc" + rest
    double = struct.pack(">LL16sHLLLLLL", 0x51607, 0x20000, b"", 2, 9, 50, 32, 2, 82, len(fork)) + bytes(32) + fork
    binary = plistlib.dumps({"URL": "http://h/"}, fmt=plistlib.FMT_BINARY)
    return [fork, double, binary, b"file://localhost/a%20b?c#d"] + [row[1] for row in rows("link_files")]


SEEDS = {
    "answers": answers,
    "gate": lambda: map(bytes, itertools.product((0, 2, 4, 8, 10, 12), (3, 15), (11, 5, 6), (15, 12))),
    "scan": lambda: [bytes([kind]) + bytes(range(64)) for kind in range(5)],
    "page": lambda: [(ROOT / "examples/gallery/index.html").read_bytes(), b'<head><base href="b/"></head>\xc3\xa9\x8e'],
    "resolve": lambda: [b"\x1e".join(row[:2]) for row in rows("resolved_links")],
    "url": lambda: [row[0] for row in rows("urls", "typed_urls", "credentials", "printable")],
    "head": lambda: [row[1][:row[1].find(b"\r\n\r\n") + 4] for row in rows("answers")],
    "name": lambda: [b"\x1e".join(row[:3]) for row in rows("suggested_filenames")],
    "resourcefork": forks,
    "script": lambda: [row[0] for row in rows("scripts")],
    "record": lambda: [b"QFAL\x01\x01" + bytes(36) + b"\x02\0/a", b'{"kind":"open","texts":["http://h/","file:///"]}',
                       b'{"kind":"get-url","texts":["a"],"activation-token":"t","identity":"i","deadline":5}'],
    "file": lambda: [b"0[General]\nsendReferer=yes\ndownloadsAhead=99\nDestinationDirectory=@ByteArray(QFAL)\n"
                     b"x=@Variant(\\0\\0)\n"] + [b"1" + row[2] for row in rows("globs")],
    "hfspath": lambda: [b"\0/\0a\0:\0b", "/ä:".encode("utf-16-be")],
}

for number, seed in enumerate(SEEDS[sys.argv[1]]()):
    (pathlib.Path(sys.argv[2]) / f"seed-{number}").write_bytes(seed)
