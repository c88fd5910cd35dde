#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""check_readme.py ROOT: fails unless each page shows its example's files word for word, their licence line left out."""

import pathlib
import re
import sys

SHOWN = [  # page, file, language of the block
    ("README.md", "examples/quickstart/main.cpp", "cpp"),
    ("docs/guides/live-language.md", "examples/live-language/Harbour.cpp", "cpp"),
    ("docs/guides/live-language.md", "examples/live-language/HarbourTest.cpp", "cpp"),
    ("docs/guides/testing.md", "examples/testing/CMakeLists.txt", "cmake"),
    ("docs/guides/testing.md", "examples/testing/Greeting.cpp", "cpp"),
    ("docs/guides/testing.md", "examples/testing/GreetingTest.cpp", "cpp"),
]

root = pathlib.Path(sys.argv[1])


def program(file):
    return re.sub(r"\A(//|#) SPDX-License-Identifier: .*\n", "", (root / file).read_text()).strip()


stale = [f"{page}: its program differs from {file}; copy it again" for page, file, language in SHOWN
         if f"```{language}\n{program(file)}\n```" not in (root / page).read_text()]
if stale:
    sys.exit("\n".join(stale))
