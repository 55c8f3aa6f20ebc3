"""What a template may print: values whose text is the same in every run."""

from __future__ import annotations

from datetime import date, time, timedelta
from math import isfinite
from typing import Any, NoReturn

from jinja2 import Undefined
from jinja2.runtime import LoopContext

from orv import _native
from orv.delimiters import printed, tag
from orv.errors import OrvError
from orv.files.table import FileView
from orv.models.element import Element
from orv.templates.mistakes.wording import type_words

_PRINTED = (str, int, float, complex, date, time, timedelta, Undefined, FileView, Element)

# Those whose text in a list is the same in every run, too.
_PLAIN = (complex, date, time, timedelta)

# What no C program wants to read, by type, and what templates write instead.
_INSTEAD: dict[type, tuple[str, ...]] = {
    type(None): ("none has no text in C; write ", '"NULL" if VALUE is none else VALUE'),
    bool: ("a truth value has no text in C; write ", "VALUE | c_bool", "VALUE | int"),
    dict: ("a dictionary has no text in C; print its entries one by one, as in ", "VALUE.NAME"),
    list: ("a list has no text in C; write ", 'VALUE | join(", ")'),
    tuple: ("a list has no text in C; write ", 'VALUE | join(", ")'),
}


def text_of(value: object) -> str:
    """The text that is printed for a value, also by `~` and by filters that make text.

    Texts and whole numbers need not come here; everything else that becomes text does. Raises
    OrvError as `require_printable` does.
    """
    require_printable(value)
    return str(value)


def require_printable(value: object) -> None:
    """Raise OrvError for a value that C has no use for, or whose text would be its address."""
    instead = _INSTEAD.get(type(value))
    if instead is not None:
        reason, *expressions = instead
        raise OrvError(reason + " or ".join(map(printed, expressions)))
    if isinstance(value, float) and not isfinite(value):
        raise OrvError(f"the number {value} has no text in C; <math.h> has INFINITY and NAN")
    if not isinstance(value, _PRINTED):
        raise OrvError(f"{type_words(type(value).__name__)} has no text to print{_hint(value)}")


def plain(value: Any) -> Any:
    """The value, if all of it has a text that is the same in every run; raises OrvError if not."""
    _native.require_plain(value, _refuse_value)
    return value


def _refuse_value(value: object) -> None:
    if isinstance(value, (set, frozenset)):
        raise OrvError(f"a set has no order to print it in; write {printed('VALUE | sort')}")
    if isinstance(value, Undefined):
        value._fail_with_undefined_error()
    if not isinstance(value, _PLAIN):
        raise OrvError(f"{type_words(type(value).__name__)} has no text{_hint(value)}")


def refuse_outside(text: str) -> None:
    """Raise OrvError for text that belongs to no section, unless it is white space."""
    if text and not text.isspace():
        raise OrvError(outside_text(text))


def outside_text(text: str) -> str:
    """The complaint about text that belongs to no section."""
    line, *more = text.strip().splitlines()
    shown = line[:60] + ("..." if more or len(line) > 60 else "")
    return (
        f'this text is outside every section: "{shown}"; put it between {tag("section")} and'
        f" {tag('endsection')}"
    )


def refuse_in_value(what: str, name: str) -> NoReturn:
    """Raise OrvError for a tag, by its name, that prints into a text that becomes a value."""
    raise OrvError(
        f"the {what} cannot be placed in a text that becomes a value, as in {tag('set')},"
        f" {tag('filter')}, or a macro whose result is passed on; print the macro by itself or put"
        f" {tag(name)} into the section"
    )


def _hint(value: object) -> str:
    if isinstance(value, LoopContext):
        return "; print one of its entries, such as loop.index"
    if callable(value):
        return "; call it with ( )"
    return "; make it a list with |list" if hasattr(value, "__iter__") else ""
