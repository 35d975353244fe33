"""Arrays and buffers of every layout: the same pixels, nothing beside them touched."""

import mmap

import numpy
import pytest

import lumora
from conftest import noise

FULL = 16


def expected_for(array, look="xpro2", strength=FULL):
    return lumora.apply(numpy.ascontiguousarray(array), look, strength=strength)


LAYOUTS = {
    "packed": lambda a: a,
    "crop": lambda a: a[3:, 7:],
    "corner": lambda a: a[-90:, -100:],
    "upside down": lambda a: a[::-1],
    "mirrored": lambda a: a[:, ::-1],
    "reversed channels": lambda a: a[..., 2::-1],
    "every second row": lambda a: a[::2],
    "every second pixel": lambda a: a[:, ::2],
    "columns first": lambda a: numpy.asfortranarray(a),
    "planes": lambda a: numpy.moveaxis(numpy.ascontiguousarray(numpy.moveaxis(a, 2, 0)), 0, 2),
    "without alpha": lambda a: a[..., :3],
    "broadcast": lambda a: numpy.broadcast_to(a[:1], a.shape),
    "big-endian bytes": lambda a: a.astype(">u1"),
}


@pytest.mark.parametrize("layout", LAYOUTS)
@pytest.mark.parametrize("strength", [5, FULL])
def test_a_source_may_have_any_layout(layout, strength):
    whole = noise(190, 201)
    source = LAYOUTS[layout](whole)
    before = whole.copy()
    result = lumora.apply(source, "xpro2", strength=strength)
    assert type(result) is numpy.ndarray and result.shape == source.shape
    assert (result == expected_for(source, strength=strength)).all()
    assert (whole == before).all()


@pytest.mark.parametrize("look", ["fugu", "xpro2", "meishimenghuan", "mosaic", "blur"])
@pytest.mark.parametrize("strength", [5, FULL])
@pytest.mark.parametrize("channels", [3, 4])
@pytest.mark.parametrize("own_alpha", [False, True])
def test_rows_may_lie_apart_in_place(look, strength, channels, own_alpha):
    whole = noise(130, 160, 4 if own_alpha else channels)
    before = whole.copy()
    part = whole[-97:, -101:, :channels]
    if own_alpha and channels == 3:
        with pytest.raises(ValueError, match="side by side"):
            lumora.apply(part, look, out=part)
        return
    expected = expected_for(part, look, strength)
    assert lumora.apply(part, look, strength=strength, out=part) is part
    assert (part == expected).all()
    whole[-97:, -101:, :channels] = before[-97:, -101:, :channels]
    assert (whole == before).all()


def test_out_gets_the_result_wherever_it_lies():
    source = noise(100, 120)
    expected = expected_for(source)
    apart = numpy.zeros((100, 150, 4), numpy.uint8)
    assert (lumora.apply(source, "xpro2", out=apart[:, :120])[:] == expected).all()
    assert not apart[:, 120:].any()
    # Reading from pixels that are already rewritten would show.
    shared = numpy.zeros((103, 120, 4), numpy.uint8)
    shared[:100] = source
    assert (lumora.apply(shared[:100], "xpro2", out=shared[3:]) == expected).all()
    assert (shared[:3] == source[:3]).all()


def test_buffers_need_no_numpy_array(tmp_path):
    source = noise(90, 100)
    expected = expected_for(source).tobytes()
    plain = lumora.apply(memoryview(source.tobytes()).cast("B", source.shape), "xpro2")
    assert isinstance(plain, memoryview) and plain.shape == source.shape
    assert plain.tobytes() == expected

    (tmp_path / "frames").write_bytes(source.tobytes() * 2)
    with open(tmp_path / "frames", "r+b") as file, mmap.mmap(file.fileno(), 0) as mapped, \
            lumora.Filter("xpro2", size=(100, 90)) as filter:
        filter(memoryview(mapped)[:len(expected)])
    assert (tmp_path / "frames").read_bytes() == expected + source.tobytes()


def test_a_filter_takes_every_form_of_a_frame():
    rgba, planes = noise(90, 100), noise(135, 100, 1)[..., 0]
    for format, frame in ("rgba", rgba), ("nv21", planes), ("nv12", planes):
        for strength in (5, FULL):
            with lumora.Filter("hudson", size=(100, 90), format=format, strength=strength) as filter:
                packed = bytearray(frame.tobytes())
                filter(packed)
                assert packed != frame.tobytes()
                array = frame.copy()
                filter(array)
                assert array.tobytes() == packed
                apart = numpy.full((len(frame), 130) + frame.shape[2:], 9, numpy.uint8)
                apart[:, :100] = frame
                filter(apart[:, :100])
                assert apart[:, :100].tobytes() == packed and (apart[:, 100:] == 9).all()
            row = 130 * (4 if format == "rgba" else 1)
            with lumora.Filter("hudson", size=(100, 90), format=format, strength=strength,
                               stride=row) as filter:
                apart[:, :100] = frame
                filter(apart.reshape(-1))
                assert apart[:, :100].tobytes() == packed and (apart[:, 100:] == 9).all()


def test_strength_and_settings_change_between_frames():
    with lumora.Filter("mosaic", size=(100, 90), strength=16, block=8) as filter:
        for strength, rect in (None, None), (3, None), (16, (0, 0, 20, 30)), (None, None):
            given = {} if rect is None else {"rect": rect}
            frame = noise(90, 100)
            filter(frame, strength=strength, **given)
            expected = lumora.apply(noise(90, 100), "mosaic", block=8,
                                    strength=16 if strength is None else strength, **given)
            assert (frame == expected).all()
    with lumora.Filter("colour-fix", size=(100, 90), colour="#c81e1e") as filter:
        filter(frame := noise(90, 100), pick=(50, 50))
        assert (frame == lumora.apply(noise(90, 100), "colour-fix", pick=(50, 50))).all()


@pytest.mark.parametrize("name", ["fugu", "FUGU", "retro", 3, "Retro"])
def test_a_look_has_several_names(name):
    assert (lumora.apply(noise(), name) == lumora.apply(noise(), lumora.looks["fugu"])).all()


def test_names_with_and_without_hyphens():
    expected = lumora.apply(noise(), "colour-fix", colour="#00ff00")
    for name in "Colour_Fix", "color-fix", "COLOUR-FIX":
        assert (lumora.apply(noise(), name, colour=(0, 255, 0)) == expected).all()
