#!/usr/bin/env python3
"""A photo booth: filters raw camera frames in place, with another look every so often.

    booth.py WIDTHxHEIGHT [nv12|nv21|rgba] < frames > frames

Every frame is read into the same memory, filtered there and written out again.
"""

import itertools
import sys

import lumora

LOOKS = ["moran", "xpro2", "hudson", "lofi"]
FRAMES_PER_LOOK = 50
BYTES_PER_PIXEL = {"nv12": 1.5, "nv21": 1.5, "rgba": 4}


def main(size, format="nv12", frames=sys.stdin.buffer, shown=sys.stdout.buffer):
    width, height = map(int, size.split("x"))
    frame = bytearray(int(width * height * BYTES_PER_PIXEL[format]))
    filters = [lumora.Filter(look, size=(width, height), format=format) for look in LOOKS]
    for number in itertools.count():
        if frames.readinto(frame) < len(frame):
            break
        filters[number // FRAMES_PER_LOOK % len(filters)](frame)
        shown.write(frame)


if __name__ == "__main__":
    main(*sys.argv[1:])
