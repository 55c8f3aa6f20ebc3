"""Jinja2's filters as templates have them: with bounds, and with the same texts in each run."""

from __future__ import annotations

from collections.abc import Callable, Iterable, Iterator
from functools import wraps
from typing import Any

from jinja2 import Environment, pass_environment
from jinja2.filters import FILTERS, make_attrgetter
from jinja2.utils import htmlsafe_json_dumps
from markupsafe import Markup

from orv.errors import OrvError
from orv.templates.sandbox import sizes
from orv.templates.cfilters import integer
from orv.templates.sandbox.formatting import formatted, joined
from orv.templates.printable import plain, text_of

Filter = Callable[..., Any]

# Those that make a text of whatever they are given.
_OF_TEXT = (
    "capitalize", "e", "escape", "forceescape", "lower", "safe", "title", "trim",
    "truncate", "upper", "wordcount",
)  # fmt: skip

# Those that go over all values of what they are given.
_OF_VALUES = (
    "first", "list", "map", "max", "min", "reject", "rejectattr", "select", "selectattr", "sort",
    "unique", "groupby",
)  # fmt: skip

# Words that are longer are not broken or searched for links: it takes time by their square.
_LONGEST_WORD = 1 << 15

# The most blanks in front of a line of JSON.
_WIDEST = 64


def filters() -> dict[str, Filter]:
    """The filters that take the place of Jinja2's, by name."""
    found = {name: _prepared(FILTERS[name], _text) for name in _OF_TEXT}
    found.update((name, _prepared(FILTERS[name], ordered)) for name in _OF_VALUES)
    return found | {
        "attr": _attr, "batch": _batch, "center": _center, "format": _format, "indent": _indent,
        "join": _join, "pprint": _pprint, "replace": _replace, "round": _round, "slice": _slice,
        "string": _text, "striptags": _striptags, "sum": _sum, "tojson": _tojson,
        "urlencode": _urlencode, "urlize": _urlize, "wordwrap": _wordwrap, "xmlattr": _xmlattr,
    }  # fmt: skip


def ordered(values: Any) -> Any:
    """The values, in an order that is the same in each run."""
    if not isinstance(values, (set, frozenset)):
        return values
    try:
        return sorted(values)
    except TypeError as error:
        raise OrvError("a set whose values cannot be sorted has no order to print it in") from error


def _text(value: object) -> str:
    return value if isinstance(value, str) else text_of(value)


def _prepared(function: Filter, prepare: Callable[[Any], Any]) -> Filter:
    """The filter, with its value prepared."""
    passed = getattr(function, "jinja_pass_arg", None) is not None

    @wraps(function)
    def call(*arguments: Any, **named: Any) -> Any:
        if len(arguments) <= passed:
            return function(*arguments, **named)
        value = prepare(arguments[passed])
        return function(*arguments[:passed], value, *arguments[passed + 1 :], **named)

    return call


@pass_environment
def _attr(environment: Any, value: Any, name: object) -> Any:
    return environment.attribute(value, str(name))


def _batch(value: Iterable[Any], linecount: int, fill_with: object = None) -> Iterator[list[Any]]:
    if fill_with is not None:
        sizes.require_list(linecount)
    return FILTERS["batch"](ordered(value), linecount, fill_with)  # type: ignore[no-any-return]


def _slice(value: Iterable[Any], slices: int, fill_with: object = None) -> Iterator[list[Any]]:
    sizes.require_list(slices)
    return _evenly(list(ordered(value)), slices, fill_with)


def _evenly(values: list[Any], slices: int, fill_with: object) -> Iterator[list[Any]]:
    size, larger = divmod(len(values), slices)
    at = 0
    for number in range(slices):
        end = at + size + (number < larger)
        filled = [] if fill_with is None or number < larger else [fill_with]
        yield values[at:end] + filled
        at = end


def _center(value: object, width: int = 80) -> str:
    text = _text(value)
    sizes.METHODS["center"](text, width)
    return text.center(width)


def _format(value: object, *arguments: Any, **named: Any) -> str:
    if arguments and named:
        raise OrvError("format takes values with names or without, not both")
    return formatted(_text(value), named or arguments)


def _indent(s: str, width: int | str = 4, first: bool = False, blank: bool = False) -> str:
    blanks = len(width) if isinstance(width, str) else width
    if len(s) * (blanks + 1) > sizes.LONGEST_TEXT:
        sizes.require_text(len(s) + (len(s.splitlines()) + 1) * blanks)
    return FILTERS["indent"](s, width, first, blank)  # type: ignore[no-any-return]


