#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes the gallery's photographs and video and the tests' clips, which are kept in the repository:

    tools/make_media.py [NAME...]

Needs the program ffmpeg with encoders for H.264, VP9 and AV1. The pictures are computed; nothing is taken from
elsewhere.
"""
import math
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUNDLE = ROOT / "examples/gallery/Resources"
CLIPS = ROOT / "tests/Platform/Services/clips"
EXACT = ["-fflags", "+bitexact", "-flags:v", "+bitexact", "-map_metadata", "-1"]  # the same bytes at each run


def encode(path, size, frames, rate, options):
    """Frames of RGB bytes through ffmpeg into the file."""
    command = ["ffmpeg", "-v", "error", "-y", "-f", "rawvideo", "-pix_fmt", "rgb24", "-s", "%dx%d" % size,
               "-r", str(rate), "-i", "-", *EXACT, *options, str(path)]
    subprocess.run(command, input=b"".join(frames), check=True)
    print("%7d  %s" % (path.stat().st_size, path.relative_to(ROOT)))


# ---- drawing ------------------------------------------------------------------------------------------------

def mix(a, b, share):
    share = min(max(share, 0.0), 1.0)
    return tuple(x + (y - x) * share for x, y in zip(a, b))


def edge(distance, softness=1.0):
    """1 inside (a distance below 0), 0 outside, soft over a pixel or so between."""
    return min(max(0.5 - distance / softness, 0.0), 1.0)


def render(size, shade):
    wide, high = size
    pixels = bytearray()
    for y in range(high):
        for x in range(wide):
            pixels.extend(min(max(int(c + 0.5), 0), 255) for c in shade(x + 0.5, y + 0.5))
    return bytes(pixels)


def harbour(size):
    """Sunset behind a lighthouse."""
    wide, high = size
    horizon, sun = high * 0.62, (wide * 0.62, high * 0.55)

    def shade(x, y):
        if y < horizon:
            color = mix((28, 44, 92), (250, 150, 84), (y / horizon) ** 1.6)
            away = math.hypot(x - sun[0], y - sun[1])
            color = mix(color, (255, 214, 140), 0.8 * math.exp(-away / (high * 0.16)))
            color = mix(color, (255, 240, 206), edge(away - high * 0.075, 2))
        else:
            depth = (y - horizon) / (high - horizon)
            color = mix((236, 138, 90), (16, 26, 58), depth ** 0.55)
            wave = math.sin(y * 1.9 + math.sin(x * 0.045 + y * 0.3) * 2.2)
            path = math.exp(-((x - sun[0]) / (high * (0.06 + 0.16 * depth))) ** 2)
            color = mix(color, (255, 222, 160), path * (0.45 + 0.4 * wave))
        pier = edge(y - horizon - high * 0.045) * edge(horizon - high * 0.012 - y) * edge(x - wide * 0.33)
        body = edge(abs(x - wide * 0.2) - wide * (0.013 + 0.012 * (y / horizon))) * \
            edge(high * 0.2 - y) * edge(y - horizon - high * 0.03)
        lamp = edge(math.hypot(x - wide * 0.2, y - high * 0.185) - high * 0.026, 2)
        color = mix(color, (20, 20, 34), max(pier, body))
        return mix(color, (255, 236, 170), lamp)

    return render(size, shade)


def hills(size):
    """Ridges in the mist of a morning, one behind another."""
    wide, high = size
    ridges = 6

    def ridge(number, x):
        t = x / wide * math.tau
        wave = math.sin(t * (0.9 + 0.37 * number) + number * 1.7) + 0.45 * math.sin(t * (2.3 + number) + number)
        return high * (0.34 + 0.11 * number) + wave * high * (0.035 + 0.006 * number)

    def shade(x, y):
        color = mix((120, 176, 222), (252, 236, 210), y / (high * 0.6))
        for number in range(ridges):
            share = number / (ridges - 1)
            near = mix((176, 196, 204), (24, 66, 52), share)
            misty = mix(near, (238, 232, 220), 0.55 * (1 - share) + 0.15)
            line = ridge(number, x)
            color = mix(color, mix(near, misty, (y - line) / (high * 0.16)), edge(line - y, 1.5))
        return color

    return render(size, shade)


def ferry(size, moment):
    """A ferry under way; `moment` runs from 0 to 1."""
    wide, high = size
    horizon = high * 0.5
    left = wide * (0.06 + 0.52 * moment)
    rock = math.sin(moment * math.tau * 1.5) * high * 0.008

    def box(x, y, x0, y0, x1, y1):
        return edge(max(x0 - x, x - x1)) * edge(max(y0 - y, y - y1))

    def shade(x, y):
        if y < horizon:
            color = mix((96, 164, 220), (222, 238, 246), y / horizon)
        else:
            depth = (y - horizon) / (high - horizon)
            wave = math.sin(y * 0.8 + x * 0.05 + moment * math.tau * 2)
            color = mix(mix((70, 140, 168), (14, 62, 96), depth), (210, 232, 236), 0.10 + 0.10 * wave)
        y -= rock
        hull = box(x, y, left + max(y - high * 0.5, 0) * 0.4, high * 0.47, left + wide * 0.36, high * 0.58)
        cabin = box(x, y, left + wide * 0.06, high * 0.37, left + wide * 0.29, high * 0.47)
        funnel = box(x, y, left + wide * 0.2, high * 0.27, left + wide * 0.24, high * 0.37)
        windows = box(x, y, left + wide * 0.08, high * 0.4, left + wide * 0.27, high * 0.435) * \
            (1 if (x - left) % (wide * 0.03) < wide * 0.018 else 0)
        color = mix(color, (178, 40, 44), hull)
        color = mix(color, (246, 246, 240), cabin)
        color = mix(color, (226, 150, 40), funnel)
        return mix(color, (40, 70, 96), windows)

    return render(size, shade)


# ---- what is made -------------------------------------------------------------------------------------------

JPEG = ["-frames:v", "1", "-c:v", "mjpeg", "-pix_fmt", "yuvj420p", "-q:v", "3"]
H264 = ["-c:v", "libx264", "-pix_fmt", "yuv420p", "-x264-params", "threads=1", "-movflags", "+faststart"]
COLOURS = [(200, 30, 30), (30, 180, 40), (30, 40, 200), (220, 220, 220), (40, 40, 40)]
CLIP = (70, 46)


def flat_frames():
    """One colour a frame, so that a test knows which one it got."""
    return [bytes(color) * (CLIP[0] * CLIP[1]) for color in COLOURS]


def halves():
    """Red on the left, blue on the right."""
    half = CLIP[0] // 2
    return [(bytes(COLOURS[0]) * half + bytes(COLOURS[2]) * half) * CLIP[1]] * 2


def turned(path, degrees):
    """To be turned clockwise when it is shown; the program counts the other way round."""
    upright = path.with_suffix(".upright.mp4")
    encode(upright, CLIP, halves(), 10, H264)
    subprocess.run(["ffmpeg", "-v", "error", "-y", "-i", str(upright), *EXACT, "-c", "copy",
                    "-metadata:s:v:0", "rotate=%d" % (360 - degrees), str(path)], check=True)
    upright.unlink()


MADE = {
    "harbour": lambda: encode(BUNDLE / "harbour.jpg", (720, 480), [harbour((720, 480))], 1, JPEG),
    "hills": lambda: encode(BUNDLE / "hills.jpg", (720, 480), [hills((720, 480))], 1, JPEG),
    "ferry": lambda: encode(BUNDLE / "ferry.mp4", (320, 180),
                            [ferry((320, 180), number / 24) for number in range(24)], 12,
                            [*H264, "-crf", "26", "-preset", "veryslow"]),
    "h264": lambda: encode(CLIPS / "h264.mp4", CLIP, flat_frames(), 10, H264),
    "vp9": lambda: encode(CLIPS / "vp9.webm", CLIP, flat_frames(), 10,
                          ["-c:v", "libvpx-vp9", "-pix_fmt", "yuv420p"]),
    "av1": lambda: encode(CLIPS / "av1.mp4", CLIP, flat_frames(), 10,
                          ["-c:v", "libaom-av1", "-cpu-used", "8", "-pix_fmt", "yuv420p"]),
    "turned90": lambda: turned(CLIPS / "turned90.mp4", 90),
    "turned180": lambda: turned(CLIPS / "turned180.mp4", 180),
    "turned270": lambda: turned(CLIPS / "turned270.mp4", 270),
}


def main(names):
    for name in names or MADE:
        MADE[name]()


if __name__ == "__main__":
    main(sys.argv[1:])
