"""The delimiters of templates, and pieces of templates as messages show them."""

from __future__ import annotations

from collections.abc import Iterator, Sequence
from contextlib import contextmanager
from contextvars import ContextVar

# The beginnings and ends of tags, of printed values and of comments.
DELIMITERS = ("{%", "%}", "{{", "}}", "{#", "#}")

_current: ContextVar[Sequence[str]] = ContextVar("delimiters", default=DELIMITERS)


@contextmanager
def written_with(delimiters: Sequence[str]) -> Iterator[None]:
    """Show pieces of templates with these delimiters, six in all."""
    token = _current.set(delimiters)
    try:
        yield
    finally:
        _current.reset(token)


def tag(text: str) -> str:
    """The tag as a template of the run has it: `{% text %}`."""
    begin, end = _current.get()[:2]
    return f"{begin} {text} {end}"


def printed(text: str) -> str:
    """A printed value as a template of the run has it: `{{ text }}`."""
    begin, end = _current.get()[2:4]
    return f"{begin} {text} {end}"


def shown() -> Sequence[str]:
    """The delimiters of the run."""
    return _current.get()
