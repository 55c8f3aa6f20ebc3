"""Filters, methods and operators that make text of values: they refuse what cannot be printed."""

from __future__ import annotations

from collections.abc import Callable, Iterable, Mapping
from functools import update_wrapper
from types import BuiltinMethodType
from typing import Any

from jinja2 import pass_eval_context
from jinja2.filters import make_attrgetter
from jinja2.nodes import EvalContext

from orv.templates.printable import require_printable, text_of

# The filters that take any value for text, and how many of their arguments.
_TEXT_FILTERS = {
    "capitalize": 1, "center": 1, "e": 1, "escape": 1, "forceescape": 1, "indent": 1, "lower": 1,
    "replace": 3, "string": 1, "striptags": 1, "title": 1, "trim": 1, "truncate": 1, "upper": 1,
    "urlencode": 1, "wordcount": 1, "wordwrap": 1,
}  # fmt: skip

Filter = Callable[..., Any]


def checked_filters(filters: Mapping[str, Filter]) -> dict[str, Filter]:
    """Those of the filters that make text, with a check of what they make text of."""
    found = {name: _checked(filters[name], count) for name, count in _TEXT_FILTERS.items()}
    return found | {"format": _checked(filters["format"], None), "join": _join(filters["join"])}


def require_format(function: object, arguments: Iterable[object], named: Iterable[object]) -> None:
    """Check the arguments of a call if it is one of `format` or `format_map` of a text."""
    method = getattr(function, "__wrapped__", function)
    if type(method) is BuiltinMethodType and isinstance(method.__self__, str):
        if method.__name__ == "format":
            _require_all([*arguments, *named])
        elif method.__name__ == "format_map":
            for mapping in arguments:
                _require_all(mapping.values() if isinstance(mapping, Mapping) else ())


def require_operands(operand: object) -> None:
    """Check the right side of `%` with a text on its left."""
    if isinstance(operand, Mapping):
        _require_all(operand.values())
    else:
        _require_all(operand if isinstance(operand, tuple) else (operand,))


def _checked(function: Filter, count: int | None) -> Filter:
    """The filter, which checks its value and more arguments, `count` in all; None for every one."""
    first = 1 if hasattr(function, "jinja_pass_arg") else 0
    end = None if count is None else first + count

    def call(*arguments: Any, **named: Any) -> Any:
        _require_all(arguments[first:end])
        if end is None:
            _require_all(named.values())
        return function(*arguments, **named)

    return update_wrapper(call, function)


def _join(function: Filter) -> Filter:
    @pass_eval_context
    def join(
        context: EvalContext, value: Iterable[Any], d: str = "", attribute: str | int | None = None
    ) -> Any:
        if attribute is not None:
            value = map(make_attrgetter(context.environment, attribute), value)
        parts = [part if isinstance(part, str) else text_of(part) for part in value]
        return function(context, parts, text_of(d))

    return join


def _require_all(values: Iterable[object]) -> None:
    for value in values:
        if not isinstance(value, str):
            require_printable(value)
