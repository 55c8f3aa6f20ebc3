"""Host scripts: Python programs that look at and extend the files between rendering and writing."""

from __future__ import annotations

import importlib
import os
import runpy
import sys
import traceback
from collections.abc import Iterator, Mapping
from contextlib import contextmanager

from orv.errors import OrvError, ScriptError
from orv.files.run import Run


def run_script(path: str, run: Run, model: Mapping[str, object]) -> None:
    """Run a script with the names `repo`, the repository as a host handle, `Varn`, the package of
    its classes, and `model`. Text that it hands over ends at its first NUL character, as C's does.
    Raises ScriptError, whose text begins with the script's line.
    """
    names = _host_names(run) | {"model": model}
    known = len(run.repository)
    with _surroundings_kept(path):
        try:
            runpy.run_path(path, init_globals=names, run_name="__main__")
        except SystemExit as end:
            if end.code not in (None, 0):
                raise ScriptError(f"{path}: the script ended with {end.code!r}") from end
        except KeyboardInterrupt:
            raise
        except BaseException as error:
            raise ScriptError(_described(path, error)) from error
    for index in range(known, len(run.repository)):
        run.files.adopt(index, path)


@contextmanager
def _surroundings_kept(path: str) -> Iterator[None]:
    """Undo what a script does to the process: where it is, finds modules and prints."""
    modules, streams = sys.path, (sys.stdout, sys.stderr)
    folder = os.open(".", os.O_RDONLY | os.O_DIRECTORY)
    sys.path = [os.path.dirname(os.path.abspath(path)), *modules]
    try:
        yield
    finally:
        sys.path = modules
        sys.stdout, sys.stderr = (open(os.devnull, "w") if s.closed else s for s in streams)
        os.fchdir(folder)
        os.close(folder)
    if any(stream.closed for stream in streams):
        raise ScriptError(f"{path}: the script closed the standard output or error")


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


def _described(path: str, error: BaseException) -> str:
    if isinstance(error, SyntaxError) and error.filename == path:
        return f"{path}:{error.lineno}: {error.msg}"
    if isinstance(error, OSError) and error.filename == path:
        return f"{path}: {error.strerror}"
    lines = [f.lineno for f in traceback.extract_tb(error.__traceback__) if f.filename == path]
    where = f"{path}:{lines[-1]}" if lines else path
    if isinstance(error, OrvError):
        return f"{where}: {error}"
    return f"{where}: {type(error).__name__}: {error}"
