"""The manifest: what a run made, for other programs."""

from __future__ import annotations

import json
import re
from collections.abc import Iterable

from orv.files.table import ATTRIBUTES
from orv.files.run import Run
from orv.output.plan import PlannedFile

_INCLUDE = re.compile(r'^#include ([<"][^>"\n]*[>"])$', re.MULTILINE)


def manifest(run: Run, files: Iterable[PlannedFile]) -> bytes:
    """A JSON text: the model's name and every file of the run, sorted by path.

    Of each file: its path, whether it is empty, its class, attributes, size in bytes, the sizes of
    its sections that have text as they were before a formatter ran, the names of its functions and
    what it includes.
    """
    entries = [_entry(run, file) for file in files]
    entries.sort(key=lambda entry: str(entry["path"]))
    text = json.dumps({"files": entries, "model": run.repository.model_name}, indent=2,
                      sort_keys=True, ensure_ascii=True)  # fmt: skip
    return (text + "\n").encode()


def _entry(run: Run, file: PlannedFile) -> dict[str, object]:
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
        "size": len(file.buffer),
    }
