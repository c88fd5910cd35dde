#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""make_pictures.py: draws the gallery's own pictures into Resources/, at one and at two pixels to the point.

    common_loading_gray  twelve spokes that fade out clockwise, 32 points
    toast_done           a check mark in a circle, 48 points
"""
import math
import pathlib
import struct
import zlib

RESOURCES = pathlib.Path(__file__).parent / "Resources"


def write_png(path, side, pixel):
    """pixel(x, y) answers (r, g, b, a), 0 to 255, of the point in the middle of each pixel."""
    rows = b"".join(b"\0" + b"".join(bytes(pixel(x + 0.5, y + 0.5)) for x in range(side)) for y in range(side))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", side, side, 8, 6, 0, 0, 0)
    path.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, 9)) +
                     chunk(b"IEND", b""))


def distance(x, y, a, b):
    """From the point to the line between a and b."""
    length = (b[0] - a[0]) ** 2 + (b[1] - a[1]) ** 2
    t = max(0, min(1, ((x - a[0]) * (b[0] - a[0]) + (y - a[1]) * (b[1] - a[1])) / length))
    return math.hypot(x - a[0] - t * (b[0] - a[0]), y - a[1] - t * (b[1] - a[1]))


def covered(far, edge, scale):
    """How much of a pixel lies within `edge` points; `far` is its middle's distance."""
    return max(0.0, min(1.0, (edge - far) * scale + 0.5))


def loading(scale):
    def pixel(px, py):
        x, y = px / scale - 16, py / scale - 16
        alpha = 0.0
        for spoke in range(12):
            angle = math.radians(30 * spoke - 90)
            direction = math.cos(angle), math.sin(angle)
            inner, outer = ((direction[0] * r, direction[1] * r) for r in (7.5, 13.5))
            strength = 0.15 + 0.85 * spoke / 11
            alpha = max(alpha, strength * covered(distance(x, y, inner, outer), 1.4, scale))
        return 128, 128, 128, round(255 * alpha)

    return pixel


def done(scale):
    def pixel(px, py):
        x, y = px / scale, py / scale
        circle = covered(math.hypot(x - 24, y - 24), 18, scale)
        mark = covered(min(distance(x, y, (15.5, 24.5), (21.5, 30.5)), distance(x, y, (21.5, 30.5), (32.5, 18.5))),
                       1.8, scale)
        green = (52, 168, 83)
        return *(round(c + (255 - c) * mark) for c in green), round(255 * circle)

    return pixel


for name, points, drawing in (("common_loading_gray", 32, loading), ("toast_done", 48, done)):
    for scale, suffix in ((1, ""), (2, "@2x")):
        write_png(RESOURCES / f"{name}{suffix}.png", points * scale, drawing(scale))
