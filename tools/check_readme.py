#!/usr/bin/env python3
"""check_readme.py ROOT: fails unless each page shows its example's files word for word."""

import pathlib
import sys

SHOWN = [  # page, file, language of the block
    ("README.md", "examples/quickstart/main.cpp", "cpp"),
    ("docs/guides/testing.md", "examples/testing/CMakeLists.txt", "cmake"),
    ("docs/guides/testing.md", "examples/testing/Greeting.cpp", "cpp"),
    ("docs/guides/testing.md", "examples/testing/GreetingTest.cpp", "cpp"),
]

root = pathlib.Path(sys.argv[1])
stale = [f"{page}: its program differs from {file}; copy it again" for page, file, language in SHOWN
         if f"```{language}\n{(root / file).read_text().strip()}\n```" not in (root / page).read_text()]
if stale:
    sys.exit("\n".join(stale))
