"""Options as data: what argparse, manual pages, completion and project files are made from.

A command's options are the attributes of a class derived from `Options`: the attribute's name is
the option's, its annotation the type of the value, and `flag`, `value`, `values` or `operands` say
the rest.
"""

from __future__ import annotations

import os
from collections.abc import Callable
from dataclasses import dataclass
from typing import Any, NamedTuple


class ValueType(NamedTuple):
    """How a value is written: what help calls it, and what its text becomes.

    `parse` raises ValueError or OrvError for a text that is no such value. `below` puts a relative
    value into a folder; None when the value names no place. `completes` is what a shell offers:
    "file", "folder" or nothing.
    """

    metavar: str
    parse: Callable[[str], Any] = str
    below: Callable[[str, Any], Any] | None = None
    completes: str = ""
    choices: tuple[str, ...] = ()


@dataclass(eq=False)
class Option:
    """One option of a command. Without a type it is a flag."""

    help: str
    type: ValueType | None = None
    default: object = None
    repeatable: bool = False
    positional: bool = False
    exclusive: str = ""
    # What the class that declares it calls it, and the class's GROUP.
    name: str = ""
    group: str = ""

    def __set_name__(self, holder: object, name: str) -> None:
        self.name = name.replace("_", "-")
        self.group = getattr(holder, "GROUP", "")

    @property
    def attribute(self) -> str:
        """The name of the field that holds the value."""
        return self.name.replace("-", "_")

    @property
    def full_help(self) -> str:
        """The help as it is shown."""
        return self.help + (" (repeatable)" if self.repeatable and not self.positional else "")


def text(metavar: str) -> ValueType:
    """Any text."""
    return ValueType(metavar)


def file(metavar: str) -> ValueType:
    """The path of a file."""

    def parse(text: str) -> str:
        if text in ("", "-"):
            hint = "; ./- is a file of this name" if text else ""
            raise ValueError(f"expected the path of a file, got {text!r}{hint}")
        return text

    return ValueType(metavar, parse, below=os.path.join, completes="file")


def folder(metavar: str) -> ValueType:
    """The path of a folder."""
    return ValueType(metavar, below=os.path.join, completes="folder")


def choice(*choices: str) -> ValueType:
    """One of a few words."""
    return ValueType("{" + ",".join(choices) + "}", choices=choices)


def number(metavar: str, least: int = 0) -> ValueType:
    """A whole number, `least` or more."""

    def parse(text: str) -> int:
        if not text.isdecimal() or int(text) < least:
            above = f" from {least}" if least else ""
            raise ValueError(f"expected a whole number{above}, got {text!r}")
        return int(text)

    return ValueType(metavar, parse)


def flag(help: str, *, exclusive: str = "") -> Any:
    """An option without a value. Of those with the same `exclusive`, one can be given."""
    return Option(help, default=False, exclusive=exclusive)


def value(type: ValueType, help: str, *, default: object = None) -> Any:
    """An option with one value."""
    return Option(help, type, default)


def values(type: ValueType, help: str) -> Any:
    """An option that can be repeated; its values are a list, in order."""
    return Option(help, type, repeatable=True)


def operands(type: ValueType, help: str) -> Any:
    """Arguments without a name, a list."""
    return Option(help, type, repeatable=True, positional=True)


class Options:
    """The values of a command's options: those that were given, and the others' defaults."""

    def __init__(self, **given: Any) -> None:
        for option in options_of(type(self)):
            missing = [] if option.repeatable else option.default
            setattr(self, option.attribute, given.pop(option.attribute, missing))
        if given:
            raise TypeError(f"no option is named {', '.join(given)}")


def options_of(holder: type[Options]) -> list[Option]:
    """The options that a class declares, those of its bases first."""
    classes = reversed(holder.__mro__)
    return [found for each in classes for found in vars(each).values() if type(found) is Option]
