"""A template engine that packages generated C text into files, section by section.

`read_model`, `render`, `plan` and `write` are what the command does, for other programs;
help(orv.interface) shows an example. Every failure is an OrvError. `filter`, `test`, `function`,
`prepare` and `depends` are for extensions; see orv.extensions.
"""

from __future__ import annotations

from typing import TYPE_CHECKING

from orv._version import __version__
from orv.dependencies import depends
from orv.errors import (
    Diagnostic,
    ModelError,
    OrvError,
    OutputError,
    ScriptError,
    TemplateError,
)
from orv.extensions import Model, filter, function, prepare, test

if TYPE_CHECKING:
    from orv.interface import plan, read_model, render, write

__all__ = [
    "Diagnostic",
    "Model",
    "ModelError",
    "OrvError",
    "OutputError",
    "ScriptError",
    "TemplateError",
    "__version__",
    "depends",
    "filter",
    "function",
    "plan",
    "prepare",
    "read_model",
    "render",
    "test",
    "write",
]


def __getattr__(name: str) -> object:
    # Loaded when first used: help and --version need no engine.
    if name in ("plan", "read_model", "render", "write"):
        from orv import interface

        return getattr(interface, name)
    raise AttributeError(f"module {__name__!r} has no attribute {name!r}")
