#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""debian_changelog.py ROOT MAINTAINER TIME: prints debian/changelog, made from ROOT/CHANGELOG.md.

TIME (seconds since 1970) dates a version that is marked as unreleased. It is in that version's number too, which sorts
before the one that will be released. The revision, 0kx1, sorts before the first that Debian itself would make.
"""

import datetime
import email.utils
import pathlib
import re
import sys
import textwrap

HEADING = re.compile(r"## (\d+\.\d+\.\d+) \((?:unreleased|(\d{4}-\d\d-\d\d))\)$")


def entries(changelog):
    """(version, date or None, items) of each section, in order."""
    found = []
    for line in changelog.splitlines():
        if line.startswith("## "):
            heading = HEADING.match(line)
            if not heading:
                sys.exit(f'CHANGELOG.md: "{line}" is neither "## 1.2.3 (unreleased)" nor "## 1.2.3 (2026-01-31)"')
            found.append((heading[1], heading[2], []))
        elif line.startswith("- "):
            found[-1][2].append(line[2:])
        elif line.startswith("  "):
            found[-1][2][-1] += " " + line.strip()
    return found


def printed(version, date, items, maintainer, time):
    if date:
        number, when = version, datetime.datetime.fromisoformat(date).replace(tzinfo=datetime.timezone.utc)
    else:
        when = datetime.datetime.fromtimestamp(time, datetime.timezone.utc)
        number = f"{version}~{when:%Y%m%d.%H%M%S}"
    print(f"kxfoundation ({number}-0kx1) {'bookworm' if date else 'UNRELEASED'}; urgency=medium\n")
    for item in items:
        print(textwrap.fill(item, 80, initial_indent="  * ", subsequent_indent="    ", break_on_hyphens=False))
    print(f"\n -- {maintainer}  {email.utils.format_datetime(when)}\n")


def main():
    root, maintainer, time = pathlib.Path(sys.argv[1]), sys.argv[2], int(sys.argv[3])
    released = (root / "VERSION").read_text().strip()
    sections = entries((root / "CHANGELOG.md").read_text())
    if not sections or sections[0][0] != released:
        sys.exit(f"VERSION says {released}, the first section of CHANGELOG.md does not")
    for section in sections:
        printed(*section, maintainer, time)


main()
