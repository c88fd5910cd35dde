#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""make_strings.py DIR: the same 10,000 texts of 20 to 80 bytes as a bundle (Info.plist, en.lproj) and as the source of an
ICU resource bundle (icu/en.txt); keys.txt has their keys, one a line."""
import pathlib
import random
import sys

WORDS = ("open close file picture language window größe über naïve 语言 设置 保存 الصورة страница album cache again now "
         "the of to").split()
AREAS = "settings toolbar gallery album editor export login account update about".split()
KINDS = "title label hint error button".split()
INFORMATION = """<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict><key>CFBundleIdentifier</key><string>org.example.benchmark</string></dict></plist>
"""


def texts():
    random.seed(7)
    rows = {}
    while len(rows) < 10000:
        key = f"{random.choice(AREAS)}.{random.choice(KINDS)}.{random.randrange(10**6)}"
        size, text = random.randint(20, 80), ""
        while len(text.encode()) < size:
            text += (" " if text else "") + random.choice(WORDS)
        rows[key] = text
    return rows


def main():
    folder = pathlib.Path(sys.argv[1])
    rows = texts()
    files = {
        "keys.txt": "".join(f"{key}\n" for key in rows),
        "Info.plist": INFORMATION,
        "en.lproj/Localizable.strings": "".join(f'"{key}" = "{text}";\n' for key, text in rows.items()),
        "icu/en.txt": "en {\n" + "".join(f'"{key}" {{ "{text}" }}\n' for key, text in rows.items()) + "}\n",
    }
    for name, text in files.items():
        path = folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")


main()
