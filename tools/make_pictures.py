#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes the pictures of the gallery's bundle that are kept in the repository; they are computed, nothing is taken from
elsewhere:

    tools/make_pictures.py
"""
import math
import pathlib
import struct
import zlib

BUNDLE = pathlib.Path(__file__).resolve().parent.parent / "examples/gallery/Resources"


def write_png(name, wide, high, shade):
    """shade(x, y) gives red, green, blue and alpha, 0 to 1, of a place in a picture that is 1 high."""
    rows = bytearray()
    for y in range(high):
        line = [channel for x in range(wide)
                for channel in (round(255 * min(max(c, 0.0), 1.0)) for c in shade((x + 0.5) / high, (y + 0.5) / high))]
        # Each byte less the one a pixel before: smooth pictures pack far better.
        rows.append(1)
        rows.extend((c - (line[i - 4] if i >= 4 else 0)) & 255 for i, c in enumerate(line))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    path = BUNDLE / name
    path.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", wide, high, 8, 6, 0, 0, 0)) +
                     chunk(b"IDAT", zlib.compress(bytes(rows), 9)) + chunk(b"IEND", b""))
    print("%7d  %s" % (path.stat().st_size, name))


def mix(a, b, share):
    share = min(max(share, 0.0), 1.0)
    return tuple(x + (y - x) * share for x, y in zip(a, b))


def inside(distance, pixel):
    """1 where the distance is below 0, 0 where it is above, soft over a pixel."""
    return min(max(0.5 - distance / pixel, 0.0), 1.0)


BALLOONS = ((0.42, 0.34, 0.17, (0.86, 0.20, 0.16), (0.98, 0.80, 0.30)),
            (0.95, 0.24, 0.10, (0.16, 0.36, 0.78), (0.94, 0.94, 0.98)),
            (1.25, 0.46, 0.06, (0.10, 0.56, 0.42), (0.98, 0.66, 0.24)))


def balloons(x, y):
    """Three striped balloons over hills on a clear morning."""
    color = mix((0.32, 0.58, 0.90), (0.95, 0.90, 0.80), y * 1.25)
    for depth in range(4):
        ridge = 0.70 + 0.08 * depth + 0.035 * math.sin(x * (5 - depth) + depth * 2.1) + 0.012 * math.sin(x * 17 + depth)
        color = mix(color, mix((0.56, 0.70, 0.72), (0.13, 0.32, 0.16), depth / 3), inside(ridge - y, 1 / 240))
    for centre, height, radius, one, other in BALLOONS:
        dx, dy = (x - centre) / radius, (y - height) / radius
        squeeze = 1 - 0.35 * max(dy, 0) ** 2
        away = math.hypot(dx / squeeze, dy if dy < 0 else dy * 0.82)
        stripe = math.sin(math.asin(min(max(dx / squeeze, -1), 1)) * 6) > 0
        shine = 0.75 + 0.35 * math.exp(-((dx + 0.35) ** 2 + (dy + 0.4) ** 2) * 3) - 0.2 * max(dx, 0)
        fabric = tuple(c * shine for c in (one if stripe else other))
        color = mix(color, fabric, inside((away - 1) * radius, 1 / 240))
        basket = max(abs(dx) - 0.11, abs(dy - 1.52) - 0.09)
        ropes = max(abs(abs(dx) - 0.30 + 0.21 * (dy - 1) / 0.45) - 0.02, abs(dy - 1.22) - 0.24)
        color = mix(color, (0.36, 0.22, 0.12), inside(min(basket, ropes) * radius, 1 / 240))
    return (*color, 1.0)


def boat(x, y):
    """A boat under sail, with nothing around it."""
    pixel = 1 / 120
    hull = max(y - 0.88, 0.70 - y, abs(x - 0.5) - (0.44 - 0.9 * (y - 0.70)))
    main = max(0.08 - y, y - 0.64, 0.54 - x, x - 0.54 - (y - 0.08) * 0.66)
    jib = max(0.16 - y, y - 0.64, x - 0.48, 0.48 - x - (y - 0.16) * 0.72)
    sails = max(inside(main, pixel), inside(jib, pixel))
    body = inside(hull, pixel)
    color = mix((0.93, 0.93, 0.90), (0.62, 0.16, 0.14), body / max(body + sails, 1e-9))
    return (*color, max(body, sails))


write_png("balloons.png", 400, 240, balloons)
write_png("boat.png", 120, 120, boat)
