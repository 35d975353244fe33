"""The examples and the documentation page work as they are written."""

import importlib
import pathlib
import re
import shutil
import subprocess
import sys

import numpy
import pytest
from PIL import Image

import lumora
from conftest import noise

ROOT = pathlib.Path(__file__).resolve().parents[2]
EXAMPLES = ROOT / "python" / "examples"


@pytest.fixture
def example(monkeypatch):
    monkeypatch.syspath_prepend(EXAMPLES)
    return importlib.import_module


def run_example(name, *arguments, **more):
    return subprocess.run([sys.executable, EXAMPLES / name, *map(str, arguments)], check=True,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, **more)


def test_a_folder_of_photographs(scene, tmp_path):
    folder = tmp_path / "in"
    folder.mkdir()
    exif = Image.Exif()
    exif[0x0112] = 6
    exif[0x010F] = "a maker"
    scene.save(folder / "turned.jpg", exif=exif, quality=95)
    scene.save(folder / "plain.png")
    scene.convert("L").save(folder / "grey.jpg")
    (folder / "notes.txt").write_text("no photograph")
    done = run_example("photographs.py", folder, tmp_path / "out", "hudson")
    assert done.stdout.split() == [b"grey.jpg", b"plain.png", b"turned.jpg"] and not done.stderr
    result = Image.open(tmp_path / "out" / "plain.png")
    assert (numpy.asarray(result) == numpy.asarray(lumora.apply(scene, "hudson"))).all()
    turned = Image.open(tmp_path / "out" / "turned.jpg")
    assert turned.size == scene.size[::-1] and turned.getexif()[0x010F] == "a maker"
    assert 0x0112 not in turned.getexif()


@pytest.mark.parametrize("format", ["nv12", "rgba"])
def test_a_booth(format):
    count = 130
    frame = noise(90, 100).tobytes()[:100 * 90 * (4 if format == "rgba" else 3) // (
        1 if format == "rgba" else 2)]
    done = run_example("booth.py", "100x90", format, input=frame * count)
    assert len(done.stdout) == count * len(frame) and not done.stderr
    for number, look in (0, "moran"), (49, "moran"), (50, "xpro2"), (100, "hudson"), (129, "hudson"):
        with lumora.Filter(look, size=(100, 90), format=format) as filter:
            expected = bytearray(frame)
            filter(expected)
        assert done.stdout[number * len(frame):(number + 1) * len(frame)] == expected, number


def test_augmentation_depends_on_the_seed_alone(example):
    augment = example("augment").augment
    picture = noise(90, 100, 3)
    results = [augment(picture, seed).tobytes() for seed in range(60)]
    assert results == [augment(picture, seed).tobytes() for seed in range(60)]
    assert len(set(results)) > 40


def test_a_node_for_float_pictures(example):
    look_node = example("nodes").look_node
    batch = numpy.stack([noise(90, 100, 3, seed) for seed in range(3)])
    for dtype in numpy.float32, numpy.float64:
        result = look_node((batch / 255).astype(dtype), "lofi", 20)
        assert result.dtype == dtype and result.min() >= 0 and result.max() <= 1
        for before, after in zip(batch, result):
            expected = lumora.apply(before, "lofi", strength=20)
            assert (numpy.rint(after * 255) == expected).all()
    assert (look_node(batch / 255 + 2) == look_node(numpy.ones(batch.shape))).all()
    with pytest.raises(ValueError, match="count, height, width, 3"):
        look_node(batch[0])


def test_a_sheet_of_all_looks(scene, tmp_path):
    scene.save(tmp_path / "photo.jpg")
    done = run_example("sheet.py", tmp_path / "photo.jpg", tmp_path / "sheet.png")
    assert len(done.stdout.splitlines()) == len(lumora.looks)
    sheet = Image.open(tmp_path / "sheet.png")
    assert sheet.size == (1200, 720)
    # All tiles differ.
    tiles = {sheet.crop((x, y, x + 240, y + 160)).tobytes()
             for x in range(0, 1200, 240) for y in range(0, 720, 180)}
    assert len(tiles) == len(lumora.looks)


def test_the_page_works_as_written(scene, tmp_path, monkeypatch):
    page = (ROOT / "docs" / "python.md").read_text()
    blocks = re.findall(r"```python\n(.*?)```", page, re.S)
    assert len(blocks) >= 5
    scene.save(tmp_path / "photo.jpg", exif=Image.Exif())
    shutil.copytree(pathlib.Path(lumora.__file__).parent / "resources", tmp_path / "my-textures")
    (tmp_path / "camera.nv12").write_bytes(bytes(range(256)) * (1280 * 720 * 3 // 2 // 256) * 2)
    monkeypatch.chdir(tmp_path)
    shared = {}
    for block in blocks:
        exec(compile(block, "docs/python.md", "exec"), shared)
    assert (tmp_path / "result.jpg").stat().st_size > 0
    assert (tmp_path / "camera.nv12").read_bytes()[:1280 * 720] != bytes(range(256)) * 3600
    for name in re.findall(r"\]\(\.\./(python/[^)#]*)\)", page):
        assert (ROOT / name).exists(), name


def test_the_shown_results_are_what_comes_out():
    """The page's `>>>` lines."""
    import doctest
    failed, tried = doctest.testfile(str(ROOT / "docs" / "python.md"), module_relative=False,
                                     optionflags=doctest.ELLIPSIS | doctest.NORMALIZE_WHITESPACE)
    assert tried >= 4 and failed == 0


@pytest.mark.parametrize("thing", [lumora, lumora.apply, lumora.Filter, lumora.Filter.__init__,
                                   lumora.Filter.__call__, lumora.Filter.close, lumora.Look,
                                   lumora.Setting, lumora.Error])
def test_everything_is_documented(thing):
    assert thing.__doc__ and "@" not in thing.__doc__
