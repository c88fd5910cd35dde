#!/usr/bin/env python3
"""fuzz_coverage.py BUILD [NAME]: replays each fuzzer's seeds, and what it has found since, in a build that counts
lines (preset coverage), and prints how many lines of its readers (fuzz/readers.txt) they reach. The lines with their
counts are in BUILD/coverage/NAME.txt."""

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
    objects = [build / "fuzz" / name, *(build / "lib").glob("*.so"), *(build / "lib" / "KXFoundation").glob("*.so")]
    arguments = ["-instr-profile", profile, objects[0], *(a for o in objects[1:] for a in ("-object", o))]
    done = subprocess.run(["llvm-cov", "export", "-summary-only", *arguments], check=True, capture_output=True)
    files = [file for file in json.loads(done.stdout)["data"][0]["files"]
             if any(file["filename"].endswith("/" + reader) for reader in readers)]
    with open(profile.with_suffix(".txt"), "w") as text:
        subprocess.run(["llvm-cov", "show", *arguments, *(file["filename"] for file in files)], check=True,
                       stdout=text, stderr=subprocess.DEVNULL)
    return files


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
        for file in coverage(build, name, profile, readers.split()):
            lines = file["summary"]["lines"]
            print(f"| {name} | {inputs} | {pathlib.Path(file['filename']).name} | {lines['count']} | "
                  f"{lines['covered']} | {lines['percent']:.0f} % |", flush=True)


main()
