"""A template engine that packages generated C text into files, section by section.

`render`, `plan` and `write` are what the command does, for other programs; help(orv.interface)
shows an example. Every failure is an OrvError.
"""

from orv._version import __version__
from orv.errors import (
    Diagnostic,
    ModelError,
    OrvError,
    OutputError,
    ScriptError,
    TemplateError,
)
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
