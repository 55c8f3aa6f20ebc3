"""What a template may print: values whose text is the same in every run."""

from __future__ import annotations

from datetime import date, time, timedelta

from jinja2 import Undefined

from orv.errors import OrvError
from orv.files.view import FileView
from orv.models.xmlmodel import Element

_PLAIN = frozenset([str, int, float, bool, type(None)])
_OF_ONE_TEXT = (str, int, float, complex, date, time, timedelta, Undefined)


def printable(value: object) -> object:
    """The value itself. Raises OrvError for one whose text tells only where it lies in memory."""
    if type(value) in _PLAIN or isinstance(value, (FileView, Element)):
        return value
    _require_one_text(value)
    return value


def _require_one_text(value: object) -> None:
    if value is None or isinstance(value, _OF_ONE_TEXT):
        return
    if isinstance(value, dict):
        for key, entry in value.items():
            _require_one_text(key)
            _require_one_text(entry)
    elif isinstance(value, (list, tuple)):
        for entry in value:
            _require_one_text(entry)
    else:
        raise OrvError(f"a value of type {type(value).__name__} has no text to print{_hint(value)}")


def _hint(value: object) -> str:
    if callable(value):
        return "; call it with ( )"
    return "; make it a list with |list" if hasattr(value, "__iter__") else ""
