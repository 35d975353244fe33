"""lumora.Filter: one look on frame after frame."""

from __future__ import annotations

import os
from typing import Any

from . import _core, _pillow
from ._apply import RESOURCES
from ._looks import Look, number_of, with_settings


class Filter:
    """A look prepared for frames of one size: filter(frame) rewrites a frame in place.

    Frames are buffers that can be written to: a bytearray, a memoryview, a mmap, a numpy array.
    Several threads may use one filter; they wait for each other. Used with `with` it is closed
    behind, which gives its memory back; so does its end.
    """

    @with_settings
    def __init__(
        self,
        look: str | int | Look,
        *,
        size: tuple[int, int],
        format: str = "rgba",
        stride: int | None = None,
        strength: int = _core.FULL_STRENGTH,
        single_thread: bool = False,
        resources: str | os.PathLike[str] | None = None,
        **settings: Any,
    ) -> None:
        """Prepares a look.

        look: a name, alias or number out of lumora.looks.
        size: width and height of the frames in pixels, 88 to 20000; even for nv21 and nv12.
        format: "rgba", "nv21" or "nv12".
        stride: bytes from row to row of frames that are one row of bytes; by default none lie
            between the rows.
        strength, single_thread, resources: as in lumora.apply.

        Settings of single looks, positions in pixels:
        @settings@
        """
        width, height = size
        self._filter = _core.Filter(
            number_of(look), format, (width, height), stride, strength, single_thread,
            RESOURCES if resources is None else resources, _pillow.with_arrays(settings))

    def __call__(self, frame: Any, *, strength: int | None = None, **settings: Any) -> None:
        """Rewrites a frame in place.

        frame: height * stride bytes (nv21, nv12: half as many again) in one row, or an array whose
            rows may lie apart: (height, width, 4) for rgba, (height * 3 / 2, width) for nv21 and
            nv12. (height, width, 3) goes through a copy.
        strength and settings: for this frame alone; by default those of the filter. The direction
            cannot change.
        """
        self._filter.apply(frame, strength, _pillow.with_arrays(settings) if settings else settings)

    def close(self) -> None:
        """Gives the memory back. Waits for a frame that is at work; later ones are refused."""
        self._filter.close()

    def __enter__(self) -> Filter:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()
