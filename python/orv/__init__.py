"""A template engine that packages generated C text into files, section by section.

`render`, `plan` and `write` are what the command does, for other programs; help(orv.interface)
shows an example. Every failure is an OrvError.
"""

from __future__ import annotations

from typing import TYPE_CHECKING

from orv._version import __version__
from orv.errors import (
    Diagnostic,
    ModelError,
    OrvError,
    OutputError,
    ScriptError,
    TemplateError,
)

if TYPE_CHECKING:
    from orv.interface import plan, render, write

__all__ = [
    "Diagnostic",
    "ModelError",
    "OrvError",
    "OutputError",
    "ScriptError",
    "TemplateError",
    "__version__",
    "plan",
    "render",
    "write",
]


def __getattr__(name: str) -> object:
    # Loaded when first used: help and --version need no engine.
    if name in ("plan", "render", "write"):
        from orv import interface

        return getattr(interface, name)
    raise AttributeError(f"module {__name__!r} has no attribute {name!r}")
