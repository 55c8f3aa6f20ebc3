"""The command `orv where`."""

from __future__ import annotations

import json
import os
import sys
from collections.abc import Callable, Iterable, Iterator
from functools import cache
from itertools import tee
from pathlib import Path
from typing import Any, NamedTuple

from orv import _native
from orv.command.options import LinePlace, WhereOptions
from orv.command.runs import requested_runs
from orv.errors import Misuse, OrvError
from orv.trace import Link, Piece, Site, Trace, TracedFile, read, trace_of

_BOLD, _DIM, _CYAN, _PLAIN = "\033[1m", "\033[2m", "\033[36m", "\033[0m"
_LONGEST = 100


class Found(NamedTuple):
    """A file that was asked about, as the trace and the disk have it."""

    trace: Trace
    file: TracedFile
    data: bytes


def run(given: dict[str, Any]) -> int:
    """Print where lines of generated files come from."""
    options = WhereOptions(**given)
    if not options.line:
        raise Misuse("expected FILE:LINE or FILE:LINE:COLUMN")
    traces = _traces(options)
    answers = []
    for place in options.line:
        # Only as far as needed: a run after the one that makes the file may be slow, or fail.
        traces, looked_through = tee(traces)
        answers.append(_answer(place, _find(place.path, looked_through)))
    if options.json:
        print(json.dumps(answers, indent=2))
    else:
        print("\n".join(_shown(answer, sys.stdout.isatty()) for answer in answers), end="")
    return 0


def _traces(options: WhereOptions) -> Iterator[Trace]:
    """The trace that was named, or those of the project's runs, rendered again if there is none."""
    if options.trace is not None:
        yield read(options.trace)
        return
    for run in requested_runs({"run": options.run, "project": options.project, "quiet": True}):
        if run.trace is not None and os.path.exists(run.trace):
            trace = read(run.trace)
            # The trace names the folder as seen from the project's own.
            trace.folder = run.out
            yield trace
        else:
            yield _rendered(run)


def _rendered(options: Any) -> Trace:
    from orv.command.generate import render_run
    from orv.command.outputs import layout_of
    from orv.output.folder import open_folder
    from orv.output.plan import plan

    options.trace = ""
    rendered, _ = render_run(options)
    files = plan(rendered, open_folder(options.out), layout_of(options))
    return trace_of(files, rendered)


def _find(path: str, traces: Iterable[Trace]) -> Found:
    """The file of this path. Raises OrvError when no run makes it or its bytes differ."""
    real = os.path.realpath(path)
    for trace in traces:
        for file in trace.files.values():
            if os.path.realpath(os.path.join(trace.folder, file.path)) != real:
                continue
            try:
                data = Path(path).read_bytes()
            except OSError as error:
                raise OrvError(f"{path}: {error.strerror}") from error
            if _native.frame_hash(data) != file.hash or len(data) != file.size:
                raise OrvError(_difference(path, data, file))
            return Found(trace, file, data)
    raise OrvError(f"{path}: no run that is known makes this file")


def _difference(path: str, data: bytes, file: TracedFile) -> str:
    made = file.data
    if made is None:
        return (
            f"{path}: the file is not the one that was traced, which has {file.size} bytes and this"
            f" one {len(data)}; generate again with --trace"
        )
    ours, theirs = data.splitlines(), made.splitlines()
    line = next((i for i, pair in enumerate(zip(ours, theirs)) if pair[0] != pair[1]),
                min(len(ours), len(theirs)))  # fmt: skip
    there, now = (
        f'"{lines[line].decode(errors="replace")}"' if line < len(lines) else "no such line"
        for lines in (ours, theirs)
    )
    return f"{path}:{line + 1}: the file has {there}, the templates make {now}; generate again"


def _answer(place: LinePlace, found: Found) -> dict[str, Any]:
    try:
        begin, end = found.file.bytes_of(place.line)
    except IndexError as error:
        raise OrvError(f"{place.path}:{place.line}: {error}") from error
    pieces = found.file.on_line(place.line)
    if place.column:
        at = begin + place.column - 1
        if at >= end:
            raise OrvError(f"{place}: the line has {end - begin} bytes")
        pieces = [piece for piece in pieces if piece.begin <= at < piece.end]
    return {
        "file": place.path,
        "line": place.line,
        "column": place.column or None,
        "text": found.data[begin:end].decode(errors="replace").rstrip("\r\n"),
        "pieces": [_piece(piece, begin, found) for piece in pieces],
    }


def _piece(piece: Piece, begin: int, found: Found) -> dict[str, Any]:
    spans = found.file.spans_at(piece.begin)
    return {
        "column": piece.begin - begin + 1,
        "text": found.data[piece.begin : piece.end].decode(errors="replace"),
        "spans": [{"kind": span.kind, "name": span.name} for span in spans],
        **_site(piece.site, piece.line),
        "chain": [_link(link) for link in found.trace.chain(piece.link)],
    }


def _site(site: Site, line: int) -> dict[str, Any]:
    return {"kind": site.kind, "file": site.file or None, "line": line or None}


def _link(link: Link) -> dict[str, Any]:
    element = link.element and {
        "path": link.element.path,
        "file": link.element.file or None,
        "line": link.element.line or None,
    }  # fmt: skip
    return {**_site(link.site, link.site.line), "kind": link.kind, "name": link.name or None,
            "element": element}  # fmt: skip


def _shown(answer: dict[str, Any], colours: bool) -> str:
    def paint(colour: str) -> Callable[[str], str]:
        return lambda text: f"{colour}{text}{_PLAIN}" if colours and text else text

    bold, dim, cyan = paint(_BOLD), paint(_DIM), paint(_CYAN)
    place = f"{answer['file']}:{answer['line']}"
    lines = [f"{bold(place + ':')} {answer['text']}"]
    previous: list[str] = []
    for piece in answer["pieces"]:
        spans = " > ".join(f"{span['kind']} {span['name']}" for span in piece["spans"])
        around = [f"    {cyan('in')} {spans}"] if spans else []
        for link in piece["chain"][::-1]:
            name = f" {link['name']}" if link["name"] else ""
            element = link["element"]
            at = f" {_place(element)}" if element else ""
            what = f"{link['kind']}{name}{' ' + element['path'] if element else ''}{dim(at)}"
            around.append(f"    {cyan('from')} {_place(link)} {what}")
        lines.append(
            f"  {answer['line']}:{piece['column']} {cyan(repr(piece['text']))} {piece['kind']}"
        )
        if piece["file"]:
            lines.append(f"    {_place(piece)}{dim(_source(piece))}")
        lines += around if around != previous else []
        previous = around
    return "".join(f"{line}\n" for line in lines)


def _place(entry: dict[str, Any]) -> str:
    return f"{entry['file']}:{entry['line']}" if entry["line"] else str(entry["file"] or "")


def _source(piece: dict[str, Any]) -> str:
    """The template's line, if the template is still there."""
    lines, line = _lines(piece["file"]), piece["line"] or 0
    return f": {lines[line - 1].strip()[:_LONGEST]}" if 0 < line <= len(lines) else ""


@cache
def _lines(path: str) -> list[str]:
    """The lines of a template; none if it cannot be read."""
    try:
        # Not splitlines(): a form feed, for one, ends no line of a template.
        return Path(path).read_text("utf-8-sig").split("\n")
    except (OSError, ValueError):
        return []
