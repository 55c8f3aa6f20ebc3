"""User regions: text in generated files that people may write, and that is kept."""

from __future__ import annotations

import os
from collections.abc import Callable, Mapping, Sequence
from typing import NamedTuple

from orv import _native
from orv.delimiters import tag
from orv.errors import Messages, OrvError, OutputError, TemplateError, did_you_mean
from orv.files.table import FileTable
from orv.positions import Mark, Position, here, mark

_WORDS = "{0}USER CODE BEGIN {{id}}{1} ... {0}USER CODE END {{id}}{1}"

# How the markers are written that neither a run nor a file sets, by the ending of a file's name or
# by its whole name; as in C when it has none of these.
_PATTERNS = {
    name: _WORDS.format(before, after)
    for before, after, names in (
        ("<!-- ", " -->", ".md .html .htm .xml .svg .xsd .xsl"),
        ("# ", "", ".py .sh .bash .pl .rb .mk .cmake .yaml .yml .toml .cfg .conf .tcl .r .jl"
         " makefile cmakelists.txt dockerfile kconfig meson.build"),
        ("-- ", "", ".sql .lua .vhd .vhdl .ada .adb .ads .hs"),
        ("; ", "", ".ini .lisp .scm .asm"),
        ("% ", "", ".m .tex .erl"),
    )
    for name in names.split()
}  # fmt: skip
_PATTERN = _WORDS.format("/* ", " */")

# The texts of a file's regions by their identifiers.
Texts = Mapping[str, bytes]

# Gives what is known of the texts of a file's regions, by the file's label, path and markers.
TextsOf = Callable[[str, str, _native.Markers], Texts]


class Placed(NamedTuple):
    """A place that is known already; see Mark."""

    position: Position


class KnownRegions(NamedTuple):
    """What is known of user regions before templates run.

    `pattern` are the markers of files that have none of their own; see _native.Markers.
    """

    pattern: str | None = None
    texts_of: TextsOf | None = None


class Question(NamedTuple):
    """What a template was told about the text of a region."""

    file: str
    id: str
    answer: bytes
    position: Position


class Regions:
    """The user regions that the templates of a run declare."""

    def __init__(self, files: FileTable, messages: Messages, known: KnownRegions) -> None:
        self._files = files
        self._messages = messages
        self._pattern, self._texts_of = known
        self._declared: dict[int, dict[str, Mark | Placed]] = {}
        # Those in custom sections, which may come to be in another file.
        self._filled: set[str] = set()
        self._markers: dict[str, _native.Markers] = {}
        self._of_file: dict[int, _native.Markers] = {}
        self.questions: list[Question] = []

    def markers(self, file: int) -> _native.Markers:
        """The markers of the regions in a file: its own, the run's, or those of its language."""
        known = self._of_file.get(file)
        if known is not None:
            return known
        record = self._files.record(file)
        own = record.markers if record is not None else None
        return self.made_of(own or self._pattern or _pattern_of(self._files.disk_name(file)))

    def made_of(self, pattern: str) -> _native.Markers:
        """The markers of this pattern. Raises ValueError for one that is none."""
        if pattern not in self._markers:
            self._markers[pattern] = _native.Markers(pattern)
        return self._markers[pattern]

    def declare(self, file: int, id: str, is_filled: bool) -> tuple[str, str]:
        """Declare a region where the template is. Returns the lines that begin and end it."""
        declared = self._declared.setdefault(file, {})
        if id in declared:
            raise OrvError(
                f'the file {self._files.label(file)} has a user region "{id}" already, at'
                f" {declared[id].position}; each needs an identifier of its own"
            )
        if not declared:
            # From now on the markers of the file cannot change.
            self._of_file[file] = self.markers(file)
        declared[id] = mark()
        if is_filled:
            self._filled.add(id)
        return self._of_file[file].lines(id)

    def positions(self, file: int) -> dict[str, Position]:
        """Where the regions of a file are declared."""
        declared = self._declared.get(file, {})
        return {id: place.position for id, place in declared.items()}

    def restore(self, file: int, positions: Mapping[str, Position]) -> None:
        """Declare the regions of a file of a run that was rendered elsewhere."""
        self._declared[file] = {id: Placed(position) for id, position in positions.items()}

    def position(self, file: int, id: str) -> Position | None:
        """Where a region is declared, if it is known."""
        declared = self._declared.get(file, {}).get(id)
        return None if declared is None else declared.position

    def text(self, file: int, id: str) -> str:
        """The text that the region will have, as far as it is known."""
        if self._texts_of is None:
            raise OrvError("user() needs the output folder, which only the command knows")
        name = self._files.label(file)
        answer = self._texts_of(name, self._files.path(file), self.markers(file)).get(id, b"")
        self.questions.append(Question(name, id, answer, here()))
        return answer.decode("utf-8", "surrogateescape")

    def has_regions(self, file: int) -> bool:
        """Whether a template has declared a region in the file."""
        return file in self._declared

    def verify(self, found: Mapping[int, _native.Regions]) -> None:
        """Compare the regions that the files have with those that templates declared.

        `found` has the regions of each file that is not empty. Raises OutputError.
        """
        seen: set[str] = set()
        for file, regions in found.items():
            declared = self._declared.get(file, {})
            ids = regions.ids
            seen.update(ids)
            for id in ids:
                if id not in declared and id not in self._filled:
                    raise OutputError(
                        f"{self._files.place(file)}the file {self._files.label(file)} has the"
                        f' marker of a user region "{id}" in line {regions.line_of(id)}, which no'
                        f" {tag('user')} made"
                    )
        for declared in self._declared.values():
            for id, place in declared.items():
                if id not in seen:
                    self._messages.warn(f'the user region "{id}" is in no file', place.position)

    def is_settled(self, finals: Mapping[str, Texts]) -> bool:
        """Whether the texts that templates were told are those that the files will have.

        `finals` has the texts of all files with regions, by the file as messages show it. Raises
        TemplateError for a region that there is not.
        """
        for name, id, _, position in self.questions:
            if id not in finals.get(name, {}):
                raise TemplateError(
                    f'{position}: the file {name} has no user region "{id}"'
                    + did_you_mean(id, finals.get(name, {}))
                )
        return all(finals[name][id] == answer for name, id, answer, _ in self.questions)


def unsettled(questions: Sequence[Question], finals: Mapping[str, Texts]) -> TemplateError:
    """The error about a template whose answer changes what it asks for, again and again."""
    wrong = next(entry for entry in questions if finals[entry.file][entry.id] != entry.answer)
    return TemplateError(
        f'{wrong.position}: the text of the user region "{wrong.id}" of {wrong.file} depends on'
        " itself: what user() gives changes it each time"
    )


def _pattern_of(name: str) -> str:
    base = os.path.basename(name).lower()
    ending = os.path.splitext(base)[1]
    return _PATTERNS.get(ending, _PATTERNS.get(base, _PATTERN))
