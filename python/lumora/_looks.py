"""What the looks are: from the library's own table."""

from __future__ import annotations

import difflib
import textwrap
from collections.abc import Mapping
from types import MappingProxyType
from typing import Any, NamedTuple, TypeVar

from . import _core


class Setting(NamedTuple):
    """A setting of single looks."""

    name: str
    form: str  # of the value on a command line
    range: tuple[int, int] | None  # of each number, None without limits
    default: int | None  # None where `help` says what it is
    help: str


class Look(NamedTuple):
    """One of the twenty looks."""

    number: int
    name: str
    alias: str | None  # what it may be called in English, None where the name is English
    kind: str
    summary: str
    texture: str | None  # what it takes from the texture pack
    strength: str  # what the strength does
    formats: tuple[str, ...]
    settings: Mapping[str, Setting]


def _setting(row: tuple[Any, ...]) -> Setting:
    setting = Setting(*row)
    return setting._replace(help=setting.help.replace("\n", " "))


def _look(row: tuple[Any, ...]) -> Look:
    look = Look(*row)
    rows: Any = look.settings
    settings = {setting.name: setting for setting in map(_setting, rows)}
    return look._replace(formats=tuple(look.formats), settings=MappingProxyType(settings))


looks: Mapping[str, Look] = MappingProxyType(
    {look.name: look for look in map(_look, _core.facts())})
"""The looks by name, in the order of their numbers."""

_numbers: dict[str | int, int] = {
    key: look.number
    for look in looks.values()
    for key in (look.name, look.alias, look.number)
    if key is not None
}


def number_of(look: str | int | Look) -> int:
    """The number of a look by name, alias (in any case, with - or _), number, or Look."""
    if isinstance(look, Look):
        return look.number
    if not isinstance(look, (str, int)):
        raise TypeError(f"look must be a name or a number, not {type(look).__name__}")
    if look in _numbers:
        return _numbers[look]
    if isinstance(look, int):
        raise ValueError(f"there is no look with the number {look}")
    plain = look.lower().replace("_", "-").replace("color", "colour")
    if plain in _numbers:
        return _numbers[plain]
    names = [name for name in _numbers if isinstance(name, str)]
    near = difflib.get_close_matches(plain, names, 1)
    hint = f"; did you mean {near[0]!r}?" if near else "; lumora.looks has them all"
    raise ValueError(f"there is no look {look!r}{hint}")


def _settings_text() -> str:
    owners: dict[Setting, list[str]] = {}
    for look in looks.values():
        for setting in look.settings.values():
            owners.setdefault(setting, []).append(look.name)
    return "\n".join(
        textwrap.fill(f"{', '.join(names)}: {setting.help}", 84,
                      initial_indent=f"    {setting.name:<10} ", subsequent_indent=" " * 15)
        for setting, names in owners.items())


_Function = TypeVar("_Function")


def with_settings(function: _Function) -> _Function:
    """Completes a documentation text with the settings of single looks."""
    if function.__doc__:
        function.__doc__ = function.__doc__.replace("@settings@", _settings_text().lstrip())
    return function
