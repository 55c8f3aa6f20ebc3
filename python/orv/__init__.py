"""A template engine that packages generated C text into files, section by section.

`read_model`, `render`, `plan` and `write` are what the command does, for other programs;
help(orv.interface) shows an example. Every failure is an OrvError. `filter`, `test`, `function`,
`prepare`, `pure` and `depends` are for extensions; see orv.extensions.
"""

from __future__ import annotations

from orv._version import __version__

TYPE_CHECKING = False
if TYPE_CHECKING:
    from orv.dependencies import depends
    from orv.errors import (
        Diagnostic,
        ModelError,
        OrvError,
        OutputError,
        ScriptError,
        TemplateError,
    )
    from orv.extensions import Model, filter, function, prepare, pure, test
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
    "pure",
    "read_model",
    "render",
    "test",
    "write",
]

# What is loaded when it is first used: a command that has nothing to do needs none of it.
_MODULES = {
    "dependencies": ("depends",),
    "errors": (
        "Diagnostic", "ModelError", "OrvError", "OutputError", "ScriptError", "TemplateError",
    ),
    "extensions": ("Model", "filter", "function", "prepare", "pure", "test"),
    "interface": ("plan", "read_model", "render", "write"),
}  # fmt: skip


def __getattr__(name: str) -> object:
    for module, names in _MODULES.items():
        if name in names:
            from importlib import import_module

            return getattr(import_module(f"orv.{module}"), name)
    raise AttributeError(f"module {__name__!r} has no attribute {name!r}")