@pass_environment
def _join(
    environment: Environment, value: Iterable[Any], d: object = "",
    attribute: str | int | None = None,
) -> str:  # fmt: skip
    values = ordered(value)
    if attribute is not None:
        values = map(make_attrgetter(environment, attribute), values)
    return joined(_text(d), values)


def _pprint(value: object) -> str:
    from pprint import pformat

    return pformat(plain(value))


def _replace(s: object, old: object, new: object, count: int | None = None) -> str:
    text, before, after = _text(s), _text(old), _text(new)
    most = -1 if count is None else count
    sizes.require_replacement(text, before, after, most)
    return str(text).replace(before, after, most)


def _round(value: Any, precision: int = 0, method: str = "common") -> Any:
    sizes.require_digits(precision)
    return FILTERS["round"](value, precision, method)


def _striptags(value: object) -> str:
    text = _without(_without(_text(value), "<!--", "-->"), "<", ">")
    return Markup(" ".join(text.split())).unescape()


def _without(text: str, begin: str, end: str) -> str:
    """The text without all that is between the two, in time linear in the text."""
    kept: list[str] = []
    at = 0
    while (start := text.find(begin, at)) >= 0 and (stop := text.find(end, start)) >= 0:
        kept.append(text[at:start])
        at = stop + len(end)
    return "".join([*kept, text[at:]])


@pass_environment
def _sum(
    environment: Environment, iterable: Iterable[Any], attribute: str | int | None = None,
    start: Any = 0,
) -> Any:  # fmt: skip
    values = ordered(iterable)
    if attribute is not None:
        values = map(make_attrgetter(environment, attribute), values)
    return _chained(values, start) if isinstance(start, (list, tuple)) else sum(values, start)


def _chained(lists: Iterable[Any], start: list[Any] | tuple[Any, ...]) -> Any:
    """The lists one after the other, made in linear time."""
    whole = list(start)
    for values in lists:
        if not isinstance(values, type(start)):
            raise TypeError(
                f'can only concatenate {type(start).__name__} (not "{type(values).__name__}")'
                f" to {type(start).__name__}"
            )
        sizes.require_list(len(whole) + len(values))
        whole += values
    return tuple(whole) if isinstance(start, tuple) else whole


@pass_environment
def _tojson(environment: Environment, value: Any, indent: int | None = None) -> Markup:
    if indent is not None and not 0 <= integer("tojson", indent) <= _WIDEST:
        raise OrvError(f"tojson indents by 0 to {_WIDEST} blanks, not {indent}")
    named = dict(environment.policies["json.dumps_kwargs"], indent=indent)
    return htmlsafe_json_dumps(plain(value), environment.policies["json.dumps_function"], **named)


def _urlencode(value: Any) -> str:
    values = ordered(value)
    if not isinstance(values, (str, int, float)):
        plain(values := values if isinstance(values, dict) else list(values))
    return FILTERS["urlencode"](values)  # type: ignore[no-any-return]


@wraps(FILTERS["urlize"])
def _urlize(passed: Any, value: object, *arguments: Any, **named: Any) -> str:
    text = _text(value)
    _require_short_words("urlize", text)
    return FILTERS["urlize"](passed, text, *arguments, **named)  # type: ignore[no-any-return]


@pass_environment
def _wordwrap(
    environment: Environment, s: object, width: int = 79, break_long_words: bool = True,
    wrapstring: str | None = None, break_on_hyphens: bool = True,
) -> str:  # fmt: skip
    _require_short_words("wordwrap", s := _text(s))
    text: str = FILTERS["wordwrap"](environment, s, width, break_long_words, "\n", break_on_hyphens)
    return text if wrapstring is None else _replace(text, "\n", wrapstring)


def _require_short_words(name: str, text: str) -> None:
    longest = max(map(len, text.split()), default=0)
    if longest > _LONGEST_WORD:
        raise OrvError(f"{name} takes words of up to {_LONGEST_WORD:,} characters, got {longest:,}")


@wraps(FILTERS["xmlattr"])
def _xmlattr(passed: Any, d: Any, autospace: bool = True) -> str:
    given = {key: value for key, value in d.items() if value is not None}
    return FILTERS["xmlattr"](passed, plain(given), autospace)  # type: ignore[no-any-return]
