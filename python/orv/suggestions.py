"""Hints for names that are nearly right."""

from __future__ import annotations

from collections.abc import Iterable


def did_you_mean(name: str, known: Iterable[str]) -> str:
    """"; did you mean "x"?" for the closest known name, or nothing."""
    from difflib import get_close_matches

    close = get_close_matches(name.lower(), {entry.lower(): entry for entry in known}, n=1)
    if not close:
        return ""
    match = next(entry for entry in known if entry.lower() == close[0])
    return f'; did you mean "{match}"?'
