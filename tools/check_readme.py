#!/usr/bin/env python3
"""check_readme.py ROOT: fails unless README.md shows examples/quickstart/main.cpp word for word."""

import pathlib
import sys

root = pathlib.Path(sys.argv[1])
program = (root / "examples/quickstart/main.cpp").read_text().strip()
if f"```cpp\n{program}\n```" not in (root / "README.md").read_text():
    sys.exit("README.md: its program differs from examples/quickstart/main.cpp; copy it again")
