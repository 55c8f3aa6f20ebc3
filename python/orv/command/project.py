"""Project files: command lines of `orv generate` written down, by the names of their runs."""

from __future__ import annotations

import os
import re
import tomllib
from collections.abc import Mapping, Sequence
from dataclasses import dataclass
from typing import Any

from orv import inputs
from orv.command.option import Option
from orv.errors import OrvError, ProjectError, did_you_mean

PROJECT_FILE = "orv.toml"

_WHERE = re.compile(r"(.*) \((?:at line (\d+), column \d+|at end of document)\)", re.DOTALL)


@dataclass(frozen=True)
class ProjectRun:
    """One run of a project file: its values by attribute, as an option's type makes them."""

    name: str
    values: Mapping[str, Any]


class Project:
    """A project file. Paths in it are relative to its folder.

    Raises ProjectError, whose text begins with the file and the line, for what is no TOML, for keys
    that are no option and for values that the option does not take.
    """

    def __init__(self, path: str, options: Sequence[Option]) -> None:
        self.path = path
        self._options = {option.name: option for option in options}
        self._text = _read(path)
        self.runs = [self._run(name, table) for name, table in self._tables().items()]

    def select(self, names: Sequence[str]) -> list[ProjectRun]:
        """The runs of these names, in the order of the file; all runs when there are no names."""
        known = {run.name for run in self.runs}
        for name in names:
            if name not in known:
                hint = did_you_mean(name, known) or f"; it has {', '.join(sorted(known))}"
                raise ProjectError(f'{self.path}: there is no run "{name}"{hint}')
        return [run for run in self.runs if not names or run.name in names]

    def place(self, *keys: str) -> str:
        """FILE:LINE of a key, given with the tables that it is in."""
        # What precedes a statement is a document of its own, so that the key's statement begins
        # after the longest beginning of the file that is one and lacks the key.
        lines = self._text.splitlines(keepends=True)
        before = 0
        for count in range(len(lines) + 1):
            try:
                document = tomllib.loads("".join(lines[:count]))
            except tomllib.TOMLDecodeError:
                continue
            if _holds(document, keys):
                break
            before = count
        return f"{self.path}:{before + 1}"

    def _tables(self) -> dict[str, Any]:
        try:
            document = tomllib.loads(self._text)
        except tomllib.TOMLDecodeError as error:
            where = _WHERE.fullmatch(str(error))
            last = len(self._text.splitlines())
            what, line = (where[1], where[2] or last) if where else (str(error), last)
            raise ProjectError(f"{self.path}:{line}: {what}") from error
        for key in document:
            if key != "run":
                hint = did_you_mean(key, ["run"])
                what = "belongs below [run.NAME]" if key in self._options else f"is unknown{hint}"
                raise ProjectError(f'{self.place(key)}: the key "{key}" {what}')
        tables = document.get("run")
        if not isinstance(tables, dict) or not tables:
            raise ProjectError(f"{self.path}: the file has no run; begin one with [run.NAME]")
        return tables

    def _run(self, name: str, table: object) -> ProjectRun:
        if not isinstance(table, dict):
            raise ProjectError(f'{self.place("run", name)}: expected a table [run.{name}]')
        values: dict[str, Any] = {}
        exclusive: dict[str, str] = {}
        for key, value in table.items():
            option = self._options.get(key)
            try:
                if option is None:
                    raise ValueError(f"there is no such option{did_you_mean(key, self._options)}")
                values[option.attribute] = option_value(option, value, os.path.dirname(self.path))
                if option.exclusive and value:
                    other = exclusive.setdefault(option.exclusive, key)
                    if other != key:
                        raise ValueError(f'not allowed with "{other}"')
            except (OrvError, ValueError) as error:
                place = self.place("run", name, key)
                raise ProjectError(f'{place}: the key "{key}": {error}') from error
        return ProjectRun(name, values)


def find_project() -> str | None:
    """The project file of the working folder, or of the closest folder above it that has one."""
    path = PROJECT_FILE
    folder = os.getcwd()
    while not os.path.isfile(path):
        inputs.current().absent.add(path)
        parent = os.path.dirname(folder)
        if parent == folder:
            return None
        folder = parent
        path = os.path.join(os.pardir, path)
    return path


def merged(
    options: Sequence[Option], file: Mapping[str, Any], given: Mapping[str, Any]
) -> dict[str, Any]:
    """The values of a project file with those of the command line.

    Repeatable values are added to those of the file. Any other takes the place of the file's, and
    of those that it excludes.
    """
    replaced = {option.exclusive for option in options if option.attribute in given}
    values = dict(given)
    for option in options:
        name = option.attribute
        if name not in file:
            continue
        if option.repeatable:
            values[name] = [*file[name], *given.get(name, [])]
        elif not option.exclusive or option.exclusive not in replaced:
            values.setdefault(name, file[name])
    return values


def option_value(option: Option, value: object, folder: str) -> Any:
    """What a value of a project file, or of a Python program, means for an option.

    Relative paths begin at the folder. Raises ValueError and OrvError.
    """
    if option.type is None:
        if not isinstance(value, bool):
            raise ValueError(f"expected true or false, got {_shown(value)}")
        return value
    if not option.repeatable:
        return _single(option, value, folder)
    values = value if isinstance(value, list) else [value]
    return [_single(option, element, folder) for element in values]


def _single(option: Option, value: object, folder: str) -> Any:
    assert option.type is not None
    if isinstance(value, int) and not isinstance(value, bool):
        value = str(value)
    if not isinstance(value, str):
        raise ValueError(f"expected a text, got {_shown(value)}")
    if option.type.choices and value not in option.type.choices:
        raise ValueError(f'expected one of {", ".join(option.type.choices)}, got "{value}"')
    parsed = option.type.parse(value)
    return parsed if option.type.below is None else option.type.below(folder, parsed)


def _shown(value: object) -> str:
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, (list, dict)):
        return "an array" if isinstance(value, list) else "a table"
    return repr(value) if isinstance(value, str) else str(value)


def _holds(document: Any, keys: Sequence[str]) -> bool:
    for key in keys:
        if not isinstance(document, dict) or key not in document:
            return False
        document = document[key]
    return True


def _read(path: str) -> str:
    try:
        return inputs.load(path).decode("utf-8-sig")
    except OSError as error:
        raise ProjectError(f"{path}: {error.strerror}") from error
    except UnicodeDecodeError as error:
        raise ProjectError(f"{path}: the file is not UTF-8: {error}") from error
