"""Options as data: what argparse, manual pages, completion and project files are made from.

A command's options are the fields of a dataclass: the field's name is the option's, its annotation
the type of the value, and `flag`, `value`, `values` or `operands` say the rest.
"""

from __future__ import annotations

import dataclasses
import os
from collections.abc import Callable
from dataclasses import dataclass
from typing import Any


@dataclass(frozen=True)
class ValueType:
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


@dataclass(frozen=True)
class Option:
    """One option of a command. Without a type it is a flag."""

    name: str
    help: str
    type: ValueType | None = None
    repeatable: bool = False
    positional: bool = False
    exclusive: str = ""
    group: str = ""

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
    return ValueType(metavar, below=os.path.join, completes="file")


def folder(metavar: str) -> ValueType:
    """The path of a folder."""
    return ValueType(metavar, below=os.path.join, completes="folder")


def choice(*choices: str) -> ValueType:
    """One of a few words."""
    return ValueType("{" + ",".join(choices) + "}", choices=choices)


def number(metavar: str) -> ValueType:
    """A whole number, zero or more."""
    return ValueType(metavar, parse=_whole_number)


def flag(help: str, *, exclusive: str = "") -> Any:
    """An option without a value. Of those with the same `exclusive`, one can be given."""
    return dataclasses.field(
        default=False, metadata={"help": help, "type": None, "exclusive": exclusive}
    )


def value(type: ValueType, help: str, *, default: object = None) -> Any:
    """An option with one value."""
    return dataclasses.field(default=default, metadata={"help": help, "type": type})


def values(type: ValueType, help: str) -> Any:
    """An option that can be repeated; its values are a list, in order."""
    return _list(type=type, help=help)


def operands(type: ValueType, help: str) -> Any:
    """Arguments without a name, a list."""
    return _list(type=type, help=help, positional=True)


def options_of(holder: type) -> list[Option]:
    """The options that a dataclass declares, those of its bases first.

    The group of an option is the GROUP of the class that declares it.
    """
    found: list[Option] = []
    for declaring in reversed(holder.__mro__):
        names = declaring.__dict__.get("__annotations__", {})
        for field in dataclasses.fields(declaring) if names else ():
            if field.name in names and field.metadata:
                name = field.name.replace("_", "-")
                found.append(Option(name, **field.metadata, group=getattr(declaring, "GROUP", "")))
    return found


def _list(**metadata: Any) -> Any:
    metadata["repeatable"] = True
    return dataclasses.field(default_factory=list, metadata=metadata)


def _whole_number(text: str) -> int:
    if not text.isdecimal():
        raise ValueError(f"expected a whole number, got {text!r}")
    return int(text)
