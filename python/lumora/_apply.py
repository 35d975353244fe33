"""lumora.apply: one look on one picture."""

from __future__ import annotations

import os
import sys
from typing import Any, TypeVar, overload

from . import _core, _pillow
from ._looks import Look, number_of, with_settings

RESOURCES = os.path.join(os.path.dirname(__file__), "resources")


_Image = TypeVar("_Image")
_Out = TypeVar("_Out")


def _new_like(image: Any) -> Any:
    """An array of the shape of an array, or a memoryview of the shape of another buffer."""
    numpy = sys.modules.get("numpy")
    if numpy and isinstance(image, numpy.ndarray):
        return numpy.empty(image.shape, numpy.uint8)
    try:
        shape = memoryview(image).shape or ()
    except TypeError:
        shape = ()
    if len(shape) != 3 or 0 in shape:
        return image  # which is refused with a reason
    return memoryview(bytearray(shape[0] * shape[1] * shape[2])).cast("B", shape)


@overload
def apply(
    image: _Image,
    look: str | int | Look,
    *,
    strength: int = ...,
    out: None = ...,
    single_thread: bool = ...,
    resources: str | os.PathLike[str] | None = ...,
    **settings: Any,
) -> _Image: ...


@overload
def apply(
    image: object,
    look: str | int | Look,
    *,
    strength: int = ...,
    out: _Out,
    single_thread: bool = ...,
    resources: str | os.PathLike[str] | None = ...,
    **settings: Any,
) -> _Out: ...


@with_settings
def apply(
    image: Any,
    look: str | int | Look,
    *,
    strength: int = _core.FULL_STRENGTH,
    out: Any = None,
    single_thread: bool = False,
    resources: str | os.PathLike[str] | None = None,
    **settings: Any,
) -> Any:
    """Gives a picture a look and returns the result.

    image: a Pillow picture, or an array: numpy's, or anything else with the buffer protocol, of
        bytes and of the shape (height, width, 3 or 4): R, G, B and maybe alpha, which no look
        changes. 88 to 20000 pixels on either side. The strides may be any.
    look: a name, alias or number out of lumora.looks.
    strength: 0 half effect, 16 full, 17 to 32 stronger; some looks use it otherwise, which
        lumora.looks[...].strength says.
    out: an array of the same shape, written to and returned instead of a new one; it may be the
        image itself. Its pixels lie side by side in rows, with any distance between the rows.
    single_thread: filter in the calling thread, without four threads for the call.
    resources: folder with a texture pack mixIm.dat and, optionally, a tuning document filter.xml,
        instead of those that came with the module. They are read when a look first needs them.

    Settings of single looks, positions in pixels:
    @settings@

    A Pillow picture returns as a new one with its info and EXIF; RGB and RGBA keep their mode, all
    others become RGB, or RGBA where they have transparency, 16-bit ones by their upper 8 bits. A
    numpy array returns as a new array, another buffer as a memoryview.

    Raises ValueError, TypeError, FileNotFoundError, MemoryError, and lumora.Error for what the
    library refuses otherwise.
    """
    call = (number_of(look), strength, single_thread, RESOURCES if resources is None else resources,
            _pillow.with_arrays(settings) if settings else settings)
    if _pillow.is_picture(image):
        if out is not None:
            raise TypeError("out goes with arrays, not with Pillow pictures")
        return _pillow.filtered(image, lambda pixels: _core.apply(pixels, None, *call))
    result = _new_like(image) if out is None else out
    _core.apply(image, result, *call)
    return result
