from collections.abc import Mapping
from os import PathLike
from typing import Any

FULL_STRENGTH: int
VERSION: str

class Error(RuntimeError): ...

class Filter:
    def __new__(
        cls,
        number: int,
        format: str,
        size: tuple[int, int],
        stride: int | None,
        strength: int,
        single_thread: bool,
        resources: str | PathLike[str],
        settings: Mapping[str, Any],
    ) -> Filter: ...
    def apply(self, frame: Any, strength: int | None, settings: Mapping[str, Any]) -> None: ...
    def close(self) -> None: ...

def apply(
    image: Any,
    out: Any,
    number: int,
    strength: int,
    single_thread: bool,
    resources: str | PathLike[str],
    settings: Mapping[str, Any],
) -> bytes | None: ...
def facts() -> list[tuple[Any, ...]]: ...
