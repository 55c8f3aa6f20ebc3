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
from typing import Any, NamedTuple

from orv import _native
from orv.errors import OrvError
from orv.files.run import Run
from orv.output.plan import Plan
from orv.output.tracefile import FORMAT, VERSION, trace_file


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
        return _columns(self._entry["lines"], 1)[0]

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
            end = min(self.line_ends[line - 1], stop)
            yield Piece(begin, end, site, site.line + line - first, link)
            begin = end

    @cached_property
    def _ranges(self) -> tuple[Sequence[int], Sequence[int], Sequence[int]]:
        sizes, sites, links = _columns(self._entry["ranges"], 3)
        return sizes, sites, links


class Trace:
    """A trace file. Its tables are decoded when they are first used."""

    def __init__(self, document: Mapping[str, Any]) -> None:
        self._document = document
        # The output folder as the run's user named it.
        self.folder: str = document["folder"]
        self.files = {entry["path"]: TracedFile(self, entry) for entry in document["files"]}
        self._strings: list[str] = document["strings"]

    def site(self, number: int) -> Site:
        """A site by its number."""
        kind, file, line = self._document["sites"][number]
        return Site(self._document["kinds"][kind], self._strings[file], line)

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
            kind, name = self._document["labels"][labels[row]]
            element = self.element(paths[row]) if paths[row] else None
            site = self.site(sites[row])
            chain.append(Link(self._strings[kind], self._strings[name], site, element))
            link = _smaller(parents[row], link)
        return chain[::-1]

    def element(self, number: int) -> Element:
        """A value of the model by its number."""
        parents, texts, positions, files, lines = self._paths
        steps: list[str] = []
        at = number
        while at:
            row = at - 1
            steps.append(self._strings[texts[row]] if texts[row] else f"[{positions[row]}]")
            at = _smaller(parents[row], at)
        path = steps[-1] + "".join(
            step if step[:1] in ("[", "/") else f".{step}" for step in steps[-2::-1]
        )
        return Element(path, self._strings[files[number - 1]], lines[number - 1])

    @cached_property
    def _links(self) -> list[Sequence[int]]:
        return _columns(self._document["links"], 4)

    @cached_property
    def _paths(self) -> list[Sequence[int]]:
        return _columns(self._document["paths"], 5)


def read(path: str | os.PathLike[str]) -> Trace:
    """Read a trace file. Raises TraceError when that cannot be done."""
    try:
        with open(path, "rb") as file:
            return parse(file.read())
    except OSError as error:
        raise TraceError(f"{os.fspath(path)}: {error.strerror}") from error
    except TraceError as error:
        raise TraceError(f"{os.fspath(path)}: {error}") from error


def parse(data: bytes, files: Mapping[str, bytes] | None = None) -> Trace:
    """The trace that the bytes of a trace file hold; `files` are those it is of, by path, if known.

    Raises TraceError.
    """
    try:
        document = json.loads(data)
    except ValueError as error:
        raise TraceError(f"expected a trace file, which is JSON: {error}") from error
    if not isinstance(document, dict) or document.get("format") != FORMAT:
        raise TraceError(f'expected a trace file, which has "format": "{FORMAT}"')
    if document.get("version") != VERSION:
        raise TraceError(
            f"the trace file has version {document.get('version')}; this program reads {VERSION}"
        )
    try:
        trace = Trace(document)
        for path, file in trace.files.items():
            file.data = files[path] if files is not None else None
        return trace
    except (KeyError, TypeError) as error:
        raise TraceError(f"the trace file is damaged: {error}") from error


def trace_of(files: Plan, run: Run) -> Trace:
    """The trace of a run that `orv.render` has rendered with `traced=True`, and `orv.plan` planned.

    Raises TraceError when the run was not traced.
    """
    if run.trace is None:
        raise TraceError("the run was not traced; traced=True of orv.render does so")
    document = trace_file(run, files, files.folder.path)
    return parse(document, {file.path: file.data for file in files})


def _columns(table: str, fields: int) -> list[Sequence[int]]:
    try:
        return [memoryview(column).cast("i") for column in _native.delta_columns(table, fields)]
    except ValueError as error:
        raise TraceError(f"the trace file is damaged: {error}") from error


def _smaller(parent: int, child: int) -> int:
    if parent >= child:
        raise TraceError("the trace file is damaged: a chain does not end")
    return parent
