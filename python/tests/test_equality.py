"""The module gives the bytes that the tool gives."""

import numpy
import pytest

import lumora
from conftest import noise, settings_for

WIDTH, HEIGHT = 130, 96
BYTES = {"rgba": 4 * WIDTH * HEIGHT, "nv21": WIDTH * HEIGHT * 3 // 2, "nv12": WIDTH * HEIGHT * 3 // 2}


def frame_for(look, format):
    frame = noise(HEIGHT, WIDTH).tobytes()[:BYTES[format]]
    # Marks of age are placed at random, but never on dark ground.
    return bytes(v // 64 for v in frame) if look == "laodianying" else frame


@pytest.mark.parametrize("look", lumora.looks)
def test_every_format_and_strength_of_a_look_equals_the_tool(look, tool):
    settings = settings_for(look)
    for format in lumora.looks[look].formats:
        before = frame_for(look, format)
        for strength in (0, 9, 16, 27, 32):
            expected = tool.frame(look, before, (WIDTH, HEIGHT), format, strength, settings)
            with lumora.Filter(look, size=(WIDTH, HEIGHT), format=format, strength=strength,
                               single_thread=strength % 2 == 0, **settings) as filter:
                frame = bytearray(before)
                filter(frame)
            assert frame == expected, (format, strength)
            if format == "rgba":
                array = numpy.frombuffer(before, numpy.uint8).reshape(HEIGHT, WIDTH, 4)
                result = lumora.apply(array, look, strength=strength, **settings)
                assert result.tobytes() == expected, strength


@pytest.mark.parametrize("look, settings", [
    ("lianghong", {"direction": 0}),
    ("lianghong", {"direction": 3}),
    ("mosaic", {"rect": (2, 4, 100, 60)}),
    ("mosaic", {"rect": (0, 0, 64, 64), "block": 17}),
    ("colour-fix", {"colour": "#20c040", "tolerance": 60}),
    ("colour-fix", {"pick": (100, 50), "tolerance": 5}),
    ("blur", {"centre": (-10, 30), "radius": (20, 70)}),
    ("tilt-shift", {"band": (0, 0, 90, 90), "core": 32}),
])
def test_settings_mean_what_they_mean_to_the_tool(look, settings, tool):
    array = noise(HEIGHT, WIDTH)
    expected = tool.frame(look, array.tobytes(), (WIDTH, HEIGHT), "rgba", settings=settings)
    assert lumora.apply(array, look, **settings).tobytes() == expected
    assert expected != array.tobytes()


def test_a_mask_keeps_colour_where_it_is_not_zero(tmp_path, tool):
    from PIL import Image
    array, mask = noise(HEIGHT, WIDTH), numpy.zeros((HEIGHT, WIDTH), bool)
    mask[:, 40:90] = True
    picture = Image.fromarray(mask.astype(numpy.uint8) * 255)
    picture.save(tmp_path / "mask.png")
    settings = {"colour": (200, 30, 30), "tolerance": 255}
    expected = tool.frame("colour-fix", array.tobytes(), (WIDTH, HEIGHT), "rgba",
                          settings={"colour": "#c81e1e", "tolerance": 255,
                                    "mask": str(tmp_path / "mask.png")})
    for given in (mask, picture, numpy.asfortranarray(mask), memoryview(bytes(mask)).cast(
            "B", mask.shape)):
        assert lumora.apply(array, "colour-fix", mask=given, **settings).tobytes() == expected
    assert lumora.apply(array, "colour-fix", **settings).tobytes() != expected


def test_textures_and_tuning_come_from_the_named_folder(tmp_path, tool):
    own = tmp_path / "own"
    own.mkdir()
    tool.run("pack", "create", "--out", own / "mixIm.dat")
    tool.run("tune", "--default", own / "filter.xml")
    document = (own / "filter.xml").read_text()
    curve = " ".join(["7"] * 17)
    start = document.index("<filterB>")
    key = document.index("<param1>", start)
    end = document.index("</param1>", key)
    (own / "filter.xml").write_text(document[:key] + "<param1>" + curve + document[end:])
    result = lumora.apply(noise(), "rixi", resources=own)
    assert (result[..., 0] == 7).all()
    assert (lumora.apply(noise(), "rixi")[..., 0] != 7).any()


def test_the_looks_are_those_of_the_tool(tool):
    import json
    listed = json.loads(tool.run("looks", "--json"))
    assert len(listed) == len(lumora.looks)
    for theirs, ours in zip(listed, lumora.looks.values()):
        for name in ("name", "alias", "kind", "summary", "texture", "strength"):
            assert theirs[name] == getattr(ours, name)
        assert theirs["mode"] == ours.number and theirs["formats"] == list(ours.formats)
        for option, setting in zip(theirs["options"], ours.settings.values(), strict=True):
            assert option["option"] == f"--{setting.name}" and option["help"] == setting.help
            assert tuple(option.get("range", ())) == (setting.range or ())
            assert option.get("default") == setting.default
            assert setting.name in lumora.apply.__doc__
