#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""fuzz_coverage.py BUILD [NAME]: replays each fuzzer's seeds, and what it has found since, in a build that counts
lines (preset coverage), and prints how many lines of its readers (fuzz/readers.txt) they reach. The others are
listed in BUILD/coverage/NAME.txt."""

import json
import pathlib
import subprocess
import sys


def replay(build, name, profile):
    folders = [f for f in (pathlib.Path("fuzz/corpus", name), pathlib.Path("build/fuzz/corpus", name)) if f.is_dir()]
    raw = profile.parent / f"{name}-%m.profraw"
    for stale in profile.parent.glob(f"{name}-*.profraw"):
        stale.unlink()
    subprocess.run([build / "fuzz" / name, "-runs=0", "-timeout=30", *folders], check=True, capture_output=True,
                   env={"PATH": "/usr/bin:/bin", "LLVM_PROFILE_FILE": str(raw)})
    subprocess.run(["llvm-profdata", "merge", "-sparse", "-o", profile, *profile.parent.glob(f"{name}-*.profraw")],
                   check=True)
    return sum(1 for folder in folders for file in folder.iterdir() if file.is_file())


def coverage(build, name, profile, readers):
    objects = [build / "fuzz" / name, *(build / "lib").rglob("*.so")]
    done = subprocess.run(["llvm-cov", "export", "-ignore-filename-regex=^/usr/", "-instr-profile", profile, objects[0],
                           *(a for o in objects[1:] for a in ("-object", o))], check=True, capture_output=True)
    return [file for file in json.loads(done.stdout)["data"][0]["files"]
            if any(file["filename"].endswith("/" + reader) for reader in readers)]


def unreached(file):
    """The lines that no input reaches. A segment is [line, column, count, has a count, begins a region, gap]."""
    starts, around = {}, None
    for segment in file["segments"]:
        starts.setdefault(segment[0], []).append(segment)
    for number, text in enumerate(pathlib.Path(file["filename"]).read_text().splitlines(), 1):
        here = starts.get(number, [])
        counts = [s[2] for s in [around, *(s for s in here if s[4] and not s[5])] if s and s[3]]
        if counts and max(counts) == 0 and text.strip(" {}"):
            yield f"{pathlib.Path(file['filename']).name}:{number}: {text}"
        around = here[-1] if here else around


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    only = sys.argv[2] if len(sys.argv) > 2 else ""
    (build / "coverage").mkdir(exist_ok=True)
    print("| fuzzer | inputs | reader | lines | reached | |\n|---|---:|---|---:|---:|---:|", flush=True)
    for line in pathlib.Path("fuzz/readers.txt").read_text().splitlines():
        name, _, readers = line.partition(": ")
        if line.startswith("#") or only not in ("", name):
            continue
        profile = build / "coverage" / f"{name}.profdata"
        inputs = replay(build, name, profile)
        files = coverage(build, name, profile, readers.split())
        profile.with_suffix(".txt").write_text("\n".join(line for file in files for line in unreached(file)) + "\n")
        for file in files:
            lines = file["summary"]["lines"]
            print(f"| {name} | {inputs} | {pathlib.Path(file['filename']).name} | {lines['count']} | "
                  f"{lines['covered']} | {lines['percent']:.0f} % |", flush=True)


main()
