"""Which attributes of values templates may read: none that changes a value or leads out of it.

Types that are built in have a list of what is allowed. Of all other values, such as those that
extensions make, everything is allowed that has no leading underscore and is no method that changes
a container.
"""

from __future__ import annotations

from array import array
from collections import deque
from collections.abc import Mapping, Sequence, Set
from datetime import date, datetime, time, timedelta, tzinfo
from functools import lru_cache, partial

from types import (
    AsyncGeneratorType, CodeType, CoroutineType, FrameType, FunctionType, GeneratorType,
    GenericAlias, TracebackType,
)  # fmt: skip
from typing import Any

_TEXT = frozenset(
    """capitalize casefold center count encode endswith expandtabs find format format_map index
    isalnum isalpha isascii isdecimal isdigit isidentifier islower isnumeric isprintable isspace
    istitle isupper join ljust lower lstrip maketrans partition removeprefix removesuffix replace
    rfind rindex rjust rpartition rsplit rstrip split splitlines startswith strip swapcase title
    translate upper zfill""".split()
)
_BYTES = frozenset("count decode endswith find hex index rfind split startswith strip".split())
_NUMBER = frozenset(
    """as_integer_ratio bit_count bit_length conjugate denominator hex imag is_integer numerator
    real to_bytes""".split()
)
_DATE = frozenset(
    """ctime date day days dst fold hour isocalendar isoformat isoweekday max microsecond
    microseconds min minute month replace resolution second seconds strftime time timetuple timetz
    toordinal total_seconds tzinfo tzname utcoffset utctimetuple weekday year""".split()
)
_SEQUENCE = frozenset(["copy", "count", "index", "start", "step", "stop"])
_MAPPING = frozenset(["copy", "get", "items", "keys", "values"])
_SET = frozenset(
    """copy difference intersection isdisjoint issubset issuperset symmetric_difference
    union""".split()
)

# By built-in type, also for what derives from it.
_ALLOWED: dict[type, frozenset[str]] = {
    str: _TEXT,
    int: _NUMBER,
    float: _NUMBER,
    complex: _NUMBER,
    bytes: _BYTES,
    bytearray: _BYTES,
    memoryview: frozenset(),
    list: _SEQUENCE,
    tuple: _SEQUENCE,
    range: _SEQUENCE,
    deque: _SEQUENCE,
    array: _SEQUENCE,
    dict: _MAPPING,
    set: _SET,
    frozenset: _SET,
    date: _DATE,
    datetime: _DATE,
    time: _DATE,
    timedelta: _DATE,
    tzinfo: _DATE,
    FunctionType: frozenset(),
    partial: frozenset(),
    GeneratorType: frozenset(),
    CoroutineType: frozenset(),
    AsyncGeneratorType: frozenset(),
    CodeType: frozenset(),
    FrameType: frozenset(),
    TracebackType: frozenset(),
}  # fmt: skip

# Methods that change a container, whoever wrote its class.
_CHANGING = frozenset(
    """add append appendleft byteswap clear difference_update discard extend extendleft frombytes
    fromfile fromlist fromunicode insert intersection_update move_to_end pop popitem popleft remove
    reverse rotate setdefault sort subtract symmetric_difference_update update""".split()
)
_CONTAINERS = (Mapping, Sequence, Set)


def is_allowed(value: object, attribute: str) -> bool:
    """Whether templates may read the attribute, which the value has."""
    kind: Any = type(value)
    return not attribute.startswith("_") and _is_allowed(kind, attribute)


@lru_cache(maxsize=4096)
def _is_allowed(kind: type[Any], attribute: str) -> bool:
    if issubclass(kind, (type, GenericAlias)):
        # Methods of types change values without being bound to them: dict.update(VALUE, ...).
        return False
    for base in kind.__mro__:
        allowed = _ALLOWED.get(base)
        if allowed is not None and hasattr(base, attribute):
            return attribute in allowed
    return attribute not in _CHANGING or not issubclass(kind, _CONTAINERS)
