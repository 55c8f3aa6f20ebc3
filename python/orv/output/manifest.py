"""The manifest: what a run made, for other programs."""

from __future__ import annotations

import json
import re
from collections.abc import Sequence

from orv.files.table import ATTRIBUTES
from orv.files.run import Run
from orv.output.plan import PlannedFile

_INCLUDE = re.compile(r'^#include ([<"][^>"\n]*[>"])$', re.MULTILINE)


def manifest(
    run: Run, files: Sequence[PlannedFile], described: Sequence[dict[str, object]] = ()
) -> bytes:
    """A JSON text: the model's name and every file of the run, sorted by path.

    `described` has what describe() gives for each file, if that is known already.

    Of each file: its path, whether it is empty, its class, attributes, size in bytes, the sizes of
    its sections that have text as they were before a formatter ran, the names of its functions and
    what it includes.
    """
    entries = [dict(described[file.index] if described else describe(run, file)) for file in files]
    for entry, file in zip(entries, files, strict=True):
        entry["size"] = len(file.buffer)
    entries.sort(key=lambda entry: str(entry["path"]))
    text = json.dumps({"files": entries, "model": run.repository.model_name}, indent=2,
                      sort_keys=True, ensure_ascii=True)  # fmt: skip
    return (text + "\n").encode()


def describe(run: Run, file: PlannedFile) -> dict[str, object]:
    """The entry of a file but for its size."""
    repository, composed = run.repository, file.composed
    attributes = {name: repository.get_attribute(file.index, name) for name in ATTRIBUTES}
    del attributes["WrittenToDisk"]
    return {
        "attributes": attributes,
        "class": repository.class_name(file.index),
        "empty": file.is_empty,
        "functions": repository.function_names(file.index),
        "includes": _INCLUDE.findall(repository.section_text(file.index, "Includes")),
        "path": file.path,
        "sections": {} if composed is None else composed.sections,
    }
