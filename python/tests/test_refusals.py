"""What cannot be done raises, says which argument is wrong and how, and changes nothing."""

import ctypes

import numpy
import pytest

import lumora
from conftest import noise

PICTURE = noise()


def read_only(array):
    array = array.copy()
    array.setflags(write=False)
    return array


@pytest.mark.parametrize("image, error, message", [
    ([[1, 2]], TypeError, "image is no picture and no buffer .* list"),
    (None, TypeError, "NoneType"),
    (PICTURE.astype(float), TypeError, "format 'd'"),
    (PICTURE.astype(numpy.int8), TypeError, "format 'b'"),
    (PICTURE.view(numpy.uint32), TypeError, "format 'I'"),
    (PICTURE[..., 0], ValueError, r"image has the shape \(96, 130\)"),
    (PICTURE[..., :2], ValueError, r"\(96, 130, 2\)"),
    (PICTURE[None], ValueError, r"\(1, 96, 130, 4\)"),
    (bytes(400), ValueError, r"\(400,\)"),
    (PICTURE[:0], ValueError, "image is 130 x 0 pixels; looks need 88"),
    (PICTURE[:, :87], ValueError, "image is 87 x 96"),
    (numpy.broadcast_to(PICTURE[:1, :1], (88, 20001, 4)), ValueError, "20001 x 88"),
])
def test_images(image, error, message):
    with pytest.raises(error, match=message):
        lumora.apply(image, "fugu")


@pytest.mark.parametrize("out, error, message", [
    (read_only(PICTURE), ValueError, "out is read-only"),
    (PICTURE.tobytes(), ValueError, r"out has the shape \(49920,\)|needed is"),
    (memoryview(PICTURE.tobytes()).cast("B", PICTURE.shape), ValueError, "out is read-only"),
    (noise(96, 131), ValueError, r"out has the shape \(96, 131, 4\), image \(96, 130, 4\)"),
    (noise(96, 130, 3), ValueError, "out has the shape"),
    (noise()[::-1], ValueError, "out cannot be written in place.*-520"),
    (noise()[:, ::-1], ValueError, "side by side"),
    (noise()[..., ::-1], ValueError, "side by side"),
    (numpy.asfortranarray(noise()), ValueError, "side by side"),
    (noise(96, 260)[:, ::2], ValueError, "side by side"),
    (noise().astype(numpy.float32), TypeError, "out has items of the format 'f'"),
    ("text", TypeError, "out is no picture .* str"),
])
def test_outs(out, error, message):
    before = bytes(out) if not isinstance(out, str) else None
    with pytest.raises(error, match=message):
        lumora.apply(PICTURE, "fugu", out=out)
    assert before is None or bytes(out) == before


@pytest.mark.parametrize("look, arguments, error, message", [
    ("fugo", {}, ValueError, "there is no look 'fugo'; did you mean 'fugu'?"),
    ("zzzzzz", {}, ValueError, "lumora.looks has them all"),
    (21, {}, ValueError, "there is no look with the number 21"),
    (-1, {}, ValueError, "number -1"),
    (None, {}, TypeError, "look must be a name or a number, not NoneType"),
    ("fugu", {"strength": 33}, ValueError, r"strength 33 is outside 0\.\.32"),
    ("fugu", {"strength": -1}, ValueError, "strength -1"),
    ("fugu", {"strength": 1.5}, TypeError, "strength must be a whole number"),
    ("fugu", {"strength": 1 << 40}, ValueError, "strength has a number beyond 32 bits"),
    ("fugu", {"rect": (0, 0, 8, 8)}, TypeError, "rect belongs to the look mosaic, not fugu"),
    ("fugu", {"strenght": 3}, TypeError, "there is no setting 'strenght'"),
    ("mosaic", {"rect": (0, 0, 8)}, ValueError, "rect takes 4 numbers: X,Y,W,H"),
    ("mosaic", {"rect": 3}, ValueError, "rect takes 4 numbers"),
    ("mosaic", {"rect": "0,0,8,8"}, TypeError, "rect takes whole numbers"),
    ("mosaic", {"rect": (0, 0, 8.0, 8)}, TypeError, "rect takes whole numbers"),
    ("mosaic", {"rect": (1, 0, 8, 8)}, ValueError, "odd or below 0"),
    ("mosaic", {"rect": (0, 0, 1 << 70, 8)}, ValueError, "rect has a number beyond 32 bits"),
    ("mosaic", {"rect": (100, 0, 40, 40)}, ValueError, "reaches beyond"),
    ("mosaic", {"block": 7}, ValueError, r"7 is outside 8\.\.2000 of block"),
    ("mosaic", {"block": None}, TypeError, "block takes a whole number"),
    ("mosaic", {"rect": (0, 0, 20, 20), "block": 22}, ValueError, "do not fit"),
    ("blur", {"radius": (5, 4)}, ValueError, "radius"),
    ("lianghong", {"direction": 4}, ValueError, "direction"),
    ("colour-fix", {}, ValueError, "either colour or pick"),
    ("colour-fix", {"colour": "#123456", "pick": (1, 1)}, ValueError, "either colour or pick"),
    ("colour-fix", {"colour": "red"}, ValueError, "colour 'red' is not of the form"),
    ("colour-fix", {"colour": (1, 2, 256)}, ValueError, "256"),
    ("colour-fix", {"pick": (130, 0)}, ValueError, "outside"),
    ("colour-fix", {"pick": (0, 0), "mask": PICTURE}, ValueError, "mask has the shape"),
    ("colour-fix", {"pick": (0, 0), "mask": 3}, TypeError, "mask is no picture"),
])
def test_looks_strengths_and_settings(look, arguments, error, message):
    picture = PICTURE.copy()
    with pytest.raises(error, match=message):
        lumora.apply(picture, look, out=picture, **arguments)
    assert (picture == PICTURE).all()
    with pytest.raises(error, match=message):
        with lumora.Filter(look, size=(130, 96), **arguments) as filter:
            filter(picture)
    assert (picture == PICTURE).all()


