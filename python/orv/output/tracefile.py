"""The trace file: where every byte of a run's files comes from. docs/tracing.md has its format."""

from __future__ import annotations

import json
from collections.abc import Iterable, Mapping
from typing import Any

from orv import _native
from orv.files.run import Run
from orv.output.plan import PlannedFile

FORMAT = "orv-trace"
VERSION = 1

# Most of a trace: texts of digits and letters, in which there is nothing to escape.
_TABLES = ("lines", "links", "paths", "ranges")


def trace_file(run: Run, files: Iterable[PlannedFile], folder: str) -> bytes:
    """The bytes of the trace file; see trace_document()."""
    return encoded(trace_document(run, files, folder))


def encoded(document: Mapping[str, Any]) -> bytes:
    """The trace file that holds a trace."""
    return f"{_object(document)}\n".encode()


def _object(members: Mapping[str, Any]) -> str:
    texts = [f"{json.dumps(name)}:{_member(name, value)}" for name, value in members.items()]
    return f"{{{','.join(texts)}}}"


def _member(name: str, value: Any) -> str:
    if name in _TABLES:
        return f'"{value}"'
    if name == "files":
        return f"[{','.join(map(_object, value))}]"
    return json.dumps(value, separators=(",", ":"))


def trace_document(run: Run, files: Iterable[PlannedFile], folder: str) -> dict[str, Any]:
    """The trace of a run that was traced, with the files that are not empty, in their order.

    `folder` is the output folder as the user named it.
    """
    assert run.trace is not None
    trace = run.trace
    # Before the tables: a formatter's lines are sites of their own.
    entries = [_entry(trace, file, file.composed) for file in files if file.composed is not None]
    return {
        "format": FORMAT,
        "version": VERSION,
        "folder": folder,
        "kinds": _native.SITE_KINDS,
        **trace.tables(run.places),
        "files": entries,
    }


def _entry(
    trace: _native.Trace, file: PlannedFile, composed: _native.ComposedFile
) -> dict[str, object]:
    texts = {id: text for id, text in file.region_texts().items() if file.keeps(id)}
    ranges, spans = composed.traced(trace, file.formatted, file.regions, texts, file.merged)
    return {
        "path": file.path,
        "size": len(file.buffer),
        "hash": _native.frame_hash(file.buffer),
        "lines": _native.line_ends(file.buffer),
        "ranges": ranges,
        "spans": spans,
    }
