"""What one operation of a template may make: refused before it starts when it is too large.

Each operation that can make much of little has a prediction here, of characters or elements. What
many small operations make together is left to the bounds of the run (templates/sandbox/budget.py).
"""

from __future__ import annotations

import re
from collections.abc import Callable, Mapping
from typing import Any, NoReturn

from jinja2.exceptions import SecurityError

from orv import _native
from orv.errors import OrvError

# The longest text, the longest list and the largest number, in bits.
LONGEST_TEXT = _native.LONGEST_TEXT
MOST_ELEMENTS = _native.MOST_ELEMENTS
MOST_BITS = 1 << 16

# The most digits that a number is rounded to: no float has more.
_MOST_DIGITS = 400

# A conversion of the operator %, and a run of digits in the format of one value.
_CONVERSION = re.compile(r"%(?:\([^)]*\))?[-#0 +]*(\*|\d*)(?:\.(\*|\d*))?[hlL]?(.)", re.DOTALL)
_DIGITS = re.compile(r"\d+")


def refuse_text(length: int) -> NoReturn:
    """Raise OrvError for a text that would be this long."""
    raise OrvError(f"a text of {length:,} characters is too long; the most are {LONGEST_TEXT:,}")


def refuse_list(length: int) -> NoReturn:
    """Raise OrvError for a list that would be this long."""
    raise OrvError(f"a list of {length:,} values is too long; the most are {MOST_ELEMENTS:,}")


def require_text(length: int) -> None:
    """Raise OrvError unless a text may be this long."""
    if length > LONGEST_TEXT:
        refuse_text(length)


def require_list(length: int) -> None:
    """Raise OrvError unless a list may be this long."""
    if length > MOST_ELEMENTS:
        refuse_list(length)


def require_digits(precision: object) -> None:
    """Raise OrvError unless a number can be rounded to so many digits."""
    if isinstance(precision, int) and abs(precision) > _MOST_DIGITS:
        raise OrvError(f"a number is rounded to at most {_MOST_DIGITS} digits, not {precision}")


def require_replacement(text: str, old: str, new: str, count: int = -1) -> None:
    """Raise OrvError if replacing makes the text too long."""
    if count < 0:
        count = len(text) + 1
    most = min(count, len(text) // len(old) if old else len(text) + 1)
    if len(text) + most * len(new) > LONGEST_TEXT:
        found = min(count, text.count(old))
        require_text(len(text) + found * (len(new) - len(old)))


def require_format(form: str, values: object) -> None:
    """Raise OrvError if the operator % makes a text that is too long."""
    given = values if isinstance(values, tuple) else (values,)
    if isinstance(values, Mapping):
        given = tuple(values.values())
    longest = max((len(value) for value in given if isinstance(value, str)), default=0)
    numbers = [abs(value) for value in given if isinstance(value, int)]
    length = len(form)
    for width, precision, kind in _CONVERSION.findall(form):
        length += longest if kind in "sra" else 0
        for part in (width, precision):
            length += _number(part) if part != "*" else max(numbers, default=0)
    require_text(length)


def require_format_of_one(form: str) -> None:
    """Raise OrvError if the format of one value, as in {:FORMAT}, makes a text that is too long."""
    require_text(sum(map(_number, _DIGITS.findall(form))))


def _number(digits: str) -> int:
    """The number, or one that is too large for any use."""
    return int(digits or 0) if len(digits) < 20 else LONGEST_TEXT + 1


# Before the methods of texts, bytes and numbers: what they would make, from the value and the
# arguments.
_Check = Callable[..., None]


def _width(value: Any, width: Any = 0, *_: Any) -> None:
    if isinstance(width, int):
        require_text(max(len(value), width))


def _tabs(value: Any, tabsize: Any = 8) -> None:
    if isinstance(tabsize, int):
        require_text(len(value) + value.count("\t") * max(tabsize, 0))


def _replaced(value: Any, old: Any = None, new: Any = None, count: Any = -1) -> None:
    if isinstance(old, str) and isinstance(new, str) and isinstance(count, int):
        require_replacement(value, old, new, count)


def _translated(value: Any, table: Any = None) -> None:
    made = table.values() if isinstance(table, dict) else ()
    longest = max((len(text) for text in made if isinstance(text, str)), default=1)
    require_text(len(value) * max(longest, 1))


def _number_bytes(value: Any, length: Any = 1, *_: Any, **__: Any) -> None:
    if isinstance(length, int):
        require_list(length)


METHODS: dict[str, _Check] = {
    "center": _width,
    "expandtabs": _tabs,
    "ljust": _width,
    "replace": _replaced,
    "rjust": _width,
    "to_bytes": _number_bytes,
    "translate": _translated,
    "zfill": _width,
}


def require_product(left: Any, right: Any) -> None:
    """Raise SecurityError for a product that would fill the memory or never end."""
    if hasattr(left, "__len__") or hasattr(right, "__len__"):
        sequence, count = (left, right) if hasattr(left, "__len__") else (right, left)
        if isinstance(count, int) and len(sequence) * count > MOST_ELEMENTS:
            raise SecurityError(f"{count} times {len(sequence)} elements are too many")
    elif _are_ints(left, right) and left.bit_length() + right.bit_length() > MOST_BITS:
        raise SecurityError("the product is too large")


def require_power(left: Any, right: Any) -> None:
    """Raise SecurityError for a power that would never end."""
    bits = left.bit_length() * right if _are_ints(left, right) else 0
    if bits > MOST_BITS:
        raise SecurityError(f"the power {left} ** {right} is too large")


def require_quotient(left: Any, right: Any) -> None:
    """Raise SecurityError for a division that would never end."""
    if _are_ints(left, right) and max(left.bit_length(), right.bit_length()) > MOST_BITS:
        raise SecurityError(f"division takes numbers of up to {MOST_BITS:,} bits")


def _are_ints(*values: Any) -> bool:
    return all(isinstance(value, int) for value in values)
