#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""site_page.py PAGE: the Markdown page as Doxygen takes it, which ./dev docs runs in the root folder.

Pages link to files, so that they can be read where they lie. In the site a page is named by a label, and a header by its
path: a link to anything else that lies in the tree keeps its text alone."""

import os
import pathlib
import re
import sys

LINK = re.compile(r"(!?)\[([^]]*)\]\(([^)\s]+)\)")


def label(page):
    if page == "README.md":
        return "mainpage"
    return "page_" + re.sub(r"\W", "_", page.removesuffix(".md"))


def in_site(match, page):
    mark, text, target = match.groups()
    if re.match(r"\w+:|#", target):
        return match[0]
    if mark:  # Doxygen finds pictures by their names (IMAGE_PATH)
        return f"![{text}]({os.path.basename(target)})"
    path = os.path.normpath(os.path.join(os.path.dirname(page), target))
    if path.endswith(".md"):
        command = "subpage" if page == "docs/README.md" else "ref"  # the contents of the site are its tree
        return f'\\{command} {label(path)} "{text}"'
    if path.endswith(".h") and path.startswith("KXFoundation/"):
        return f'\\ref {path} "{text}"'
    return text


def lines(page):
    titled = fenced = False
    for line in pathlib.Path(page).read_text().splitlines():
        if line.startswith("```"):
            fenced = not fenced
        elif not fenced:
            line = LINK.sub(lambda match: in_site(match, page), line)
            if not titled and line.startswith("# "):
                titled = True
                line += f" {{#{label(page)}}}"
        yield line


page = os.path.relpath(sys.argv[1])
print("\n".join(lines(page)))
