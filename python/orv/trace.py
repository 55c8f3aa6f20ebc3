"""Reading trace files: where every byte of generated files comes from.

A run with `--trace FILE.json` writes one; docs/tracing.md describes the format.

>>> import orv.trace
>>> trace = orv.trace.read("trace.json")
>>> file = trace.files["count.c"]
>>> for piece in file.on_line(1):
...     print(piece.begin, piece.end, piece.site.kind, f"{piece.site.file}:{piece.line}")
0 4 text count.j2:4
4 10 value count.j2:4
10 13 text count.j2:4
13 14 value count.j2:4
14 16 text count.j2:4
"""

from __future__ import annotations

import bisect
import json
import os
from collections.abc import Iterator, Mapping, Sequence
from functools import cached_property
from typing import Any, NamedTuple, TypeVar

from orv import _native
from orv.errors import OrvError
from orv.files.run import Run
from orv.output.plan import Plan
from orv.output.tracefile import FORMAT, VERSION, trace_file

Entry = TypeVar("Entry")

# What a trace file holds, by the types of its values; see trace.schema.json.
_SHAPE: dict[str, Any] = {
    "folder": str,
    "kinds": [str],
    "strings": [str],
    "sites": [(int, int, int)],
    "labels": [(int, int)],
    "links": str,
    "paths": str,
    "files": [
        {"path": str, "size": int, "hash": str, "lines": str, "ranges": str,
         "spans": [(str, str, int, int)]}
    ],
}  # fmt: skip


class TraceError(OrvError):
    """A trace file that cannot be read."""


class Site(NamedTuple):
    """What prints: one text or value of a template, a script, or the engine.

    `kind` is one of SITE_KINDS. `file` is empty, and `line` 0, where there is none.
    """

    kind: str
    file: str
    line: int


class Element(NamedTuple):
    """A value of the model: the path to it, and where it was written; `line` is 0 if not known."""

    path: str
    file: str
    line: int


class Link(NamedTuple):
    """A part of a template that runs: "macro", "call", "include", "import", "extends", "block", or
    "for", a loop with an element at hand. `name` is empty for what has none, `site` is its tag.
    """

    kind: str
    name: str
    site: Site
    element: Element | None


class Span(NamedTuple):
    """A "section", "function", "custom section" or "user region", from `begin` to before `end`."""

    kind: str
    name: str
    begin: int
    end: int


class Piece(NamedTuple):
    """Bytes from `begin` to before `end` that one site printed, on one line of the template.

    `line` is that line, counted on from the site's through a text of several lines. `link` is the
    number of the innermost link; see Trace.chain().
    """

    begin: int
    end: int
    site: Site
    line: int
    link: int


class TracedFile:
    """One generated file. Bytes count from 0, lines from 1."""

    def __init__(self, trace: Trace, entry: Mapping[str, Any]) -> None:
        self._trace = trace
        self._entry = entry
        self.path: str = entry["path"]
        self.size: int = entry["size"]
        # As in the state file: XXH3 of the text with CR LF taken as LF.
        self.hash: str = entry["hash"]
        # The bytes, of a trace that was made in this process.
        self.data: bytes | None = None

    @cached_property
    def spans(self) -> list[Span]:
        """The sections, functions and other parts; each comes before those inside of it."""
        spans = [Span(kind, name, at, at + size) for kind, name, at, size in self._entry["spans"]]
        return sorted(spans, key=lambda span: (span.begin, -span.end))

    def spans_at(self, byte: int) -> list[Span]:
        """The spans that the byte is in, outermost first."""
        return [span for span in self.spans if span.begin <= byte < span.end]

    @cached_property
    def line_ends(self) -> Sequence[int]:
        """The number of bytes up to the end of each line, its newline included."""
        return self._trace.columns(self._entry["lines"], 1)[0]

    def line_at(self, byte: int) -> int:
        """The line that the byte is on."""
        return bisect.bisect_right(self.line_ends, byte) + 1

    def bytes_of(self, line: int) -> tuple[int, int]:
        """The first byte of a line and the one after its last. Raises IndexError."""
        if not 1 <= line <= len(self.line_ends):
            raise IndexError(f"the file has {len(self.line_ends)} lines")
        return (self.line_ends[line - 2] if line > 1 else 0), self.line_ends[line - 1]

    def pieces(self, begin: int = 0, end: int | None = None) -> Iterator[Piece]:
        """The pieces between two bytes, in order, without gaps."""
        ends, sites, links = self._ranges
        until = self.size if end is None else min(end, self.size)
        index = bisect.bisect_right(ends, begin)
        while begin < until and index < len(ends):
            start = ends[index - 1] if index else 0
            site = self._trace.site(sites[index])
            stop = min(ends[index], until)
            if site.kind == "text":
                yield from self._lines_of_text(start, begin, stop, site, links[index])
            else:
                yield Piece(begin, stop, site, site.line, links[index])
            begin = ends[index]
            index += 1

    def on_line(self, line: int) -> list[Piece]:
        """The pieces of one line. Raises IndexError."""
        return list(self.pieces(*self.bytes_of(line)))

    def _lines_of_text(
        self, start: int, begin: int, stop: int, site: Site, link: int
    ) -> Iterator[Piece]:
        first = self.line_at(start)
        while begin < stop:
            line = self.line_at(begin)
            end = min(self._trace.entry(self.line_ends, line - 1), stop)
            yield Piece(begin, end, site, site.line + line - first, link)
            begin = end

    @cached_property
    def _ranges(self) -> tuple[Sequence[int], Sequence[int], Sequence[int]]:
        ends, sites, links = self._trace.columns(self._entry["ranges"], 3)
        return ends, sites, links


