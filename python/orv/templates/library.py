"""What templates can call beyond Jinja2's own filters, tests and functions."""

from __future__ import annotations

from collections.abc import Callable, Sequence
from typing import Any, NamedTuple

from jinja2 import Environment

from orv.delimiters import DELIMITERS
from orv.dependencies import depends
from orv.errors import Messages, OrvError
from orv.extensions import Extensions, place
from orv.models.element import Element
from orv.templates import bits, cfilters
from orv.templates.collector import Collector
from orv.templates.printable import text_of
from orv.positions import here

# How much of a value `debug` shows.
_SHOWN = 2000


class Language(NamedTuple):
    """What templates are written in: what extensions add, and the delimiters, six in all."""

    extensions: Extensions = Extensions()
    delimiters: Sequence[str] = DELIMITERS


def add_library(environment: Environment, messages: Messages, extensions: Extensions) -> None:
    """Add the filters, tests and functions of this package, and what extensions declare.

    Raises OrvError for an extension that takes a name that is in use.
    """

    def warn(message: object) -> str:
        messages.warn(text_of(message), here())
        return ""

    def debug(value: object) -> str:
        messages.debug(f"{here()}: {_shown(value)}")
        return ""

    added = cfilters.filters(warn)
    environment.filters.update(added | bits.filters())
    environment.tests["regex_match"] = lambda *arguments: bool(added["regex_match"](*arguments))
    environment.globals.update(
        collector=lambda: Collector(), debug=debug, depends=depends, warn=warn
    )
    _extend("filter", environment.filters, extensions.filters)
    _extend("test", environment.tests, extensions.tests)
    _extend("function", environment.globals, extensions.functions)


def _extend(kind: str, known: Any, declared: dict[str, Callable[..., Any]]) -> None:
    for name, function in declared.items():
        if name in known:
            raise OrvError(
                f'{place(function)}: there is a {kind} "{name}" already; give this one another'
                f' name: @orv.{kind}("NAME")'
            )
        known[name] = function


def _shown(value: object) -> str:
    text = _literal(value)
    return text if len(text) <= _SHOWN else f"{text[:_SHOWN]}... ({len(text):,} characters)"


def _literal(value: object) -> str:
    if isinstance(value, Collector):
        return _literal(value._values or [])
    if isinstance(value, dict):
        entries = (f"{_literal(key)}: {_literal(entry)}" for key, entry in value.items())
        return "{" + ", ".join(entries) + "}"
    if isinstance(value, (list, tuple)):
        return "[" + ", ".join(map(_literal, value)) + "]"
    if value is None or isinstance(value, (str, int, float)):
        return repr(value)
    if isinstance(value, Element):
        return f"element {value.tag}"
    return f"value of type {type(value).__name__}"
