#!/usr/bin/env python3
"""Gives a folder of photographs a look, on all processors.

    photographs.py FOLDER RESULTS [LOOK]
"""

import concurrent.futures
import os
import pathlib
import sys

from PIL import Image, ImageOps

import lumora


def filter_file(path, results, look):
    """Decoding, filtering and encoding all let other threads run meanwhile."""
    with Image.open(path) as photograph:
        upright = ImageOps.exif_transpose(photograph)
    # The processors are busy with one photograph each.
    result = lumora.apply(upright, look, single_thread=True)
    result.save(results / path.name, quality=92, exif=result.info.get("exif", b""),
                icc_profile=result.info.get("icc_profile"))
    return path.name


def main(folder, results, look="earlybird"):
    results = pathlib.Path(results)
    results.mkdir(exist_ok=True)
    paths = sorted(path for path in pathlib.Path(folder).iterdir()
                   if path.suffix.lower() in (".jpg", ".jpeg", ".png"))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for name in pool.map(lambda path: filter_file(path, results, look), paths):
            print(name)


if __name__ == "__main__":
    main(*sys.argv[1:])
