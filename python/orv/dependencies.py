"""The files that a run depends on besides its templates, models and scripts."""

from __future__ import annotations

import os
from collections.abc import Iterator
from contextlib import contextmanager
from contextvars import ContextVar

from orv import inputs
from orv.errors import OrvError

_recorded: ContextVar[list[str] | None] = ContextVar("recorded", default=None)


def depends(file: str | os.PathLike[str]) -> str:
    """Record that what is generated depends on `file`, so that the depfile names it.

    For scripts and extensions; templates have it as `depends(FILE)`. Relative paths begin at the
    working directory. Gives "", and does nothing outside a run. Raises orv.OrvError when there is
    no such file.
    """
    path = inputs.plain(os.fsdecode(file))
    if not os.path.exists(path):
        inputs.current().absent.add(path)
        raise OrvError(f'depends: there is no file "{path}"')
    inputs.current().used.add(path)
    files = _recorded.get()
    if files is not None and path not in files:
        files.append(path)
    return ""


@contextmanager
def recorded() -> Iterator[list[str]]:
    """The paths that are given to `depends` from now on, each once, in order."""
    files: list[str] = []
    token = _recorded.set(files)
    try:
        yield files
    finally:
        _recorded.reset(token)
