"""Where in the templates something happens: the place that every message begins with."""

from __future__ import annotations

import sys
from types import CodeType, FrameType, TracebackType
from typing import NamedTuple

from jinja2 import Template
from jinja2.runtime import Macro


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


class Mark(NamedTuple):
    """A place in a template's code, whose line is looked up when someone asks for it.

    `instruction` is the offset of the instruction that runs.
    """

    template: Template
    code: CodeType
    instruction: int

    @property
    def position(self) -> Position:
        """The line of the template."""
        lines = (line for _, end, line in self.code.co_lines() if self.instruction < end)
        return position_of(self.template, next(lines) or 0)


def here() -> Position:
    """The line of the template that is running; only to be called from within a template."""
    template, frame = _running()
    return position_of(template, frame.f_lineno)


def mark() -> Mark:
    """The place that is running; only to be called from within a template."""
    template, frame = _running()
    return Mark(template, frame.f_code, frame.f_lasti)


def _running() -> tuple[Template, FrameType]:
    """The innermost template that is running, and where its code is."""
    frame: FrameType | None = sys._getframe(2)
    while frame is not None:
        if "__jinja_template__" in frame.f_globals:
            return frame.f_globals["__jinja_template__"], frame
        frame = frame.f_back
    raise RuntimeError("no template is running")


class Step(NamedTuple):
    """A part of a template that runs, and how the one before it came to run it."""

    position: Position
    # "called", "included", "imported" or "extended"; empty for the outermost step.
    way: str
    # The macro that runs, when it is one.
    macro: Macro | None
    template: Template
    # Where the code of the step is.
    at: TracebackType


def trail(traceback: TracebackType | None, more: int = 0) -> list[Step]:
    """The steps that an exception passed through, outermost first.

    `more` is added to the line of the innermost template's code.
    """
    steps: list[Step] = []
    between: list[FrameType] = []
    while traceback is not None:
        frame = traceback.tb_frame
        template = _template_of(frame)
        if template is None:
            between.append(frame)
        elif not frame.f_code.co_name.startswith("t_"):
            position = position_of(template, traceback.tb_lineno)
            way = _way(frame.f_code.co_name, between) if steps else ""
            steps.append(Step(position, way, _macro_of(between), template, traceback))
            between = []
        traceback = traceback.tb_next
    if more and steps:
        line = steps[-1].at.tb_lineno + more
        steps[-1] = steps[-1]._replace(position=position_of(steps[-1].template, line))
    return steps


def _way(entered: str, between: list[FrameType]) -> str:
    if entered != "root":
        return "called"
    passed = {frame.f_code.co_name for frame in between}
    return "imported" if "make_module" in passed else "included" if passed else "extended"


def _macro_of(between: list[FrameType]) -> Macro | None:
    found = (frame.f_locals.get("self") for frame in reversed(between))
    return next((owner for owner in found if type(owner) is Macro), None)


def below_templates(traceback: TracebackType | None) -> TracebackType | None:
    """What of a traceback lies below the innermost line of a template; None if nothing does."""
    below = traceback
    while traceback is not None:
        if _template_of(traceback.tb_frame) is not None:
            below = traceback.tb_next
        traceback = traceback.tb_next
    return below


def _template_of(frame: FrameType) -> Template | None:
    template: Template | None = frame.f_globals.get("__jinja_template__")
    return template


def position_of(template: Template, line: int) -> Position:
    """The position that a line of a template's compiled code was made of."""
    label = template_label(template.name, template.filename)
    return Position(label, template.get_corresponding_lineno(line))
