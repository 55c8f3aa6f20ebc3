"""Errors and warnings of a run: texts for the person at the keyboard."""

from __future__ import annotations

import re
from collections.abc import Callable, Iterable

# What a message begins with when it is about a line: FILE:LINE: or FILE:LINE:COLUMN:
PLACE = re.compile(r"([^\n:]+):(\d+)(?::\d+)?: ")


class OrvError(Exception):
    """A failure that the user can do something about. Its text needs no context."""


class Misuse(OrvError):
    """A command line that does not say what to do."""


class Diagnostic(OrvError):
    """An error that the packaging library detected.

    `identifier` is the full message ID, such as "Pyx:codeGen:InvalidFileIndex"; `arguments` are the
    values that the message mentions, in its order.
    """

    def __init__(self, message: str, identifier: str, arguments: tuple[object, ...]) -> None:
        super().__init__(message)
        self.identifier = identifier
        self.arguments = arguments


class TemplateError(OrvError):
    """A template asked for something that cannot be done. The text names template and line."""


class ModelError(OrvError):
    """A model file cannot be read, or does not hold what a model holds."""


class ProjectError(OrvError):
    """A project file cannot be read, or says what no command line can say."""


class ScriptError(OrvError):
    """A script failed. The text names script and line."""


class OutputError(OrvError):
    """The files cannot be put where they belong, or could not all be written."""


class Interrupted(OutputError):
    """The user ended the command while a run was writing."""


def ignore(_: str) -> None:
    """A listener that ignores its text."""


class Messages:
    """Hands warnings to a listener or, when the run is strict, makes errors of them."""

    def __init__(
        self,
        listener: Callable[[str], None] = ignore,
        strict: bool = False,
        debug: Callable[[str], None] = ignore,
    ) -> None:
        self._listener = listener
        self.strict = strict
        # All that was warned about.
        self.warnings: list[str] = []
        # Takes what templates show to their author.
        self.debug = debug

    def warn(self, text: str, place: object | None = None) -> None:
        """Report `text`, about what is at `place` (None: the caller finds the place)."""
        if self.strict:
            raise OrvError(text) if place is None else Located(f"{place}: {text}")
        self.warnings.append(text if place is None else f"{place}: {text}")
        self._listener(self.warnings[-1])


class Located(OrvError):
    """An error whose text already says where."""


def unexpected(error: BaseException) -> str:
    """The words for an error that was not foreseen: a fault of this program, or of the machine."""
    if isinstance(error, MemoryError):
        return "the memory is exhausted"
    trace = error.__traceback__
    while trace is not None and trace.tb_next is not None:
        trace = trace.tb_next
    code = trace.tb_frame.f_code.co_filename.rpartition("/")[2] if trace is not None else "?"
    line = trace.tb_lineno if trace is not None else 0
    return f"orv failed in {code}, line {line}: {type(error).__name__}: {error}"


def did_you_mean(name: str, known: Iterable[str]) -> str:
    """ "; did you mean "x"?" for the closest known name, or nothing."""
    from difflib import get_close_matches

    lower = name.lower()
    entries = {entry.lower(): entry for entry in known}
    close = get_close_matches(lower, entries)
    if not close:
        return ""
    # Letters that changed places are the most likely mistake.
    match = entries[min(close, key=lambda entry: sorted(entry) != sorted(lower))]
    return f'; did you mean "{match}"?'


def value_words(value: object) -> str:
    """What messages call a value: its text, or its type where that would be an address."""
    if value is None or isinstance(value, (str, int, float)):
        return repr(value)
    return f"a value of type {type(value).__name__}"
