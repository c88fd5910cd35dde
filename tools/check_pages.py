#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""check_pages.py [--renew] ROOT: fails unless the pages (*.md in ROOT, and in docs/ with its folders) are true to the tree.

A block of code under a comment with a file's name shows that file word for word, its licence line left out:

    <!-- examples/quickstart/main.cpp -->
    ```cpp
    ...
    ```

With --renew such blocks are copied from their files first. What a page links to, or shows as a picture, is there.
docs/README.md links to every page in docs/: the site's contents are made of it."""

import pathlib
import re
import sys

CODE = re.compile(r"^```\w*\n.*?^```$|`[^`\n]*`", re.M | re.S)
SHOWN = re.compile(r"^<!-- (\S+) -->\n(```\w*\n)?(?(2)(.*?)^```$)", re.M | re.S)
LINK = re.compile(r"\]\(([^)\s#]+)[^)]*\)")


def program(file):
    return re.sub(r"\A(//|#) SPDX-License-Identifier: .*\n", "", file.read_text()).strip()


def complaints(root, page):
    text = page.read_text()
    for name, _, block in SHOWN.findall(text):
        if not (root / name).is_file():
            yield f"there is no {name}"
        elif block.strip() != program(root / name):
            yield f"its program differs from {name}; ./dev docs copies it again"
    for target in LINK.findall(CODE.sub("", text)):
        if not re.match(r"\w+:", target) and not (page.parent / target).exists():
            yield f"there is no {target}"


def renewed(root, match):
    name, begin, block = match.groups()
    if not begin or not (root / name).is_file():
        return match[0]
    return f"<!-- {name} -->\n{begin}{program(root / name)}\n```"


def main(root, renews):
    pages = sorted([*root.glob("*.md"), *root.glob("docs/**/*.md")])
    if renews:
        for page in pages:
            page.write_text(SHOWN.sub(lambda match: renewed(root, match), page.read_text()))
    found = [f"{page.relative_to(root)}: {what}" for page in pages for what in complaints(root, page)]
    contents = root / "docs" / "README.md"
    named = {(contents.parent / target).resolve() for target in LINK.findall(contents.read_text())} | {contents.resolve()}
    found += [f"docs/README.md: does not name {page.relative_to(root)}" for page in pages
              if page.is_relative_to(root / "docs") and page.resolve() not in named]
    if found:
        sys.exit("\n".join(found))


main(pathlib.Path(sys.argv[-1]), "--renew" in sys.argv)