class Trace:
    """A trace file. Its tables are decoded when they are first used.

    `name` is what errors call the file. Whatever is asked of a damaged one may raise TraceError.
    """

    def __init__(self, document: Mapping[str, Any], name: str = "") -> None:
        self._document = document
        self._name = name
        for key, shape in _SHAPE.items():
            if not _fits(document.get(key), shape):
                raise self.damage(f'"{key}" is missing or has another form')
        # The output folder as the run's user named it.
        self.folder: str = document["folder"]
        self.files = {entry["path"]: TracedFile(self, entry) for entry in document["files"]}
        self._strings: list[str] = document["strings"]

    def site(self, number: int) -> Site:
        """A site by its number."""
        kind, file, line = self.entry(self._document["sites"], number)
        kinds: list[str] = self._document["kinds"]
        return Site(self.entry(kinds, kind), self.entry(self._strings, file), line)

    @property
    def sites(self) -> list[Site]:
        """All sites: also those that printed nothing."""
        return [self.site(number) for number in range(len(self._document["sites"]))]

    def chain(self, link: int) -> list[Link]:
        """How a piece came to be printed, outermost link first."""
        parents, sites, labels, paths = self._links
        chain: list[Link] = []
        while link:
            row = link - 1
            parent = self._smaller(self.entry(parents, row), link)
            kind, name = self.entry(self._document["labels"], labels[row])
            words = self.entry(self._strings, kind), self.entry(self._strings, name)
            element = self.element(paths[row]) if paths[row] else None
            chain.append(Link(*words, self.site(sites[row]), element))
            link = parent
        return chain[::-1]

    def element(self, number: int) -> Element:
        """A value of the model by its number."""
        parents, texts, positions, files, lines = self._paths
        steps: list[str] = []
        at = number
        while at:
            row = at - 1
            parent = self._smaller(self.entry(parents, row), at)
            text = self.entry(self._strings, texts[row])
            steps.append(text if texts[row] else f"[{positions[row]}]")
            at = parent
        path = steps[-1] + "".join(
            step if step[:1] in ("[", "/") else f".{step}" for step in steps[-2::-1]
        )
        return Element(path, self.entry(self._strings, files[number - 1]), lines[number - 1])

    def entry(self, table: Sequence[Entry], number: int) -> Entry:
        """The entry of a table that the trace file names by its number."""
        try:
            return table[number]
        except IndexError as error:
            raise self.damage(f"a table has no entry {number}") from error

    def columns(self, table: str, fields: int) -> list[Sequence[int]]:
        """The columns of a table of numbers."""
        try:
            return [memoryview(column).cast("i") for column in _native.delta_columns(table, fields)]
        except ValueError as error:
            raise self.damage(str(error)) from error

    def damage(self, what: str) -> TraceError:
        """The error for a damaged trace file."""
        where = self._name and f"{self._name}: "
        return TraceError(f"{where}the trace file is damaged: {what}")

    @cached_property
    def _links(self) -> list[Sequence[int]]:
        return self.columns(self._document["links"], 4)

    @cached_property
    def _paths(self) -> list[Sequence[int]]:
        return self.columns(self._document["paths"], 5)

    def _smaller(self, parent: int, child: int) -> int:
        if parent >= child:
            raise self.damage("a chain does not end")
        return parent


def read(path: str | os.PathLike[str]) -> Trace:
    """Read a trace file. Raises TraceError when that cannot be done."""
    name = os.fspath(path)
    try:
        with open(path, "rb") as file:
            document = _document(file.read())
    except OSError as error:
        raise TraceError(f"{name}: {error.strerror}") from error
    except TraceError as error:
        raise TraceError(f"{name}: {error}") from error
    return Trace(document, name)


def parse(data: bytes, files: Mapping[str, bytes] | None = None) -> Trace:
    """The trace that the bytes of a trace file hold; `files` are those it is of, by path, if known.

    Raises TraceError.
    """
    trace = Trace(_document(data))
    if files is not None:
        for path, file in trace.files.items():
            file.data = files[path]
    return trace


def _document(data: bytes) -> dict[str, Any]:
    try:
        document = json.loads(data)
    except (ValueError, RecursionError) as error:
        raise TraceError(f"expected a trace file, which is JSON: {error}") from error
    if not isinstance(document, dict) or document.get("format") != FORMAT:
        raise TraceError(f'expected a trace file, which has "format": "{FORMAT}"')
    if document.get("version") != VERSION:
        raise TraceError(
            f"the trace file has version {document.get('version')}; this program reads {VERSION}"
        )
    return document


def _fits(value: object, shape: Any) -> bool:
    """Whether a value has the types of a shape. Its numbers count from 0."""
    if isinstance(shape, dict):
        return isinstance(value, dict) and all(_fits(value.get(key), shape[key]) for key in shape)
    if isinstance(shape, tuple):
        return (
            isinstance(value, list) and len(value) == len(shape) and all(map(_fits, value, shape))
        )
    if isinstance(shape, list):
        return isinstance(value, list) and all(_fits(entry, shape[0]) for entry in value)
    return type(value) is shape and (not isinstance(value, int) or value >= 0)


def trace_of(files: Plan, run: Run) -> Trace:
    """The trace of a run that `orv.render` has rendered with `traced=True`, and `orv.plan` planned.

    Raises TraceError when the run was not traced.
    """
    if run.trace is None:
        raise TraceError("the run was not traced; traced=True of orv.render does so")
    document = trace_file(run, files, files.folder.path)
    return parse(document, {file.path: file.data for file in files})
