#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""check_licences.py ROOT: fails unless every source names its licence in its first two lines, as SPDX and REUSE have it."""

import pathlib
import sys

FOLDERS = ("KXFoundation", "benchmarks", "cmake", "examples", "fuzz", "packaging", "programs", "tests", "tools")
ENDINGS = {".h", ".cpp", ".inl", ".py", ".sh", ".cmake", ".in"}
NAMES = {"CMakeLists.txt", "rules"}
OTHER_FORMATS = {"library.pc.in", "fonts.conf.in"}

root = pathlib.Path(sys.argv[1])
sources = [root / "dev", root / "CMakeLists.txt"] + [
    path for folder in FOLDERS for path in sorted((root / folder).rglob("*"))
    if path.is_file() and (path.suffix in ENDINGS or path.name in NAMES)
    and path.name not in OTHER_FORMATS and "corpus" not in path.parts]
without = [str(path.relative_to(root)) for path in sources
           if "SPDX-License-Identifier: MIT" not in "".join(path.read_text().splitlines(True)[:2])]
if without:
    sys.exit("no SPDX-License-Identifier: MIT in the first two lines of:\n" + "\n".join(without))
