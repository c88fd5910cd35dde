# SPDX-License-Identifier: MIT
"""The machine that is measured on, and the peers that are installed there."""
import pathlib
import platform
import re
import subprocess

PEERS = {  # as the benchmarks name it: what it is, the Debian package whose version counts
    "boost": ("Boost.Signals2", "libboost-dev"),
    "cairo": ("the same drawn with cairo and Pango alone", "libcairo2-dev"),
    "date": ("Howard Hinnant's date", "libhowardhinnant-date-dev"),
    "ffmpeg": ("FFmpeg's libavcodec", "libavcodec-dev"),
    "file": ("a plain file for each value", None),
    "gdkpixbuf": ("GDK-PixBuf", "libgdk-pixbuf-2.0-dev"),
    "giflib": ("giflib", "libgif-dev"),
    "hash": ("Abseil's flat_hash_map, without a lock", "libabsl-dev"),
    "icu": ("ICU's resource bundles", "libicu-dev"),
    "kx-one-thread": ("the library itself on one thread", None),
    "leveldb": ("LevelDB", "libleveldb-dev"),
    "lmdb": ("LMDB", "liblmdb-dev"),
    "loop": ("a loop over a vector", None),
    "memcpy": ("a copy of the pixels, which is a bound and no contender", None),
    "multi-index": ("Boost.MultiIndex under a lock", "libboost-dev"),
    "pango": ("Pango", "libpango1.0-dev"),
    "qt": ("Qt", "qt6-base-dev"),
    "qtcore": ("Qt Core", "qt6-base-dev"),
    "qtwidgets": ("Qt Widgets", "qt6-base-dev"),
    "rocksdb": ("RocksDB's block cache", "librocksdb-dev"),
    "scan": ("one pass over the bytes that finds the quotes", None),
    "sigc": ("libsigc++", "libsigc++-3.0-dev"),
    "strftime": ("the C library's strftime", "libc6"),
    "swscale": ("FFmpeg's libswscale", "libswscale-dev"),
    "virtual": ("a virtual call", None),
}


def output(*command):
    try:
        return subprocess.run(command, capture_output=True, text=True, check=True).stdout.strip()
    except (OSError, subprocess.CalledProcessError):
        return ""


def this_machine():
    cpu = re.search(r"^model name\s*: (.*)$", pathlib.Path("/proc/cpuinfo").read_text(), re.MULTILINE)
    packages = sorted({package for _, package in PEERS.values() if package})
    installed = output("dpkg-query", "-W", "-f", "${Package} ${Version}\n", *packages)
    return {"cpu": cpu[1] if cpu else platform.machine(), "linux": ".".join(platform.release().split(".")[:2]),
            "system": platform.freedesktop_os_release().get("PRETTY_NAME", "Linux"),
            "compiler": "g++ " + output("g++", "-dumpfullversion"),
            "virtual": bool(re.search(r"\bhypervisor\b", pathlib.Path("/proc/cpuinfo").read_text())),
            "packages": dict(line.split(" ", 1) for line in installed.splitlines() if " " in line)}
