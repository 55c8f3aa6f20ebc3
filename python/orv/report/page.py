"""The page of a report: one HTML file with its style, its script and the data of the run.

All that comes from templates, models and outputs is compressed and written as base64, so that none
of it is ever HTML; the script puts it into the page as text.
"""

from __future__ import annotations

import base64
import hashlib
import json
import zlib
from collections.abc import Iterable, Mapping
from importlib import resources
from typing import Any

from orv.files.run import Run
from orv.output.plan import PlannedFile
from orv.report.sources import read_source

# In this order, as later ones use what earlier ones define.
_SCRIPTS = ("data.js", "list.js", "text.js", "overview.js", "file.js", "source.js", "search.js",
            "main.js")  # fmt: skip


def report_page(run: Run, files: Iterable[PlannedFile], trace: Mapping[str, Any]) -> bytes:
    """The page for a run that was traced; `trace` is what its trace file holds."""
    assert run.trace is not None
    made = [file for file in files if not file.is_empty]
    entries = trace["files"]
    head = {
        "trace": {**trace, "files": [_without_tables(entry) for entry in entries]},
        "states": [file.state.value for file in made],
        "uses": run.trace.line_uses(
            (entry["ranges"], file.buffer) for entry, file in zip(entries, made, strict=True)
        ),
        "seconds": {**run.trace.seconds, **run.script_seconds},
        "warnings": run.messages.warnings,
        "sources": _sources(trace),
    }
    data = [_data("run", json.dumps(head, separators=(",", ":")).encode())]
    for number, (entry, file) in enumerate(zip(entries, made, strict=True)):
        data.append(_data(f"file-{number}", entry["ranges"].encode(), b"\n", file.buffer))
    before, after = _frame().split("@DATA@")
    return b"".join([before.encode(), *data, after.encode()])


def _without_tables(entry: Mapping[str, Any]) -> dict[str, Any]:
    return {key: value for key, value in entry.items() if key not in ("lines", "ranges", "hash")}


def _sources(trace: Mapping[str, Any]) -> dict[str, list[tuple[str, str]]]:
    """The texts of all files that sites are in."""
    names = sorted({trace["strings"][file] for _, file, _ in trace["sites"] if file})
    found = ((name, read_source(name)) for name in names)
    return {name: source for name, source in found if source is not None}


def _data(name: str, *parts: Any) -> bytes:
    """An element with data for the script: the parts one after the other, compressed by zlib."""
    compressor = zlib.compressobj()
    compressed = b"".join([*map(compressor.compress, parts), compressor.flush()])
    element = b'<script type="application/zlib;base64" id="%s">%s</script>\n'
    return element % (name.encode(), base64.b64encode(compressed))


def _frame() -> str:
    """The page without data. Its policy allows this script and this style and nothing else."""
    folder = resources.files(__package__) / "assets"
    style = (folder / "report.css").read_text("utf-8")
    script = "".join((folder / name).read_text("utf-8") for name in _SCRIPTS)
    page = (folder / "report.html").read_text("utf-8")
    for mark, text in (
        ("@STYLE_HASH@", _hash(style)), ("@SCRIPT_HASH@", _hash(script)),
        ("@STYLE@", style), ("@SCRIPT@", script),
    ):  # fmt: skip
        page = page.replace(mark, text)
    return page


def _hash(text: str) -> str:
    return f"'sha256-{base64.b64encode(hashlib.sha256(text.encode()).digest()).decode()}'"
