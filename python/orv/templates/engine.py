"""Rendering templates into the files of a run."""

from __future__ import annotations

import os
from collections.abc import Callable, Iterable, Iterator, Mapping, Sequence
from contextlib import contextmanager
from typing import Any, NamedTuple

from jinja2 import BaseLoader, TemplateNotFound, TemplateSyntaxError
from jinja2.loaders import split_template_path

from orv import inputs
from orv._native import Places
from orv.delimiters import written_with
from orv.errors import PLACE, Located, Messages, OrvError, TemplateError
from orv.files.regions import KnownRegions
from orv.files.run import Run
from orv.templates.sandbox.budget import Budget
from orv.templates.environment import Environment
from orv.templates.library import Language
from orv.templates.printable import refuse_outside, text_of


class RecordingLoader(BaseLoader):
    """Loads templates from folders and adds the files that it has read to `files`.

    A template that a link takes from outside the folders is refused, unless `follow_links` or it is
    `main`, which the user has named.
    """

    def __init__(
        self, folders: Sequence[str], files: list[str], main: str, follow_links: bool
    ) -> None:
        self.folders = list(folders)
        self._files = files
        self._main = main
        self._follows_links = follow_links

    def get_source(self, environment: Any, template: str) -> Any:
        """The source of the template; see jinja2.BaseLoader."""
        filename = self._find(inputs.plain(template))
        try:
            # A byte order mark is not part of the template's text.
            source = inputs.load(filename).decode("utf-8-sig")
        except UnicodeDecodeError as error:
            raise TemplateError(_not_utf8(filename, error)) from error
        if template != self._main and not self._follows_links:
            self._require_inside(template, os.path.realpath(filename))
        if filename not in self._files:
            self._files.append(filename)
        return source, filename, lambda: True

    def _find(self, template: str) -> str:
        """The path of the template, in the first folder that has one."""
        pieces = split_template_path(template)
        for folder in self.folders:
            path = os.path.join(folder, *pieces)
            if os.path.isfile(path):
                return os.path.normpath(path)
            inputs.current().absent.add(path)
        raise TemplateNotFound(template)

    def _require_inside(self, template: str, path: str) -> None:
        for folder in [os.path.realpath(folder) for folder in self.folders]:
            if os.path.commonpath([folder, path]) == folder:
                return
        raise OrvError(
            f'a link takes the template "{template}" from {path}, outside the folders of templates;'
            " --follow-links allows it"
        )


def _not_utf8(path: str, error: UnicodeDecodeError) -> str:
    line = error.object.count(b"\n", 0, error.start) + 1
    return (
        f"{path}:{line}: the template is not UTF-8, at the byte"
        f" 0x{error.object[error.start]:02x}; save it as UTF-8"
    )


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
    places: Places | None = None,
    budget: Budget = Budget(),
    known: KnownRegions = KnownRegions(),
    traced: bool = False,
    timed: bool = False,
) -> Run:
    """Render the templates, one after the other, with the variables of `model`; finish the run.

    `step` is called each time a template opens a file; `places` knows where the model's values were
    written; `budget` bounds what the templates use, `known` is what is known of user regions. A run
    that is `traced` knows where its text comes from, and if it is `timed` how long each template
    ran. Raises TemplateError, whose text begins with the line at fault.
    """
    run = Run(messages, text_of, refuse_outside, step, known, traced, places, timed)
    if budget.text:
        run.printer.bound(budget.text)
    with written_with(language.delimiters):
        for source in sources:
            with _template_errors(source.loader, run, places), budget.watched():
                _render(source, sources, run, model, language)
        with _template_errors(sources[-1].loader, run, places), budget.watched():
            run.finish()
    return run


def _render(
    source: Source,
    sources: Sequence[Source],
    run: Run,
    model: Mapping[str, object],
    language: Language,
) -> None:
    try:
        Environment(run, source.loader, language).render(source.template, model)
    except TemplateSyntaxError as error:
        raise TemplateError("\n".join(_syntax_errors(error, sources, language))) from error


def lint(sources: Sequence[Source], language: Language = Language()) -> list[str]:
    """What is wrong with the templates, as far as can be known without a model, by place."""
    from orv.templates.mistakes.lint import Linter

    run = Run(Messages(), text_of, refuse_outside)
    found: dict[str, None] = {}
    with written_with(language.delimiters):
        for source in sources:
            linter = Linter(Environment(run, source.loader, language))
            linter.read(source.template)
            linter.check()
            found.update(dict.fromkeys(linter.messages))
    return sorted(found, key=_file_and_line)


def mentioned_names(
    templates: Iterable[str], modules: Iterable[str], language: Language
) -> set[str]:
    """What templates and Python files, given by their paths, may read of a model."""
    from orv.templates.mistakes.mentions import names_in_python, names_in_template

    run = Run(Messages(), text_of, refuse_outside)
    environment = Environment(run, BaseLoader(), language)
    found: set[str] = set()
    for path in templates:
        found.update(names_in_template(environment, path))
    for path in modules:
        found.update(names_in_python(path))
    return found


def _file_and_line(message: str) -> tuple[str, int]:
    place = PLACE.match(message)
    return (place[1], int(place[2])) if place else ("", 0)


def _syntax_errors(
    error: TemplateSyntaxError, sources: Sequence[Source], language: Language
) -> list[str]:
    """The mistakes of the template that cannot be compiled, and of all others that are named."""
    from orv.templates.mistakes.diagnosis import syntax_messages
    from orv.templates.mistakes.lint import Linter

    found = dict.fromkeys(syntax_messages(error))
    run = Run(Messages(), text_of, refuse_outside)
    for source in sources:
        linter = Linter(Environment(run, source.loader, language))
        linter.read(source.template)
        found.update(dict.fromkeys(linter.messages))
    return list(found)


@contextmanager
def _template_errors(loader: BaseLoader, run: Run, places: Places | None) -> Iterator[None]:
    try:
        yield
    except (Located, TemplateError):
        raise
    except Exception as error:
        from orv.templates.mistakes.diagnosis import template_error

        argument = run.printer.failed_argument
        raise template_error(error, loader, places, argument) from error


def source_beside(
    template: str, more: Sequence[str], files: list[str], follow_links: bool = False
) -> Source:
    """The template of this path; others are looked for in its folder, then in `more`.

    The files that are read are added to `files`. Links that lead out of the folders are refused
    unless `follow_links`.
    """
    folder, name = os.path.split(template)
    return Source(name, RecordingLoader([folder or ".", *more], files, name, follow_links))
