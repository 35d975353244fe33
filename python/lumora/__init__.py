"""Picture filters: twenty looks for photographs, arrays and camera frames.

    lumora.apply(image, "fugu")        a Pillow picture or an array; returns a new one
    lumora.Filter("xpro2", size=...)   the same look on frame after frame, in place
    lumora.looks                       what the looks are called and do

Nothing is printed. Pillow and numpy are used where the program has them and not needed otherwise.
"""

from ._apply import apply
from ._core import VERSION as __version__
from ._core import Error
from ._filter import Filter
from ._looks import Look, Setting, looks

__all__ = ["Error", "Filter", "Look", "Setting", "apply", "looks"]
