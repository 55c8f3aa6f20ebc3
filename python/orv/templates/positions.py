"""Where in the templates something happens: the place that every message begins with."""

from __future__ import annotations

import inspect
import sys
from collections.abc import Iterator
from types import FrameType, TracebackType
from typing import Any, NamedTuple

from jinja2 import Template


class Position(NamedTuple):
    """A line of a template, counted from 1. As text, "name:line"."""

    template: str
    line: int

    def __str__(self) -> str:
        return f"{self.template}:{self.line}"


def template_label(name: str | None, filename: str | None) -> str:
    """What a template is called in messages: its file as it was found, else its name."""
    if filename is not None and not filename.startswith("<"):
        return filename
    return name or "<template>"


def here() -> Position:
    """The line of the template that is running; only to be called from within a template."""
    frame: FrameType | None = sys._getframe(1)
    while frame is not None:
        template = _template_of(frame)
        if template is not None:
            return _position(template, frame.f_lineno)
        frame = frame.f_back
    raise RuntimeError("no template is running")


def of_traceback(traceback: TracebackType | None) -> Position | None:
    """The innermost line of a template that an exception passed through."""
    found: Position | None = None
    while traceback is not None:
        template = _template_of(traceback.tb_frame)
        if template is not None:
            found = _position(template, traceback.tb_lineno)
        traceback = traceback.tb_next
    return found


def of_generator(generator: Iterator[str]) -> Position | None:
    """The line at which the suspended output of a template, or of a block in it, stands."""
    inner: Any = generator
    while inspect.isgenerator(inner.gi_yieldfrom):
        inner = inner.gi_yieldfrom
    frame: FrameType | None = inner.gi_frame
    template = _template_of(frame) if frame is not None else None
    return _position(template, frame.f_lineno) if frame is not None and template else None


def _template_of(frame: FrameType) -> Template | None:
    template: Template | None = frame.f_globals.get("__jinja_template__")
    return template


def _position(template: Template, line: int) -> Position:
    label = template_label(template.name, template.filename)
    return Position(label, template.get_corresponding_lineno(line))
