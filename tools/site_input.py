#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""site_input.py ROOT FOLDER: copies pages and public headers to the folder as Doxygen takes them. No line moves.

Pages link to files, so that they can be read where they lie. In the site a page is named by a label, and a header by its
path: a link to anything else that lies in the tree keeps its text alone. The site's pictures lie in one folder, where each
has the name of its path, for two may be called alike.

What a header says before its namespace is about the file; Doxygen would take it for the namespace's description."""

import os
import pathlib
import re
import shutil
import sys

CODE = re.compile(r"`[^`]+`")
LINK = re.compile(r"(!?)\[([^]]*)\]\(([^)\s]+)\)")


def label(page):
    if page == "README.md":
        return "mainpage"
    return "page_" + re.sub(r"\W", "_", page.removesuffix(".md"))


def picture_name(path):
    return path.replace("/", "-")


def in_site(match, page):
    mark, text, target = match.groups()
    if re.match(r"\w+:|#", target):
        return match[0]
    path = os.path.normpath(os.path.join(os.path.dirname(page), target))
    if mark:
        return f"![{text}]({picture_name(path)})"
    if path.endswith(".md"):
        command = "subpage" if page == "docs/README.md" else "ref"  # the contents of the site are its tree
        return f'\\{command} {label(path)} "{text}"'
    if path.endswith(".h") and path.startswith("KXFoundation/"):
        return f'\\ref {path} "{text}"'
    return text


def page_lines(page, text):
    titled = fenced = False
    for line in text.splitlines():
        if line.startswith("```"):
            fenced = not fenced
        elif not fenced:
            line = LINK.sub(lambda match: in_site(match, page), line)
            # Doxygen takes away a percent sign before a word, in code too.
            line = CODE.sub(lambda match: re.sub(r"%(?=[A-Za-z])", "%%", match[0]), line)
            if not titled and line.startswith("# "):
                titled = True
                line += f" {{#{label(page)}}}"
        yield line


def converted(name, text):
    if name.endswith(".md"):
        return "\n".join(page_lines(name, text)) + "\n"
    return re.sub(r"\n\n((?:///.*\n)+)(?=namespace )", r"\n/// \\file\n\1", text)


root, folder = map(pathlib.Path, sys.argv[1:])
headers = [path for path in (root / "KXFoundation").rglob("*.h") if "Modules" not in path.parts]
for path in [*root.glob("*.md"), *(root / "docs").rglob("*.md"), *headers]:
    name = str(path.relative_to(root))
    (folder / name).parent.mkdir(parents=True, exist_ok=True)
    (folder / name).write_text(converted(name, path.read_text()))
(folder / "pictures").mkdir()
for place in ("docs/images", "tests/golden/pictures"):
    for path in (root / place).rglob("*.png"):
        shutil.copy(path, folder / "pictures" / picture_name(str(path.relative_to(root))))
