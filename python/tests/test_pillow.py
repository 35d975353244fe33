"""Pillow pictures: what becomes of their mode, info and EXIF."""

import io

import numpy
import pytest
from PIL import Image

import lumora
from conftest import noise


def look_at(array, **settings):
    return lumora.apply(numpy.ascontiguousarray(array), "earlybird", **settings)


def wide(values):
    """A 16-bit picture as it comes out of a file."""
    file = io.BytesIO()
    Image.fromarray(values.astype("<u2")).save(file, "PNG")
    return Image.open(file)


RGBA = noise()
GREY = RGBA[..., 0]
GREYS = numpy.stack([GREY] * 3, axis=-1)


@pytest.mark.parametrize("picture, mode, pixels", [
    (Image.fromarray(RGBA), "RGBA", RGBA),
    (Image.fromarray(RGBA[..., :3].copy()), "RGB", RGBA[..., :3]),
    (Image.fromarray(GREY), "RGB", GREYS),
    (Image.fromarray(GREY).convert("1", dither=Image.Dither.NONE), "RGB",
     numpy.where(GREYS > 127, 255, 0).astype(numpy.uint8)),
    (Image.merge("LA", [Image.fromarray(GREY), Image.fromarray(RGBA[..., 3])]), "RGBA",
     numpy.dstack([GREYS, RGBA[..., 3]])),
    (wide(GREY.astype(int) * 256 + 255), "RGB", GREYS),
    (Image.fromarray(GREY.astype(numpy.int32) * 256 + 77), "RGB", GREYS),
    (Image.merge("CMYK", [Image.fromarray(255 - RGBA[..., i]) for i in range(3)]
                 + [Image.new("L", (130, 96))]), "RGB", RGBA[..., :3]),
], ids=["RGBA", "RGB", "L", "1", "LA", "16-bit", "I", "CMYK"])
def test_modes(picture, mode, pixels):
    before = picture.tobytes()
    result = lumora.apply(picture, "earlybird", strength=20)
    assert result.mode == mode and result is not picture
    assert (numpy.asarray(result) == look_at(pixels, strength=20)).all()
    assert picture.tobytes() == before


def test_palettes_become_colours_and_transparency_alpha():
    picture = Image.fromarray(RGBA[..., :3].copy()).quantize(17)
    colours = numpy.asarray(picture.convert("RGB"))
    assert (numpy.asarray(lumora.apply(picture, "earlybird")) == look_at(colours)).all()
    picture.info["transparency"] = 3
    result = lumora.apply(picture, "earlybird")
    assert result.mode == "RGBA" and "transparency" not in result.info
    alpha = numpy.where(numpy.asarray(picture) == 3, 0, 255)
    assert (numpy.asarray(result)[..., 3] == alpha).all() and (alpha == 0).any()


@pytest.mark.parametrize("kind", ["JPEG", "PNG", "TIFF"])
def test_info_and_exif_stay(kind):
    picture = Image.fromarray(RGBA[..., :3].copy())
    exif = Image.Exif()
    exif[0x010F] = "a maker"
    file = io.BytesIO()
    picture.save(file, kind, exif=exif, dpi=(300, 300), icc_profile=b"a profile")
    opened = Image.open(file)
    result = lumora.apply(opened, "fugu")
    assert result.getexif()[0x010F] == "a maker"
    assert result.info["icc_profile"] == b"a profile" and "dpi" in result.info
    again = io.BytesIO()
    result.save(again, "PNG")
    assert (numpy.asarray(Image.open(again)) == numpy.asarray(result)).all()
    result.putpixel((0, 0), (1, 2, 3))
    assert result.getpixel((0, 0)) == (1, 2, 3)


def test_the_result_is_that_of_the_tool(tool, scene, tmp_path):
    for name, picture in ("rgb", scene), ("l", scene.convert("L")), ("wide", wide(
            numpy.asarray(scene.convert("L")).astype(int) * 256 + 9)):
        picture.save(tmp_path / f"{name}.png")
        tool.run("apply", "--force", "--look", "hudson", tmp_path / f"{name}.png", tmp_path / "out.png")
        theirs = numpy.asarray(Image.open(tmp_path / "out.png").convert("RGB"))
        ours = numpy.asarray(lumora.apply(Image.open(tmp_path / f"{name}.png"), "hudson"))
        assert (ours == theirs).all(), name


@pytest.mark.parametrize("picture, message", [
    (Image.new("F", (100, 100)), "floating point"),
    (Image.new("RGB", (87, 100)), "image is 87 x 100 pixels"),
    (Image.new("RGB", (0, 100)), "image is empty"),
])
def test_pictures_that_are_refused(picture, message):
    with pytest.raises(ValueError, match=message):
        lumora.apply(picture, "fugu")
    with pytest.raises(TypeError, match="out goes with arrays"):
        lumora.apply(picture, "fugu", out=noise())