@pytest.mark.parametrize("arguments, error, message", [
    ({"size": (87, 100)}, ValueError, "size is 87 x 100 pixels"),
    ({"size": (100, 20001)}, ValueError, "size is 100 x 20001"),
    ({"size": (-5, 100)}, ValueError, "size is 0 x 100"),
    ({"size": (100,)}, ValueError, "unpack"),
    ({"size": 100}, TypeError, ""),
    ({"size": (100.5, 100)}, TypeError, "size must be a whole number"),
    ({"size": (1 << 40, 100)}, ValueError, "size has a number beyond 32 bits"),
    ({"size": (100, 100), "format": "yuyv"}, ValueError, "format 'yuyv' is not one of rgba, nv21"),
    ({"size": (101, 100), "format": "nv21"}, ValueError, "even sides"),
    ({"size": (100, 100), "stride": 399}, ValueError, "stride 399 is below the 400"),
    ({"size": (100, 100), "stride": 1 << 31}, ValueError, "stride"),
    ({"size": (100, 100), "resources": 5}, TypeError, ""),
])
def test_filters(arguments, error, message):
    with pytest.raises(error, match=message):
        lumora.Filter("xpro2", **arguments)


def test_colour_fix_has_no_camera_frames():
    with pytest.raises(ValueError, match="rgba frames only"):
        lumora.Filter("colour-fix", size=(100, 100), format="nv12", colour="#ff0000")


@pytest.mark.parametrize("format, frame, error, message", [
    ("rgba", bytearray(39999), ValueError, "frame has 39999 bytes; .* have 40000"),
    ("rgba", bytes(40000), ValueError, "frame is read-only"),
    ("rgba", noise(100, 101), ValueError, "frame is 101 x 100 pixels; the filter is for 100 x 100"),
    ("rgba", numpy.zeros(80000, numpy.uint8)[::2], ValueError, "side by side"),
    ("nv21", bytearray(40000), ValueError, "have 15000"),
    ("nv21", noise(100, 100), ValueError, r"needed is \(150, 100\)"),
    ("nv12", noise(150, 200, 1)[:, ::2, 0], ValueError, "side by side"),
    ("nv12", noise(150, 100, 1)[::-1, :, 0], ValueError, "side by side"),
    ("nv12", 7, TypeError, "frame is no picture .* int"),
])
def test_frames(format, frame, error, message):
    with lumora.Filter("xpro2", size=(100, 100), format=format) as filter:
        with pytest.raises(error, match=message):
            filter(frame)


def test_a_filter_that_is_closed_or_turned():
    filter = lumora.Filter("lianghong", size=(100, 100), direction=1)
    frame = noise(100, 100)
    with pytest.raises(ValueError, match="direction cannot change"):
        filter(frame, direction=2)
    with pytest.raises(ValueError, match="strength 33"):
        filter(frame, strength=33)
    with pytest.raises(ValueError, match="strength"):
        filter(frame, strength=(1 << 62))
    filter(frame, direction=1)
    filter.close()
    filter.close()
    with pytest.raises(ValueError, match="the filter is closed"):
        filter(frame)


def test_resources_that_are_missing_or_damaged(tmp_path):
    with pytest.raises(FileNotFoundError) as caught:
        lumora.apply(PICTURE, "xpro2", resources=tmp_path)
    assert caught.value.filename == str(tmp_path / "mixIm.dat")
    (tmp_path / "mixIm.dat").write_bytes(b"short")
    for make in (lambda: lumora.apply(PICTURE, "xpro2", resources=str(tmp_path)),
                 lambda: lumora.Filter("fugu", size=(100, 100), resources=tmp_path)):
        with pytest.raises(lumora.Error, match="mixIm.dat: is not a usable texture pack: .*size"):
            make()
    long = tmp_path
    for _ in range(4):
        long /= "n" * 80
    long.mkdir(parents=True)
    (long / "mixIm.dat").write_bytes(b"")
    with pytest.raises(lumora.Error):
        lumora.apply(PICTURE, "xpro2", resources=long)
    with pytest.raises(ValueError, match="null"):
        lumora.apply(PICTURE, "xpro2", resources="a\0b")


def test_ctypes_arrays_and_other_owners():
    """Their formats name an order of bytes, which single bytes do not have."""
    frame = (ctypes.c_uint8 * 40000)()
    with lumora.Filter("fugu", size=(100, 100)) as filter:
        filter(frame)
    assert bytes(frame) == lumora.apply(numpy.zeros((100, 100, 4), numpy.uint8), "fugu").tobytes()
