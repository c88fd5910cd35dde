#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""check_includes.py ROOT [--build DIR]: the rules of who may include whom, as docs/architecture.md tells them.

Prints one line per breach and exits 1 if there is any:
  - includes run downwards, and between subsystems in one direction;
  - subsystem folders and all headers include the standard library and KXFoundation only (Platform's own .cpp files
    may include what the platform layer stands on);
  - what belongs to the Foundation library reaches no picture and no view;
  - headers do not include each other in a circle;
  - with --build: every .cpp of the library and of the tests is compiled in that build folder.
"""
import argparse
import fnmatch
import json
import pathlib
import re
import sys

LAYERS = {
    "Platform/Runtime": (),
    "Platform/Foundation": ("Platform/Runtime",),
    "Platform/Services": ("Platform/Foundation", "Platform/Runtime"),
    "Platform/Graphics": ("Platform/Foundation", "Platform/Runtime"),
    "Platform/Views": ("Platform/Graphics", "Platform/Foundation", "Platform/Runtime"),
}
SUBSYSTEMS = {  # beside Platform, Core and the folder itself
    "Core": (),
    "Cache": ("Media",),
    "Localization": ("AppEnvironment",),
    "AppEnvironment": (),
    "DateTime": (),
    "Device": (),
    "Media": ("UI", "AppEnvironment", "Device"),
    "Testing": ("Localization",),  # and nobody knows Testing
    "UI": (),
}
EXCEPTIONS = {  # file pattern: what it may include beside the above
    "AppEnvironment/*Link*": ("Localization",),
    "AppEnvironment/*Feedback*": ("Localization",),
    "Localization/LoadTimeInterceptions.cpp": ("UI",),  # the one list of what is exchanged
}
PICTURES = ("Platform/Graphics", "Platform/Views")

STANDARD = set("""
algorithm any array atomic barrier bit bitset charconv chrono codecvt compare complex concepts condition_variable
coroutine deque exception execution filesystem format forward_list fstream functional future initializer_list iomanip
ios iosfwd iostream istream iterator latch limits list locale map memory memory_resource mutex new numbers numeric
optional ostream queue random ranges ratio regex scoped_allocator semaphore set shared_mutex source_location span
sstream stack stdexcept stop_token streambuf string string_view strstream system_error thread tuple type_traits
typeindex typeinfo unordered_map unordered_set utility valarray variant vector version
cassert cctype cerrno cfenv cfloat cinttypes climits clocale cmath csetjmp csignal cstdarg cstddef cstdint cstdio
cstdlib cstring ctime cuchar cwchar cwctype
""".split())

POSIX_TYPES = {"pthread.h", "sys/types.h"}  # system types that a Platform header may hold by value

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


class Tree:
    """The library's files and what each includes: library files by their path below KXFoundation/, others by name."""

    def __init__(self, root):
        self.root = root
        self.library = root / "KXFoundation"
        self.includes = {}
        for path in sorted(self.library.rglob("*")):
            if path.suffix in (".h", ".cpp"):
                self.includes[path.relative_to(self.library).as_posix()] = list(self.included_by(path))

    def included_by(self, path):
        for kind, name in INCLUDE.findall(path.read_text(encoding="utf-8")):
            beside = (path.parent / name).resolve()
            if name.startswith("KXFoundation/"):
                yield name
            elif kind == '"' and beside.is_relative_to(self.library.resolve()) and beside.exists():
                yield "KXFoundation/" + beside.relative_to(self.library.resolve()).as_posix()
            else:
                yield name

    def own(self, file):
        """The library files that `file` includes, below KXFoundation/."""
        return [name[len("KXFoundation/"):] for name in self.includes.get(file, ()) if name.startswith("KXFoundation/")]

    def reached(self, file):
        found, waiting = set(), [file]
        while waiting:
            for name in self.own(waiting.pop()):
                if name not in found:
                    found.add(name)
                    waiting.append(name)
        return found


def area(file):
    parts = file.split("/")
    if len(parts) == 1:
        return None  # KXFoundation/Version.h: everybody's
    return "/".join(parts[:2]) if parts[0] == "Platform" else parts[0]


def allowed(file):
    own = area(file)
    if own in LAYERS:
        return {own, *LAYERS[own]}
    reach = {own, "Core", *LAYERS, *SUBSYSTEMS.get(own, ())}
    for pattern, more in EXCEPTIONS.items():
        if fnmatch.fnmatch(file, pattern):
            reach.update(more)
    return reach


def upward_includes(tree):
    for file in tree.includes:
        for name in tree.own(file):
            if area(name) and area(name) not in allowed(file):
                yield f"{file} includes {name}: {area(file)} must not know {area(name)}"


def foreign_includes(tree):
    for file, names in tree.includes.items():
        platform = file.startswith("Platform/")
        if platform and (file.endswith(".cpp") or "/Modules/" in file):  # a module's own headers are not installed
            continue
        known = STANDARD | POSIX_TYPES if platform else STANDARD
        for name in names:
            if not name.startswith("KXFoundation/") and name not in known:
                yield f"{file} includes <{name}>: only Platform's .cpp files include more than the standard library"


def pictures_in_foundation(tree):
    for listing in tree.library.rglob("CMakeLists.txt"):
        folder = listing.parent.relative_to(tree.library).as_posix()
        for sources in re.findall(r"kx_sources\(\s*Foundation\s([^)]*)\)", listing.read_text(encoding="utf-8")):
            for source in sources.split():
                file = f"{folder}/{source}"
                for name in sorted(tree.reached(file)):
                    if area(name) in PICTURES:
                        yield f"{file} belongs to the Foundation library but reaches {name}"


def circles(tree):
    headers = [file for file in tree.includes if file.endswith(".h")]
    reported = set()
    for header in headers:
        reached = tree.reached(header)
        if header in reached and header not in reported:
            circle = {header} | {name for name in reached if header in tree.reached(name)}
            reported |= circle
            yield "these headers include each other in a circle: " + ", ".join(sorted(circle))


def uncompiled(tree, build):
    commands = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    compiled = {pathlib.Path(command["file"]).resolve() for command in commands}
    for folder in ("KXFoundation", "tests"):
        for path in sorted((tree.root / folder).rglob("*.cpp")):
            if path.resolve() not in compiled and "consumers" not in path.parts:
                yield f"{path.relative_to(tree.root)} is in no CMakeLists.txt: it is never compiled"


def breaches(root, build=None):
    tree = Tree(root)
    for rule in (upward_includes, foreign_includes, pictures_in_foundation, circles):
        yield from rule(tree)
    if build:
        yield from uncompiled(tree, build)


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("root", type=pathlib.Path)
    arguments.add_argument("--build", type=pathlib.Path)
    given = arguments.parse_args()
    found = list(breaches(given.root, given.build))
    print("\n".join(found) if found else "includes keep to the rules")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
