"""Where in the templates something happens: the place that every message begins with."""

from __future__ import annotations

import sys
from types import FrameType, TracebackType
from typing import NamedTuple

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


def of_traceback(traceback: TracebackType | None, more: int = 0) -> Position | None:
    """The innermost line of a template that an exception passed through.

    `more` is added to the line of the template's code.
    """
    found: Position | None = None
    while traceback is not None:
        template = _template_of(traceback.tb_frame)
        if template is not None:
            found = _position(template, traceback.tb_lineno + more)
        traceback = traceback.tb_next
    return found


def below_templates(traceback: TracebackType | None) -> TracebackType | None:
    """What of a traceback lies below the innermost line of a template; None when that is nothing."""
    below = traceback
    while traceback is not None:
        if _template_of(traceback.tb_frame) is not None:
            below = traceback.tb_next
        traceback = traceback.tb_next
    return below


def _template_of(frame: FrameType) -> Template | None:
    template: Template | None = frame.f_globals.get("__jinja_template__")
    return template


def _position(template: Template, line: int) -> Position:
    label = template_label(template.name, template.filename)
    return Position(label, template.get_corresponding_lineno(line))
