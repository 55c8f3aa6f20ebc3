"""Host scripts: Python programs that look at and extend the files between rendering and writing."""

from __future__ import annotations

import importlib
import os
import runpy
from collections.abc import Callable, Iterator, Mapping
from contextlib import contextmanager

from orv import inputs
from orv._native import ScriptLines
from orv.dependencies import depends
from orv.errors import ScriptError
from orv.extensions import vouched_for
from orv.files.run import Run
from orv.pythonfiles import failure, is_users, shown, surroundings_kept


def run_script(path: str, run: Run, model: Mapping[str, object]) -> None:
    """Run a script with the names `repo`, the repository as a host handle, `Varn`, the package of
    its classes, `model` and `depends`. Text that it hands over ends at its first NUL character, as
    C's does. Raises ScriptError, whose text begins with the script's line.
    """
    names = _host_names(run) | {"model": model, "depends": depends}
    known = len(run.repository)
    lines = None if run.trace is None else ScriptLines(run.trace, path, _source_name_of(path))
    with surroundings_kept(path):
        try:
            inputs.load(path)
            with vouched_for() as vouched, _observed(lines):
                runpy.run_path(path, init_globals=names, run_name="__main__")
        except SystemExit as end:
            if end.code not in (None, 0):
                raise ScriptError(f"{path}: the script ended with {end.code!r}") from end
        except KeyboardInterrupt:
            raise
        except BaseException as error:
            raise ScriptError(failure(path, error)) from error
    if not vouched:
        inputs.current().is_incomplete = True
    for index in range(known, len(run.repository)):
        run.files.adopt(index, path)
    if lines is not None:
        run.repository.adopt_script(lines)


@contextmanager
def _observed(lines: ScriptLines | None) -> Iterator[None]:
    """Have the lines of the script recorded."""
    if lines is None:
        yield
        return
    observe = importlib.import_module("orbel._native").observe
    observe(lines.observer)
    try:
        yield
    finally:
        observe(None)


def _source_name_of(script: str) -> Callable[[str], str | None]:
    """What names the source for a file of code, seen from here wherever the script goes."""
    folder = os.getcwd()

    def name(file: str) -> str | None:
        if file == script:
            return script
        return shown(file, folder) if is_users(file) else None

    return name


def _host_names(run: Run) -> dict[str, object]:
    try:
        orbel = importlib.import_module("orbel")
        load, wrap = orbel.load, orbel.wrap
    except (ImportError, AttributeError) as error:
        raise ScriptError(f"scripts need the Python package orbel: {error}") from error
    try:
        package = load("varn_filepackaging")
        return {"Varn": package, "repo": wrap(run.repository.handle(), run.repository)}
    except orbel.Error as error:
        raise ScriptError(f"scripts cannot reach the files: {error}") from error
