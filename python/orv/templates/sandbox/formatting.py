"""Making texts by formats and by methods of texts, within the bounds of one operation."""

from __future__ import annotations

from collections.abc import Callable
from types import BuiltinMethodType, MethodType
from typing import Any

from jinja2.sandbox import SandboxedFormatter

from orv.files.table import FileView
from orv.models.element import Element
from orv.templates.sandbox import sizes
from orv.templates.printable import plain, require_printable, text_of


# The methods of texts and numbers that can make much of little.
_BOUNDED = {"format", "format_map", "join", *sizes.METHODS}


def bounded(environment: Any, method: BuiltinMethodType | MethodType) -> Callable[..., Any]:
    """The method, or one that refuses what is too large before it makes it."""
    owner: Any = method.__self__
    if not isinstance(owner, (str, int)) or method.__name__ not in _BOUNDED:
        return method
    # Functions: templates can reach nothing of what they hold.
    if method.__name__ == "format":
        return lambda *values, **named: _Formatter(environment).vformat(owner, values, named)
    if method.__name__ == "format_map":
        return lambda values: _Formatter(environment).vformat(owner, (), values)
    if method.__name__ == "join":
        return lambda values: joined(owner, values)
    return _checked(method, owner)


def _checked(method: Callable[..., Any], owner: Any) -> Callable[..., Any]:
    def call(*arguments: Any, **named: Any) -> Any:
        sizes.METHODS[method.__name__](owner, *arguments, **named)
        return method(*arguments, **named)

    return call


def formatted(form: str, values: Any) -> str:
    """What the operator % makes of a text and values."""
    sizes.require_format(form, values)
    if isinstance(values, dict):
        return str(form % {key: _formattable(value) for key, value in values.items()})
    if isinstance(values, tuple):
        return str(form % tuple(map(_formattable, values)))
    return str(form % _formattable(values))


def joined(separator: str, values: Any) -> str:
    """The texts of the values, with the separator between them."""
    texts = [text if type(text) is str else text_of(text) for text in values]
    sizes.require_text(sum(map(len, texts)) + len(separator) * (len(texts) - 1))
    return separator.join(texts)


class _Formatter(SandboxedFormatter):
    """Formats by {} places: reads attributes as templates do, and counts what it makes."""

    def __init__(self, environment: Any) -> None:
        super().__init__(environment)
        self._length = 0

    def convert_field(self, value: Any, conversion: Any) -> Any:
        """See string.Formatter."""
        return super().convert_field(value if conversion is None else plain(value), conversion)

    def format_field(self, value: Any, form: str) -> str:
        """See string.Formatter."""
        sizes.require_format_of_one(form)
        text = str(super().format_field(_formattable(value), form))
        self._length += len(text)
        sizes.require_text(self._length)
        return text


def _formattable(value: Any) -> Any:
    """The value, which must be one that can be printed; its text if it is of no known kind."""
    require_printable(value)
    return str(value) if isinstance(value, (FileView, Element)) else value
