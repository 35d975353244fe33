#!/usr/bin/env python3
"""Times the package and compares it with the tool and with Pillow, in one run.

    PYTHONPATH=BUILD/python python/tests/speed.py BUILD/tools/lumora/lumora [PART...]

The parts are looks, overhead, threads and pillow; all of them by default.
"""

import json
import pathlib
import statistics
import subprocess
import sys
import tempfile
import threading
import time

import numpy
from PIL import Image, ImageChops

import lumora

TOOL = sys.argv[1]


def seconds(work, rounds, prepare=lambda: None):
    """The median of several rounds; the first warms up."""
    times = []
    for _ in range(rounds + 1):
        prepare()
        start = time.perf_counter()
        work()
        times.append(time.perf_counter() - start)
    return statistics.median(times[1:])


def tool(*arguments):
    return subprocess.run([TOOL, *map(str, arguments)], check=True, capture_output=True).stdout


def bench(picture, *options):
    """Seconds by look, as the tool times them."""
    report = json.loads(tool("bench", "--json", "--single-thread", *options, picture))
    return {look["look"]: look["ms"] / 1e3 for look in report["looks"]}


def against_the_tool(scene, folder):
    scene.save(folder / "scene.png")
    theirs = bench(folder / "scene.png", "--rounds", 31)
    source = numpy.asarray(scene.convert("RGBA"))
    work = source.copy()
    print(f"{scene.width} x {scene.height} pixels, one thread, milliseconds")
    for look, limit in theirs.items():
        # What the tool keeps in its measurement.
        settings = {"colour": "#c81e1e"} if "colour" in lumora.looks[look].settings else {}
        ours = seconds(
            lambda: lumora.apply(work, look, out=work, single_thread=True, **settings), 31,
            lambda: numpy.copyto(work, source))
        print(f"  {look:16} {1e3 * ours:7.3f}  lumora bench {1e3 * limit:7.3f}  {ours / limit:5.2f}")


def overhead(scene, folder):
    small = scene.resize((88, 88))
    small.save(folder / "small.png")
    call = bench(folder / "small.png", "--looks", "heibai", "--rounds", 10000)["heibai"]
    array = numpy.array(small.convert("RGBA"))
    apply = seconds(lambda: lumora.apply(array, "heibai", out=array, single_thread=True), 10000)
    with lumora.Filter("heibai", size=(88, 88), single_thread=True) as filter:
        frame = seconds(lambda: filter(array), 10000)
    print(f"beyond the library's {1e6 * call:.1f} microseconds, 88 x 88 pixels: "
          f"apply {1e6 * (apply - call):.1f}, Filter {1e6 * (frame - call):.1f}")


def threads(scene, _folder):
    def run(count, calls=400):
        arrays = [numpy.array(scene.convert("RGBA")) for _ in range(count)]

        def work(array):
            for _ in range(calls // count):
                lumora.apply(array, "hudson", out=array, single_thread=True)

        workers = [threading.Thread(target=work, args=(array,)) for array in arrays]
        start = time.perf_counter()
        for worker in workers:
            worker.start()
        for worker in workers:
            worker.join()
        return calls / (time.perf_counter() - start)

    run(4)
    one, four = (statistics.median(run(count) for _ in range(5)) for count in (1, 4))
    print(f"hudson, pictures a second: one Python thread {one:.0f}, four {four:.0f}, "
          f"{four / one:.2f} times")


def curves(folder, name, grey):
    """What earlybird makes of greys under a plain texture, as a table for Image.point."""
    Image.new("L", (64, 64), grey).save(folder / "plain.png")
    (folder / name).mkdir()
    tool("pack", "create", "--out", folder / name / "mixIm.dat", "--slot",
         f"vignette={folder / 'plain.png'}")
    ramp = numpy.zeros((88, 256, 4), numpy.uint8)
    ramp[..., :3] = numpy.arange(256)[None, :, None]
    return lumora.apply(ramp, "earlybird", resources=folder / name)[0, :, :3].T.ravel().tolist()


def against_pillow(scene, folder):
    (folder / "textures").mkdir()
    tool("pack", "extract", pathlib.Path(lumora.__file__).parent / "resources" / "mixIm.dat",
         folder / "textures")
    vignette = Image.open(folder / "textures" / "vignette.png").convert("L").resize(
        scene.size, Image.Resampling.BILINEAR)
    dark, bright = curves(folder, "dark", 0), curves(folder, "bright", 255)

    def with_pillow():
        faded = Image.blend(scene, scene.convert("L").convert("RGB"), 0.25)
        return Image.composite(faded.point(bright), faded.point(dark), vignette)

    ours = lumora.apply(scene, "earlybird")
    difference = numpy.asarray(ImageChops.difference(ours, with_pillow())).mean()
    assert difference < 2, f"another look: {difference:.1f} off on average"
    array = numpy.array(scene.convert("RGBA"))
    theirs = seconds(with_pillow, 31)
    print(f"earlybird on {scene.width} x {scene.height} pixels: Pillow's operations "
          f"{1e3 * theirs:.2f} ms (its pixels are {difference:.1f} off on average)")
    for name, work in (
            ("array in place, one thread",
             lambda: lumora.apply(array, "earlybird", out=array, single_thread=True)),
            ("array in place", lambda: lumora.apply(array, "earlybird", out=array)),
            ("array to a new one", lambda: lumora.apply(array, "earlybird")),
            ("Pillow picture to a new one", lambda: lumora.apply(scene, "earlybird"))):
        taken = seconds(work, 31)
        print(f"  {name:28} {1e3 * taken:7.3f} ms, {theirs / taken:5.1f} times as fast")


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        tool("sample", folder / "sample.png")
        scene = Image.open(folder / "sample.png").convert("RGB").resize((1000, 1000))
        parts = {"looks": against_the_tool, "overhead": overhead, "threads": threads,
                 "pillow": against_pillow}
        for part in sys.argv[2:] or parts:
            parts[part](scene, folder)


if __name__ == "__main__":
    main()
