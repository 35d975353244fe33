"""What the tests share. LUMORA_TOOL names the tool that results are compared with."""

import os
import subprocess
import sys

import numpy
import pytest
from PIL import Image

import lumora


def settings_for(look):
    """What has to be given beside a look."""
    return {"colour": "#c81e1e"} if "colour" in lumora.looks[look].settings else {}


def as_options(settings):
    options = []
    for name, value in settings.items():
        text = value if isinstance(value, str) else ",".join(map(str, numpy.ravel(value)))
        options += [f"--{name}", text]
    return options


def noise(height=96, width=130, channels=4, seed=1):
    """Smooth colours with noise on them, from black to white."""
    random = numpy.random.default_rng(seed)
    y, x = numpy.mgrid[0:height, 0:width]
    base = numpy.stack([x * 255 / width, y * 255 / height, (x + y) % 256, 255 - x % 200], axis=-1)
    picture = base[..., :channels] + random.integers(-40, 41, (height, width, channels))
    return numpy.clip(picture, 0, 255).astype(numpy.uint8)


class Tool:
    """The command line tool."""

    def run(self, *arguments, **more):
        # A sanitizer's runtime that is loaded for the interpreter is in the tool already.
        environment = {key: value for key, value in os.environ.items() if key != "LD_PRELOAD"}
        return subprocess.run([os.environ["LUMORA_TOOL"], *map(str, arguments)], check=True,
                              stdout=subprocess.PIPE, env=environment, **more).stdout

    def frame(self, look, frame, size, format, strength=16, settings={}, stride=None):
        """The frame as `lumora frame` filters it."""
        options = as_options(settings) + (["--stride", stride] if stride else [])
        out = self.run("frame", "--look", look, "--format", format, "--size",
                       f"{size[0]}x{size[1]}", "--strength", strength, *options,
                       input=bytes(frame))
        assert len(out) == len(bytes(frame))
        return out


@pytest.fixture(scope="session")
def tool():
    return Tool()


@pytest.fixture(scope="session")
def scene(tool, tmp_path_factory):
    """The tool's sample photograph, small."""
    path = tmp_path_factory.mktemp("scene") / "scene.png"
    tool.run("sample", "--size", "320x240", path)
    with Image.open(path) as picture:
        return picture.convert("RGB")


@pytest.fixture
def run_python(tmp_path):
    """Runs a program in an interpreter of its own; returns what it wrote to both outputs."""
    def run(program, *arguments, **more):
        result = subprocess.run([sys.executable, "-c", program, *map(str, arguments)], cwd=tmp_path,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                                timeout=300, **more)
        assert result.returncode == 0, result.stdout
        return result.stdout
    return run
