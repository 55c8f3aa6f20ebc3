"""Filters for the bits of whole numbers. Negative numbers act as if in two's complement."""

from __future__ import annotations

import operator
from collections.abc import Callable

from orv.errors import OrvError
from orv.templates.cfilters import integer

# The most bits that a shift may make.
_MOST_BITS = 1 << 16

Filter = Callable[[object, object], int]


def filters() -> dict[str, Filter]:
    """`bitand`, `bitor`, `bitxor`, `shl` and `shr` by name."""
    return {
        "bitand": _of_integers("bitand", operator.and_),
        "bitor": _of_integers("bitor", operator.or_),
        "bitxor": _of_integers("bitxor", operator.xor),
        "shl": _of_integers("shl", _shift_left),
        "shr": _of_integers("shr", _shift_right),
    }


def _of_integers(name: str, operation: Callable[[int, int], int]) -> Filter:
    return lambda left, right: operation(integer(name, left), integer(name, right))


def _shift_left(value: int, count: int) -> int:
    if count < 0 or value.bit_length() + count > _MOST_BITS:
        raise OrvError(
            f"shl makes numbers of up to {_MOST_BITS} bits; {count} bits cannot be shifted"
        )
    return value << count


def _shift_right(value: int, count: int) -> int:
    if count < 0:
        raise OrvError(f"shr expects a count that is not negative, got {count}")
    return value >> count
