"""What a build system was told that a run makes."""

from __future__ import annotations

import os
from collections.abc import Iterable, Sequence

from orv.errors import OutputError
from orv.output.plan import PlannedFile


def require_expected(files: Iterable[PlannedFile], expected: Sequence[str]) -> None:
    """Raise OutputError, naming each file at fault, unless the run makes exactly `expected`.

    These are paths from the output folder. None at all means that any files will do.
    """
    if not expected:
        return
    made = {file.path for file in files if not file.is_empty}
    wanted = {os.path.normpath(path) for path in expected}
    faults = [f"{path} is made, but no --expect names it" for path in made - wanted]
    faults += [f"{path} is not made, but --expect names it" for path in wanted - made]
    if faults:
        raise OutputError("\n".join(["nothing was written", *sorted(faults)]))
