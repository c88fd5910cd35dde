#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""make_gifs.py [DIRECTORY]: draws the six GIFs of the page "Animation" into the gallery's bundle.

They are different kinds on purpose: transparent and disposed to the background; cropped frames that give back what they
cover; palettes of their own; interlaced and built up; ending after three times; full-HD with too many frames to be kept.
Standard library only; the same files every time."""
import math
import pathlib
import struct
import sys


def pack(indices, depth):
    """LZW as GIF has it: codes least significant bit first, in sub-blocks of up to 255 bytes."""
    clear = 1 << depth
    codes = {bytes((i,)): i for i in range(clear)}
    next_code, size = clear + 2, depth + 1
    emitted = [(clear, size)]
    string = b""
    for index in indices:
        longer = string + bytes((index,))
        if longer in codes:
            string = longer
            continue
        emitted.append((codes[string], size))
        if next_code < 4096:
            codes[longer] = next_code
            if next_code == 1 << size:
                size += 1
            next_code += 1
        else:
            emitted.append((clear, size))
            codes = {bytes((i,)): i for i in range(clear)}
            next_code, size = clear + 2, depth + 1
        string = bytes((index,))
    emitted += [(codes[string], size), (clear + 1, min(12, size + (next_code == 1 << size)))]
    bits, held, out = 0, 0, bytearray()
    for code, width in emitted:
        bits |= code << held
        held += width
        while held >= 8:
            out.append(bits & 255)
            bits >>= 8
            held -= 8
    out.append(bits & 255)
    blocks = b"".join(bytes((len(out[i:i + 255]),)) + bytes(out[i:i + 255]) for i in range(0, len(out), 255))
    return bytes((depth,)) + blocks + b"\0"


def interlaced(indices, width, height):
    rows = [y for start, step in ((0, 8), (4, 8), (2, 4), (1, 2)) for y in range(start, height, step)]
    return b"".join(indices[y * width:(y + 1) * width] for y in rows)


class GIF:
    def __init__(self, width, height, palette, plays=0):
        self.bytes = bytearray(b"GIF89a" + struct.pack("<HHBBB", width, height, 0x80 | self.bits(palette), 0, 0))
        self.bytes += self.table(palette)
        self.palette = palette
        self.bytes += b"\x21\xFF\x0BNETSCAPE2.0\x03\x01" + struct.pack("<HB", plays, 0)

    @staticmethod
    def bits(palette):
        return max(1, (len(palette) - 1).bit_length()) - 1

    @classmethod
    def table(cls, palette):
        colours = list(palette) + [(0, 0, 0)] * ((2 << cls.bits(palette)) - len(palette))
        return bytes(channel for colour in colours for channel in colour)

    def frame(self, rect, indices, delay, disposal=1, transparent=None, palette=None, interlace=False):
        left, top, width, height = rect
        self.bytes += struct.pack("<BBBBHBB", 0x21, 0xF9, 4, disposal << 2 | (transparent is not None), delay,
                                  transparent or 0, 0)
        flags = (0x40 if interlace else 0) | (0x80 | self.bits(palette) if palette else 0)
        self.bytes += struct.pack("<BHHHHB", 0x2C, left, top, width, height, flags)
        self.bytes += self.table(palette) if palette else b""
        data = interlaced(indices, width, height) if interlace else bytes(indices)
        self.bytes += pack(data, max(2, self.bits(palette or self.palette) + 1))

    def save(self, path):
        path.write_bytes(self.bytes + b"\x3B")


def spinner():
    """Transparent, each frame disposed to the background."""
    side, petals = 96, 12
    shades = [(40 + 15 * i, 110 + 9 * i, 220) for i in range(petals)]
    gif = GIF(side, side, [(0, 0, 0)] + shades)
    for turn in range(petals):
        def petal(x, y):
            dx, dy = x - side / 2 + 0.5, y - side / 2 + 0.5
            if not 22 <= math.hypot(dx, dy) <= 42:
                return 0
            place = (math.atan2(dy, dx) / (2 * math.pi) % 1) * petals
            return 1 + (int(place) - turn) % petals if 0.2 < place % 1 < 0.8 else 0
        gif.frame((0, 0, side, side), bytes(petal(x, y) for y in range(side) for x in range(side)), 8, disposal=2,
                  transparent=0)
    return gif


def ball():
    """A background, and a small frame over it that gives back what it covered."""
    width, height, size, steps = 200, 120, 28, 30
    gif = GIF(width, height, [(230, 236, 245), (200, 212, 230), (235, 110, 40), (255, 190, 120)])
    gif.frame((0, 0, width, height), bytes((x // 20 + y // 20) % 2 for y in range(height) for x in range(width)), 4)
    for step in range(steps):
        at = step / steps
        x = round((width - size) * (1 - abs(2 * at - 1)))
        y = round((height - size) * (1 - abs(math.sin(3 * math.pi * at))))

        def dot(i):
            dx, dy = i % size - size / 2 + 0.5, i // size - size / 2 + 0.5
            if math.hypot(dx, dy) > size / 2:
                return 0
            return 3 if math.hypot(dx + 4, dy + 5) < 5 else 2
        gif.frame((x, y, size, size), bytes(dot(i) for i in range(size * size)), 4, disposal=3, transparent=0)
    return gif


def plasma():
    """Every frame whole, with a palette of its own."""
    width, height, frames, colours = 120, 90, 20, 32
    gif = GIF(width, height, [(0, 0, 0), (255, 255, 255)])
    for number in range(frames):
        turn = 2 * math.pi * number / frames
        palette = [tuple(round(127.5 + 127.5 * math.sin(2 * math.pi * i / colours + turn + shift))
                         for shift in (0, 2.1, 4.2)) for i in range(colours)]

        def wave(x, y):
            value = math.sin(x / 11 + turn) + math.sin(y / 9 - turn) + math.sin(math.hypot(x - 60, y - 45) / 8)
            return int((value + 3) / 6.001 * colours)
        gif.frame((0, 0, width, height), bytes(wave(x, y) for y in range(height) for x in range(width)), 7,
                  palette=palette)
    return gif


def rings():
    """Interlaced; each frame adds a ring to those before, for which it is transparent. None is empty: a page's
    still picture shows the first."""
    width, height, count = 160, 120, 8
    palette = [(250, 250, 250)] + [(30 + 25 * i, 160 - 15 * i, 90 + 18 * i) for i in range(count)] + [(1, 2, 3)]
    gif = GIF(width, height, palette)
    for ring in range(count):
        ground = count + 1 if ring else 0
        def shade(i):
            radius = math.hypot(i % width - width / 2, i // width - height / 2)
            return ring + 1 if 6 * ring <= radius < 6 * ring + 5 else ground
        gif.frame((0, 0, width, height), bytes(shade(i) for i in range(width * height)), 30,
                  transparent=ground if ring else None, interlace=True)
    return gif


DIGITS = {"3": ("111", "001", "111", "001", "111"), "2": ("111", "001", "111", "100", "111"),
          "1": ("010", "110", "010", "010", "111"), "0": ("111", "101", "101", "101", "111")}


def countdown():
    """Three times, at unequal times, then it rests on the last frame."""
    width, height, dot = 120, 120, 20
    gif = GIF(width, height, [(24, 34, 60), (250, 200, 60)], plays=3)
    for digit, delay in (("3", 100), ("2", 60), ("1", 30), ("0", 15)):
        def lit(x, y):
            column, row = (x - 30) // dot, (y - 10) // dot
            return int(0 <= column < 3 and 0 <= row < 5 and DIGITS[digit][row][column] == "1")
        gif.frame((0, 0, width, height), bytes(lit(x, y) for y in range(height) for x in range(width)), delay)
    return gif


def large():
    """Full-HD, 120 frames: one picture and a beam that goes round on it."""
    width, height, frames, radius = 1920, 1080, 120, 110
    gif = GIF(width, height, [(12, 22, 34), (20, 44, 58), (40, 120, 110), (120, 240, 190)])
    bands = [bytes((x // 240) % 2 for x in range(width)), bytes((x // 240 + 1) % 2 for x in range(width))]
    gif.frame((0, 0, width, height), b"".join(bands[(y // 180) % 2] for y in range(height)), 4)
    side = 2 * radius
    for number in range(frames - 1):
        turn = 2 * math.pi * number / (frames - 1)
        left = round(width / 2 + 780 * math.cos(turn)) - radius
        top = round(height / 2 + 400 * math.sin(turn)) - radius

        def shade(i):
            distance = math.hypot(i % side - radius, i // side - radius)
            return 3 if distance < 0.3 * radius else 2 if distance < radius - 1 else 0
        gif.frame((left, top, side, side), bytes(shade(i) for i in range(side * side)), 4, disposal=3, transparent=0)
    return gif


def main():
    here = pathlib.Path(__file__).resolve().parent / "Resources"
    directory = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else here
    for draw in (spinner, ball, plasma, rings, countdown, large):
        draw().save(directory / (draw.__name__ + ".gif"))


if __name__ == "__main__":
    main()
