"""What can go wrong in a run, as exceptions whose text is meant for the person at the keyboard."""

from __future__ import annotations


class OrvError(Exception):
    """A failure that the user can do something about. Its text stands on its own."""


class Diagnostic(OrvError):
    """An error that the packaging library detected.

    `identifier` is the full message ID, such as "Pyx:codeGen:InvalidFileIndex"; `arguments` are the
    values that the message mentions, in its order.
    """

    def __init__(self, identifier: str, arguments: tuple[object, ...], message: str) -> None:
        super().__init__(message)
        self.identifier = identifier
        self.arguments = arguments


class TemplateError(OrvError):
    """A template asked for something that cannot be done. The text names template and line."""


class ModelError(OrvError):
    """A model file cannot be read, or does not hold what a model holds."""


class ScriptError(OrvError):
    """A script failed. The text names script and line."""


class OutputError(OrvError):
    """The files cannot be put where they belong, or could not all be written."""
