"""Host scripts: Python programs that look at and extend the files between rendering and writing."""

from __future__ import annotations

import importlib
import os
import runpy
import sys
import traceback
from collections.abc import Mapping

from orv.errors import OrvError, ScriptError
from orv.run import Run


def run_script(path: str, run: Run, model: Mapping[str, object]) -> None:
    """Run a script with the names `repo`, the repository as a host handle, `Varn`, the package of
    its classes, and `model`. Raises ScriptError, whose text begins with the script's line.
    """
    names = _host_names(run) | {"model": model}
    known = len(run.repository)
    folder = os.path.dirname(os.path.abspath(path))
    sys.path.insert(0, folder)
    try:
        runpy.run_path(path, init_globals=names, run_name="__main__")
    except SystemExit as end:
        if end.code not in (None, 0):
            raise ScriptError(f"{path}: the script ended with {end.code!r}") from end
    except OrvError:
        raise
    except Exception as error:
        raise ScriptError(_described(path, error)) from error
    finally:
        sys.path.remove(folder)
    for index in range(known, len(run.repository)):
        run.files.adopt(index, path)


def _host_names(run: Run) -> dict[str, object]:
    try:
        orbel = importlib.import_module("orbel")
        load, wrap = orbel.load, orbel.wrap
    except (ImportError, AttributeError) as error:
        raise ScriptError(f"scripts need the Python package orbel: {error}") from error
    package = load("varn_filepackaging")
    return {"Varn": package, "repo": wrap(run.repository.handle(), run.repository)}


def _described(path: str, error: Exception) -> str:
    if isinstance(error, SyntaxError) and error.filename == path:
        return f"{path}:{error.lineno}: {error.msg}"
    if isinstance(error, OSError) and error.filename == path:
        return f"{path}: {error.strerror}"
    lines = [f.lineno for f in traceback.extract_tb(error.__traceback__) if f.filename == path]
    where = f"{path}:{lines[-1]}" if lines else path
    return f"{where}: {type(error).__name__}: {error}"
