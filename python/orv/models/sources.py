"""Where models come from: files, patterns of files and standard input."""

from __future__ import annotations

import glob
import os
import re
import sys
from collections.abc import Callable
from functools import lru_cache
from io import BytesIO, TextIOWrapper
from typing import NamedTuple

from orv import inputs
from orv._native import Places, read_model
from orv.errors import ModelError

_NAMED = re.compile(r"([A-Za-z_]\w*)=(.+)", re.DOTALL)
_STANDARD_INPUT = re.compile(r"-(?::(\w+))?")

_FORMATS = {
    ".json": "json",
    ".yaml": "yaml",
    ".yml": "yaml",
    ".toml": "toml",
    ".csv": "csv",
    ".xml": "xml",
}

# The warnings about one file that are given word by word.
_MOST_WARNINGS = 10


class ModelSource(NamedTuple):
    """A model file, and the variable that holds it; None when its own entries are variables.

    With a name, `path` may be a pattern of file names, or "-:FORMAT" for standard input.
    """

    name: str | None
    path: str

    @classmethod
    def parse(cls, argument: str) -> ModelSource:
        """From FILE or NAME=FILE."""
        named = _NAMED.fullmatch(argument)
        return cls(named[1], named[2]) if named else cls(None, argument)

    @property
    def is_input(self) -> bool:
        """Whether the model comes from standard input."""
        return _STANDARD_INPUT.fullmatch(self.path) is not None

    def __str__(self) -> str:
        return self.path if self.name is None else f"{self.name}={self.path}"

    def below(self, folder: str) -> ModelSource:
        """The source with a path that is relative to `folder`."""
        if self.is_input:
            return self
        return self._replace(path=os.path.join(folder, self.path))


class Reader:
    """Reads the models of one run. Notes the files that it read and the folders it looked into."""

    def __init__(self, places: Places, warn: Callable[[str], None]) -> None:
        self.files: list[str] = []
        self.folders: list[str] = []
        self._places = places
        self._warn = warn

    def read(self, source: ModelSource) -> object:
        """What a source holds; for a pattern, the models of its files by their stems."""
        standard_input = _STANDARD_INPUT.fullmatch(source.path)
        if standard_input:
            return self._read_input(standard_input[1])
        if not glob.has_magic(source.path) or os.path.lexists(source.path):
            return self.read_file(source.path)
        if source.name is None:
            raise ModelError(
                f"{source.path}: give the models of a pattern a name: --model NAME={source.path}"
            )
        return self._read_pattern(source.path)

    def read_file(self, path: str) -> object:
        """What a file holds, by the ending of its name. An XML model is its root by its tag."""
        form = _FORMATS.get(os.path.splitext(path)[1].lower())
        if form is None:
            raise ModelError(f"{path}: a model's name ends in {', '.join(_FORMATS)}")
        try:
            data = inputs.load(path)
        except OSError as error:
            raise ModelError(f"{path}: {error.strerror}") from error
        self.files.append(path)
        return self._parse(form, data, path)

    def _read_input(self, form: str | None) -> object:
        formats = list(dict.fromkeys(_FORMATS.values()))
        if form not in formats:
            known = ", ".join(f"-:{name}" for name in formats)
            raise ModelError(f"the model from standard input is one of {known}")
        inputs.current().is_incomplete = True
        return self._parse(form, standard_input(), "<stdin>")

    def _read_pattern(self, pattern: str) -> dict[str, object]:
        paths = paths_of(pattern)
        inputs.current().absent.add(pattern)
        self.folders += sorted(folders_of(pattern) - set(self.folders))
        models: dict[str, object] = {}
        by_stem: dict[str, str] = {}
        for path in paths:
            stem = os.path.splitext(os.path.basename(path))[0]
            if stem in models:
                raise ModelError(f'{path}: the name "{stem}" is taken by {by_stem[stem]}')
            models[stem] = self.read_file(path)
            by_stem[stem] = path
        self._places.note(models, pattern)
        return models

    def _parse(self, form: str, data: bytes, label: str) -> object:
        model, warnings = read_model(form, data, label, self._places)
        for warning in warnings[:_MOST_WARNINGS]:
            self._warn(warning)
        if len(warnings) > _MOST_WARNINGS:
            self._warn(f"{label}: {len(warnings) - _MOST_WARNINGS} more numbers like these")
        return model


def paths_of(pattern: str) -> list[str]:
    """The paths that a pattern fits, sorted. Raises ModelError when there is none."""
    paths = sorted(glob.glob(pattern, recursive=True))
    if not paths:
        raise ModelError(f"{pattern}: no file has such a name")
    found = inputs.current()
    found.note(found.patterns, pattern, paths)
    return paths


@lru_cache(maxsize=1)
def standard_input() -> bytes:
    """What is on standard input. All runs of a process get the same."""
    return sys.stdin.buffer.read()


def provide_input(data: bytes) -> None:
    """Take `data` as what is on standard input."""
    sys.stdin = TextIOWrapper(BytesIO(data))
    standard_input.cache_clear()


def folders_of(pattern: str) -> set[str]:
    """The folders that are looked in: one of them changes when another file would be found."""
    folders: set[str] = set()
    head = pattern
    while glob.has_magic(head):
        head = os.path.dirname(head)
        found = glob.iglob(os.path.join(head, ""), recursive=True) if head else ["."]
        folders.update(os.path.normpath(path) for path in found)
    return folders
