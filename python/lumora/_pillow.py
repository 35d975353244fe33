"""Pillow pictures. Pillow is never imported here: whoever has a picture has imported it."""

from __future__ import annotations

import sys
from collections.abc import Callable, Mapping
from typing import Any

_WIDE = ("I", "I;16", "I;16L", "I;16B", "I;16N")


def is_picture(value: object) -> bool:
    module = sys.modules.get("PIL.Image")
    return module is not None and isinstance(value, module.Image)


def _grey(image: Any) -> Any:
    """A picture of one channel of 8 bits, of 16-bit ones the upper 8."""
    if image.mode in _WIDE:
        image = image.convert("I").point(lambda value: value * (1 / 256))
    return image.convert("L")


def with_arrays(settings: Mapping[str, Any]) -> dict[str, Any]:
    """The settings, a Pillow picture among them (a mask) as an array."""
    return {name: _mask(value) if is_picture(value) else value
            for name, value in settings.items()}


def _mask(image: Any) -> memoryview:
    grey = _grey(image)
    return memoryview(grey.tobytes()).cast("B", (grey.height, grey.width))


def _coloured(image: Any) -> Any:
    """The picture as RGB or RGBA."""
    if image.mode in _WIDE:
        return _grey(image).convert("RGB")
    if image.mode == "F":
        raise ValueError("image has floating point pixels; bring them to 0..255 with "
                         "image.convert('L') first")
    if image.mode in ("LA", "La", "PA", "RGBa") or "transparency" in image.info:
        return image.convert("RGBA")
    return image if image.mode in ("RGB", "RGBA") else image.convert("RGB")


def filtered(image: Any, apply: Callable[[memoryview], bytes | None]) -> Any:
    """A new picture: apply(pixels) returns the bytes of an array with the look."""
    module = sys.modules["PIL.Image"]
    source = _coloured(image)
    layout = "RGBX" if source.mode == "RGB" else "RGBA"
    shape = (source.height, source.width, 4)
    if 0 in shape:
        raise ValueError(f"image is empty: {source.width} x {source.height} pixels")
    pixels = memoryview(source.tobytes("raw", layout)).cast("B", shape)
    picture = module.frombytes(source.mode, source.size, apply(pixels), "raw", layout)
    picture.info = source.info.copy()
    exif = image.getexif()
    if exif:
        picture.info["exif"] = exif.tobytes()
    return picture
