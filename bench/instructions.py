#!/usr/bin/env python3
"""Counts the instructions that each mode executes per pixel, under valgrind's callgrind.

    bench/instructions.py LUMORA RESULT.json

LUMORA: the command line tool. One frame of 1920 x 1080 is filtered on the calling thread, its
textures prepared; only the call that filters counts. Counts are the same on every run, whatever
else the machine does; valgrind has AVX2 but no wider vectors.
"""

import json
import os
import re
import subprocess
import sys
import tempfile

WIDTH, HEIGHT = 1920, 1080
FORMATS = {"rgba": 4, "nv12": 1.5}
# What some modes need or are measured with.
OPTIONS = {"colour-fix": ["--colour", "#c04020"], "blur": ["--strength", "3"],
           "tilt-shift": ["--strength", "3"]}


def frame(path, bytes_per_pixel):
    """Bytes that all differ in a repeatable way."""
    state, block = 1, bytearray()
    for _ in range(65536):
        state = state * 1664525 + 1013904223 & 0xFFFFFFFF
        block.append(state >> 24)
    count = int(WIDTH * HEIGHT * bytes_per_pixel)
    with open(path, "wb") as file:
        file.write((bytes(block) * (count // len(block) + 1))[:count])


def instructions(lumora, mode, form, path):
    command = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null",
               "--toggle-collect=filterProcess*", lumora, "frame", "--single-thread", "--look", mode,
               *OPTIONS.get(mode, []), "--format", form, "--size", f"{WIDTH}x{HEIGHT}", path,
               os.devnull]
    run = subprocess.run(command, capture_output=True, text=True, check=False)
    found = re.search(r"Collected : (\d+)", run.stderr)
    if run.returncode != 0 or not found:
        sys.exit(f"{' '.join(command)}:\n{run.stderr}")
    return int(found[1]) / (WIDTH * HEIGHT)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    lumora, result = sys.argv[1:]
    modes = json.loads(subprocess.check_output([lumora, "looks", "--json"]))
    counts = {}
    for form, bytes_per_pixel in FORMATS.items():
        with tempfile.NamedTemporaryFile(suffix="." + form) as picture:
            frame(picture.name, bytes_per_pixel)
            for mode in modes:
                if form not in mode["formats"]:
                    continue
                count = instructions(lumora, mode["name"], form, picture.name)
                counts.setdefault(mode["name"].upper().replace("-", ""), {})[form] = round(count, 3)
                print(f"{mode['name']:16} {form}  {count:7.2f} instructions a pixel")
    with open(result, "w", encoding="utf-8") as file:
        json.dump(counts, file, indent=1)


if __name__ == "__main__":
    main()
