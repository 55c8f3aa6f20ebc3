"""Running the Python files of a user: scripts and extensions."""

from __future__ import annotations

import functools
import glob
import os
import sys
import sysconfig
import traceback
from collections.abc import Iterator
from contextlib import contextmanager
from types import TracebackType

from orv import inputs
from orv.dependencies import depends
from orv.errors import OrvError, ScriptError

_PACKAGES = os.path.dirname(os.path.abspath(__file__))
_STANDARD_LIBRARY = tuple(sysconfig.get_path(name) + os.sep for name in ("stdlib", "platstdlib"))


@contextmanager
def surroundings_kept(path: str) -> Iterator[None]:
    """Undo what the file does to the process: where it is, finds modules and prints.

    The file's folder is where modules are looked for first. Those found there are dependencies of
    the run and are not seen by files of other folders.
    """
    with imports_recorded():
        kept = sys.path, sys.stdout, sys.stderr
        folder = os.open(".", os.O_RDONLY | os.O_DIRECTORY)
        sys.path = [os.path.dirname(os.path.abspath(path)), *sys.path]
        for searched in sys.path:
            if is_users(os.path.join(searched, "module.py")):
                _note_neighbours(os.path.abspath(searched))
        try:
            yield
        finally:
            sys.path, *streams = kept
            sys.stdout, sys.stderr = (open(os.devnull, "w") if s.closed else s for s in streams)
            os.fchdir(folder)
            os.close(folder)
    if any(stream.closed for stream in streams):
        raise ScriptError(f"{path}: the script closed the standard output or error")


@contextmanager
def imports_recorded() -> Iterator[None]:
    """Make the user's modules that are imported from now on dependencies of the run.

    They leave no compiled file behind, and are forgotten at the end.
    """
    writes_nothing = sys.dont_write_bytecode
    modules = set(sys.modules)
    sys.dont_write_bytecode = True
    try:
        yield
    finally:
        sys.dont_write_bytecode = writes_nothing
        _forget(set(sys.modules) - modules)


def failure(path: str, error: BaseException) -> str:
    """What is said of an error in the file or in what it calls, with the user's line."""
    if isinstance(error, SyntaxError) and error.filename is not None and is_users(error.filename):
        return f"{shown(error.filename)}:{error.lineno}: {error.msg}"
    if isinstance(error, OSError) and error.filename == path:
        return f"{path}: {error.strerror}"
    return f"{place(error.__traceback__) or path}: {words(error)}"


def place(trace: TracebackType | None) -> str | None:
    """FILE:LINE of the innermost line of the user's code; None when there is none."""
    frames = [frame for frame in traceback.extract_tb(trace) if is_users(frame.filename)]
    return f"{shown(frames[-1].filename)}:{frames[-1].lineno}" if frames else None


def words(error: BaseException) -> str:
    """The error in words: its type too, unless it was written for the person at the keyboard."""
    if isinstance(error, OrvError):
        return str(error)
    return f"{type(error).__name__}: {error}"


@functools.lru_cache(maxsize=None)
def is_users(path: str) -> bool:
    """Whether a file of Python code is the user's: not the distribution's nor this package's."""
    if path.startswith("<"):
        return False
    real = os.path.abspath(path)
    if real.startswith((_PACKAGES + os.sep, os.path.join(os.path.dirname(_PACKAGES), "orbel"))):
        return False
    parts = real.split(os.sep)
    packaged = "dist-packages" in parts or "site-packages" in parts
    return not packaged and not real.startswith(_STANDARD_LIBRARY)


def shown(path: str, folder: str = ".") -> str:
    """The path as messages and dependency lists name it, seen from a folder: relative when that is
    the shorter one.
    """
    relative = os.path.relpath(path, folder)
    return relative if os.path.isabs(path) and not relative.startswith("..") else path


def _forget(names: set[str]) -> None:
    for name in sorted(names):
        file = getattr(sys.modules[name], "__file__", None)
        if file is not None and os.path.exists(file):
            inputs.current().used.add(file)
        elif file is not None:
            # It is in an archive.
            inputs.current().is_incomplete = True
        if file is not None and is_users(file):
            if os.path.exists(file):
                depends(shown(file))
                _note_neighbours(os.path.dirname(file))
            del sys.modules[name]


def _note_neighbours(folder: str) -> None:
    """Note the modules of a folder: another one may be what an import finds."""
    found = inputs.current()
    for name in ("*.py", "*.so", os.path.join("*", "__init__.py")):
        pattern = os.path.join(glob.escape(folder), name)
        found.note(found.patterns, pattern, sorted(glob.glob(pattern)))
