"""Filters that make C of texts and numbers. docs/templates.md teaches each by an example.

| filter | what it makes |
|---|---|
| `c_string` | a string literal of C99 whose bytes are the text's UTF-8 |
| `c_char` | a character constant, of one character of ASCII |
| `c_comment` | text that neither ends nor begins a comment, and joins no lines |
| `c_ident` | an identifier |
| `c_bool` | `true` or `false` |
| `hex(width=1)` | a hexadecimal constant of at least `width` digits |
| `snake`, `upper_snake`, `camel`, `pascal` | a name in another style |
| `regex_match(pattern)` | the first match and its groups, or none; also a test |
| `regex_replace(pattern, replacement)` | the text with every match replaced |
| `align(columns=none, separator="\\t")` | lines whose cells begin in the same columns |
| `wrap_comment(width=80)` | a block comment with lines of at most `width` characters |

All of them raise OrvError for a value that they cannot take.
"""

from __future__ import annotations

from collections.abc import Callable, Sequence
from typing import Any

from orv import _native
from orv.errors import OrvError
from orv.models.element import Element

# C99 compilers need not take longer string literals.
_LONGEST_LITERAL = 4095

# The most columns and digits that a template can ask for.
_WIDEST = 1 << 12

_TRUTHS: dict[object, str] = {True: "true", False: "false", "true": "true", "false": "false"}

Filter = Callable[..., Any]


def filters(warn: Callable[[str], object]) -> dict[str, Filter]:
    """The filters by name. `warn` takes the warnings about the line that is running."""
    patterns = _native.Patterns()

    def c_string(value: object) -> str:
        literal, size = _native.c_string(_text("c_string", value))
        if size > _LONGEST_LITERAL:
            warn(
                f"the string literal has {size:,} characters;"
                f" C99 compilers need not take more than {_LONGEST_LITERAL:,}"
            )
        return literal

    def regex_match(value: object, pattern: str) -> list[str | None] | None:
        return patterns.match(_text("regex_match", value), pattern)

    def regex_replace(value: object, pattern: str, replacement: str) -> str:
        return patterns.replace(_text("regex_replace", value), pattern, replacement)

    return {
        "c_string": c_string, "c_char": _c_char, "c_ident": _c_ident, "c_bool": _c_bool,
        "c_comment": _of_text("c_comment", _native.c_comment), "hex": _hex,
        "snake": _of_text("snake", _native.snake), "camel": _of_text("camel", _native.camel),
        "upper_snake": _of_text("upper_snake", _native.upper_snake),
        "pascal": _of_text("pascal", _native.pascal), "regex_match": regex_match,
        "regex_replace": regex_replace, "align": _align, "wrap_comment": _wrap_comment,
    }  # fmt: skip


def integer(name: str, value: object) -> int:
    """The value, which must be a whole number; `name` is the filter that needs one."""
    if type(value) is not int:
        raise OrvError(f"{name} expects a whole number, got {described(value)}")
    return value


def described(value: object) -> str:
    """What a message calls a value that is of the wrong type."""
    if value is None:
        return "none"
    shown = repr(value) if isinstance(value, (str, int, float)) else ""
    return f"{type(value).__name__} {shown}" if 0 < len(shown) <= 40 else type(value).__name__


def _text(name: str, value: object) -> str:
    if isinstance(value, str):
        return value
    if isinstance(value, Element):
        return str(value)
    raise OrvError(f"{name} expects text, got {described(value)}")


def _of_text(name: str, make: Callable[[str], str]) -> Filter:
    return lambda value: make(_text(name, value))


def _c_char(value: object) -> str:
    constant = _native.c_char(_text("c_char", value))
    if constant is None:
        raise OrvError(f"c_char expects one character of ASCII, got {described(value)}")
    return constant


def _c_ident(value: object) -> str:
    text = _text("c_ident", value)
    if not text:
        raise OrvError("c_ident expects some text to make an identifier of, got an empty one")
    return _native.c_ident(text)


def _c_bool(value: object) -> str:
    if isinstance(value, (int, str)) and value in _TRUTHS:
        return _TRUTHS[value]
    raise OrvError(f'c_bool expects true, false, 1, 0, "true" or "false", got {described(value)}')


def _hex(value: object, width: int = 1) -> str:
    number = integer("hex", value)
    if number < 0:
        raise OrvError(f"hex expects no negative number, got {number}; mask it with bitand first")
    return f"0x{number:0{_bounded('hex', 'width', width)}X}"


def _align(value: object, columns: int | Sequence[int] | None = None, separator: str = "\t") -> str:
    wanted = [columns] if isinstance(columns, int) else columns or []
    if not isinstance(wanted, (list, tuple)):
        raise OrvError(f"align expects a column or a list of columns, got {described(columns)}")
    if not separator or not isinstance(separator, str):
        raise OrvError(f"align expects a text as separator, got {described(separator)}")
    checked = [_bounded("align", "column", column) for column in wanted]
    return _native.align(_text("align", value), separator, checked)


def _wrap_comment(value: object, width: int = 80) -> str:
    return _native.wrap_comment(
        _text("wrap_comment", value), _bounded("wrap_comment", "width", width)
    )


def _bounded(name: str, what: str, value: object) -> int:
    number = integer(name, value)
    if not 1 <= number <= _WIDEST:
        raise OrvError(f"{name} expects a {what} of 1 to {_WIDEST}, got {number}")
    return number
