#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""operations_page.py ROOT [--check]: writes docs/operations.md from the public headers, or checks that it is current."""
import argparse
import difflib
import pathlib
import sys

from declarations import declarations

SECTIONS = ["Core", "Cache", "Localization", "AppEnvironment", "DateTime", "Device", "Media", "UI", "Platform/Foundation",
            "Platform/Services", "Platform/Graphics", "Platform/Views", "Platform/Runtime", "Testing"]
HEAD = """# Operations

Every public operation, its C++ spelling and its header, made from the headers by `./dev docs`. All of it lives in the
namespace `kx`, that of Testing in `kx::testing`. What a line does, its units, ownership, threads and failures stand above it in the header.
"""


def section_of(header):
    parts = header.parts
    return "/".join(parts[:2]) if parts[0] == "Platform" else parts[0]


def groups(root):
    """{section: {(class, header): [line]}}, sections and classes in their order on the page."""
    library = root / "KXFoundation"
    found = {section: {} for section in SECTIONS}
    for path in sorted(library.rglob("*.h")):
        header = path.relative_to(library)
        if "Modules" in header.parts:  # private to the modules: not installed
            continue
        for declaration in declarations(path.read_text(encoding="utf-8")):
            group = found.setdefault(section_of(header), {}).setdefault((declaration.owner, header.as_posix()), [])
            mark = " *(for subclasses)*" if declaration.for_subclasses else ""
            group.append(f"- `{declaration.spelling}`{mark}")
    return found


def page(root):
    lines = [HEAD]
    for section, classes in groups(root).items():
        if not classes:
            continue
        lines.append(f"\n## {section}\n")
        # Classes by name; what belongs to no class comes last.
        for (owner, header), members in sorted(classes.items(), key=lambda item: (item[0][0] == "", item[0])):
            title = f"`{owner}`" if owner else "Functions and variables"
            lines.append(f"\n### {title}, `<KXFoundation/{header}>`\n\n")
            lines.extend(f"{member}\n" for member in members)
    return "".join(lines)


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("root", type=pathlib.Path)
    arguments.add_argument("--check", action="store_true")
    given = arguments.parse_args()
    target = given.root / "docs" / "operations.md"
    wanted = page(given.root)
    if not given.check:
        target.parent.mkdir(exist_ok=True)
        target.write_text(wanted, encoding="utf-8")
        return 0
    present = target.read_text(encoding="utf-8") if target.exists() else ""
    if present == wanted:
        return 0
    differences = difflib.unified_diff(present.splitlines(), wanted.splitlines(), "docs/operations.md", "the headers",
                                       lineterm="", n=0)
    print("docs/operations.md is stale; ./dev docs renews it. It differs in:")
    print("\n".join(list(differences)[:40]))
    return 1


if __name__ == "__main__":
    sys.exit(main())
