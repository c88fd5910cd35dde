#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Each rule of check_includes.py finds its breach, and nothing else, in a tree made here."""
import json
import pathlib
import tempfile
import unittest

import check_includes

ROWS = [  # what it shows, {file: text}, a part of each line expected
    ("downwards is fine",
     {"Cache/A.h": "#include <vector>\n#include <KXFoundation/Media/B.h>", "Media/B.h": "#include <KXFoundation/Core/C.h>",
      "Core/C.h": "#include <KXFoundation/Version.h>"}, []),
    ("a layer does not look up",
     {"Platform/Runtime/A.cpp": "#include <KXFoundation/Platform/Foundation/B.h>", "Platform/Foundation/B.h": ""},
     ["Platform/Runtime must not know Platform/Foundation"]),
    ("the platform knows no subsystem",
     {"Platform/Views/A.h": "#include <KXFoundation/UI/B.h>", "UI/B.h": ""}, ["Platform/Views must not know UI"]),
    ("subsystems in one direction",
     {"Media/A.h": "#include <KXFoundation/Cache/B.h>", "Cache/B.h": ""}, ["Media must not know Cache"]),
    ("tests' doubles stand above all",
     {"Core/A.cpp": "#include <KXFoundation/Testing/B.h>", "Testing/B.h": "#include <KXFoundation/Platform/Views/C.h>",
      "Platform/Views/C.h": "#include <KXFoundation/Testing/B.h>", "Testing/D.cpp": "#include <stdlib.h>"},
     ["Core must not know Testing", "Platform/Views must not know Testing", "circle", "D.cpp includes <stdlib.h>"]),
    ("links alone may ask for the language",
     {"AppEnvironment/KXLinks.cpp": "#include <KXFoundation/Localization/B.h>", "Localization/B.h": "",
      "AppEnvironment/KXIdentity.cpp": "#include <KXFoundation/Localization/B.h>"},
     ["KXIdentity.cpp includes Localization/B.h"]),
    ("libraries stay inside the platform's sources",
     {"Platform/Graphics/A.cpp": "#include <cairo.h>", "Platform/Graphics/A.h": "#include <cairo.h>",
      "Core/B.cpp": '#  include "unicode/uloc.h"'}, ["A.h includes <cairo.h>", "B.cpp includes <unicode/uloc.h>"]),
    ("a header beside the file",
     {"Core/A.cpp": '#include "B.h"', "Core/B.h": ""}, []),
    ("no picture in the Foundation library",
     {"Media/CMakeLists.txt": "kx_sources(Foundation\n  A.cpp)\nkx_sources(UI\n  C.cpp)",
      "Media/A.cpp": "#include <KXFoundation/Media/B.h>", "Media/C.cpp": "#include <KXFoundation/Media/B.h>",
      "Media/B.h": "#include <KXFoundation/Platform/Graphics/D.h>", "Platform/Graphics/D.h": ""},
     ["Media/A.cpp belongs to the Foundation library but reaches Platform/Graphics/D.h"]),
    ("no circle",
     {"Core/A.h": "#include <KXFoundation/Core/B.h>", "Core/B.h": "#include <KXFoundation/Core/A.h>"},
     ["circle: Core/A.h, Core/B.h"]),
]


class Rules(unittest.TestCase):
    def tree(self, files):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        root = pathlib.Path(folder.name)
        for name, text in files.items():
            path = root / "KXFoundation" / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        return root

    def test_rows(self):
        for shows, files, expected in ROWS:
            with self.subTest(shows):
                found = list(check_includes.breaches(self.tree(files)))
                self.assertEqual(len(found), len(expected), found)
                for part in expected:
                    self.assertTrue(any(part in line for line in found), found)

    def test_a_source_in_no_list_is_found(self):
        root = self.tree({"Core/A.cpp": "", "Core/B.cpp": ""})
        listed = [{"file": str(root / "KXFoundation/Core/A.cpp")}]
        (root / "compile_commands.json").write_text(json.dumps(listed), encoding="utf-8")
        self.assertEqual(list(check_includes.breaches(root, root)),
                         ["KXFoundation/Core/B.cpp is in no CMakeLists.txt: it is never compiled"])


if __name__ == "__main__":
    unittest.main()
