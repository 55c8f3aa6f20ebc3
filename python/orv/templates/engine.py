"""Rendering templates into the files of a run."""

from __future__ import annotations

import os
from collections.abc import Callable, Iterator, Mapping, Sequence
from contextlib import contextmanager
from typing import Any, NamedTuple

from jinja2 import BaseLoader, FileSystemLoader, TemplateNotFound, TemplateSyntaxError
from jinja2.exceptions import TemplatesNotFound

from orv import positions
from orv.errors import Located, Messages, OrvError, TemplateError
from orv.files.run import Run
from orv.templates.environment import Environment
from orv.templates.library import Language
from orv.templates.printable import refuse_outside, text_of


class RecordingLoader(BaseLoader):
    """Loads templates from folders and adds the files that it has read to `files`."""

    def __init__(self, folders: Sequence[str], files: list[str]) -> None:
        # A byte order mark is none of the template's text.
        self._loader = FileSystemLoader(folders, encoding="utf-8-sig")
        self.folders = list(folders)
        self._files = files

    def get_source(self, environment: Any, template: str) -> Any:
        """The source of the template; see jinja2.BaseLoader."""
        try:
            source, filename, up_to_date = self._loader.get_source(environment, template)
        except UnicodeDecodeError as error:
            raise TemplateError(f"{template}: the template is not UTF-8: {error}") from error
        if filename not in self._files:
            self._files.append(filename)
        return source, filename, up_to_date


class Source(NamedTuple):
    """A template by its name, and the loader for it and for those that it names."""

    template: str
    loader: BaseLoader


def render(
    sources: Sequence[Source],
    model: Mapping[str, object],
    messages: Messages,
    step: Callable[[], None] | None = None,
    language: Language = Language(),
) -> Run:
    """Render the templates, one after the other, with the variables of `model`; finish the run.

    `step` is called each time a template opens a file. Raises TemplateError, whose text begins with
    the line that is to blame.
    """
    run = Run(messages, text_of, refuse_outside, step)
    for source in sources:
        with _template_errors(source.loader, run):
            Environment(run, source.loader, language).render(source.template, model)
    with _template_errors(sources[-1].loader, run):
        run.finish()
    return run


@contextmanager
def _template_errors(loader: BaseLoader, run: Run) -> Iterator[None]:
    try:
        yield
    except (Located, TemplateError):
        raise
    except Exception as error:
        raise _template_error(error, loader, run) from error


def _template_error(error: Exception, loader: BaseLoader, run: Run) -> TemplateError:
    position = _position(error, run)
    text = _failed_extension(error)
    if text is not None:
        return TemplateError(f"{text}; called from {position}")
    text = _describe(error, loader)
    return TemplateError(text if position is None else f"{position}: {text}")


def _position(error: Exception, run: Run) -> positions.Position | None:
    if isinstance(error, TemplateSyntaxError):
        return positions.Position(
            positions.template_label(error.name, error.filename), error.lineno
        )
    # The line of the argument that could not be printed; see orv.templates.compiler.
    return positions.of_traceback(error.__traceback__, max(run.printer.failed_argument, 0))


def _failed_extension(error: Exception) -> str | None:
    """What is said of an error that an extension did not mean for the user."""
    below = positions.below_templates(error.__traceback__)
    if isinstance(error, (OrvError, TemplateSyntaxError)) or below is None:
        return None
    from orv.pythonfiles import place, words

    where = place(below)
    return None if where is None else f"{where}: {words(error)}"


def _describe(error: Exception, loader: BaseLoader) -> str:
    if isinstance(error, TemplateNotFound):
        names = error.templates if isinstance(error, TemplatesNotFound) else [error.name]
        shown = " or ".join(f'"{name}"' for name in names)
        folders = ", ".join(f'"{folder}"' for folder in getattr(loader, "folders", []))
        return f"there is no template {shown}" + (f" in {folders}" if folders else "")
    if isinstance(error, RecursionError):
        return "macros or templates call each other without end"
    if isinstance(error, SyntaxError):
        return (
            f"the template {error.filename} nests its tags too deeply ({error.msg}); put the inner"
            " ones into a macro or a template of their own"
        )
    if isinstance(error, MemoryError):
        return "the memory is exhausted"
    if isinstance(error, TemplateSyntaxError):
        return str(error.message)
    if isinstance(error, (OrvError, ValueError)):
        return str(error)
    if type(error).__module__.startswith("jinja2."):
        return str(error.args[0] if error.args else error)
    return f"{type(error).__name__}: {error}"


def source_beside(template: str, more: Sequence[str], files: list[str]) -> Source:
    """The template of this path; others are looked for in its folder, then in `more`.

    The files that are read are added to `files`.
    """
    folder, name = os.path.split(template)
    return Source(name, RecordingLoader([folder or ".", *more], files))
