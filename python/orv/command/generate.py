"""The command `orv`."""

from __future__ import annotations

import time
from collections.abc import Callable, Iterator, Mapping, Sequence
from contextlib import ExitStack, contextmanager
from typing import TYPE_CHECKING, Any

from orv import _native, inputs
from orv.command.batch import do_runs
from orv.command.console import debug, say, warn
from orv.command.options import GenerateOptions
from orv.command.outputs import Outcome, Outputs
from orv.command.progress import progress
from orv.command.runs import requested_runs, require_consistent
from orv.dependencies import recorded
from orv.delimiters import DELIMITERS
from orv.errors import Messages
from orv.extensions import load_extensions
from orv.files.regions import KnownRegions, Texts, TextsOf, unsettled
from orv.files.run import Run
from orv.models.model import build_model, refuse_unknown
from orv.output.folder import open_folder, texts_on_disk
from orv.templates.sandbox.budget import Budget
from orv.templates.engine import mentioned_names, render, source_beside
from orv.templates.library import Language

if TYPE_CHECKING:
    from orv.output.snapshot import Composed

# How often a run is rendered at most until what templates were told of user regions is true.
MOST_RENDERINGS = 4


def run(given: dict[str, Any]) -> int:
    """The command `orv generate`, with the options that were given."""
    with inputs.observed():
        runs = requested_runs(given)
        require_consistent(runs)
        return do_runs(runs, generate)


def generate(options: GenerateOptions) -> Outcome:
    """Render, run the scripts, and write or compare.

    What templates ask of user regions may depend on all that is rendered. So it is rendered again
    when they were told something else than what comes out.
    """
    rendering = Rendering(options)
    texts_of = on_disk(options)
    for _ in range(MOST_RENDERINGS):
        run, sources = rendering.run(texts_of)
        if not run.regions.questions:
            rendering.release()
        ended = conclude(run, sources, options)
        if isinstance(ended, Outcome):
            return ended
        inputs.current().is_incomplete = True
        known = ended
        texts_of = known_texts(known)
    raise unsettled(run.regions.questions, known)


def conclude(
    run: Run, sources: Sequence[str], options: GenerateOptions, composed: Composed | None = None
) -> Outcome | dict[str, dict[str, bytes]]:
    """Write or compare what was rendered; see Outputs.

    When templates, or the trace, know other texts of user regions than those that come out, nothing
    is written. Then this gives the texts that come out, by the labels of the files.
    """
    # The folder stays locked as long as the object lives.
    outputs = Outputs(run, sources, options, composed)
    assumed = None if composed is None else composed.texts
    is_asked = bool(run.regions.questions) or assumed is not None
    known = outputs.region_texts() if is_asked else {}
    if run.regions.is_settled(known) and assumed in (None, known):
        return outputs.finish()
    return known


def render_run(options: GenerateOptions) -> tuple[Run, list[str]]:
    """Render and run the scripts. Returns the run and the paths of what it has read."""
    return Rendering(options).run(on_disk(options))


class Rendering:
    """What a run renders. It is read once and can be rendered again."""

    def __init__(self, options: GenerateOptions) -> None:
        self._options = options
        self._said: list[str] = []
        if options.label:
            say(f"run {options.label}", options)
        with _dependencies(options) as self._dependencies:
            extensions = load_extensions(options.extend)
            self._messages = messages_of(options, self._said)
            self._model = build_model(
                options.model, options.set, self._messages.warn, options.schema
            )
            self._values = extensions.prepare(self._model.values)
        self._read: list[str] = []
        self._templates = [
            source_beside(path, options.templates, self._read, options.follow_links)
            for path in options.template
        ]
        self._language = Language(extensions, options.delimiters or DELIMITERS)
        self._budget = Budget(options.max_text, options.max_memory, options.timeout)

    def run(self, texts_of: TextsOf) -> tuple[Run, list[str]]:
        """Render and run the scripts. Returns the run and the paths of what it has read.

        `texts_of` gives what is known of user regions. Nobody is told again what was said before.
        """
        options = self._options
        with _dependencies(options) as dependencies:
            run = self._render(messages_of(options, self._said), texts_of, dependencies)
        run.messages.warnings[:0] = self._messages.warnings
        run.dependencies = [*self._dependencies, *dependencies]
        sources = [*self._read, *self._model.files, *self._model.folders, *options.script]
        if options.project is not None:
            sources.append(options.project)
        return run, sources

    def release(self) -> None:
        """Free the model of a run that is not rendered again; the files take as much memory."""
        self._values = {}
        self._model = self._model._replace(values={}, written={}, places=_native.Places())
        _native.return_freed_memory()

    def _render(self, messages: Messages, texts_of: TextsOf, dependencies: list[str]) -> Run:
        options = self._options
        known = KnownRegions(options.markers, texts_of)
        with progress("rendering", None, options.quiet) as step:
            run = render(
                self._templates, self._values, messages, step, self._language, self._model.places,
                self._budget, known, options.is_traced, options.report is not None,
            )  # fmt: skip
        for script in options.script:
            from orv.scripts import run_script

            say(f"running {script}", options)
            started = time.perf_counter()
            run_script(script, run, self._values)
            run.script_seconds[script] = time.perf_counter() - started
        if options.strict:
            python = [*options.script, *self._dependencies, *dependencies]
            python = [path for path in python if path.endswith(".py")]
            refuse_unknown(
                options.set,
                self._model,
                lambda: mentioned_names(self._read, python, self._language),
            )
        for path in [*self._model.files, *self._read]:
            say(f"read {path}", options)
        return run


@contextmanager
def _dependencies(options: GenerateOptions) -> Iterator[list[str]]:
    """What extensions, templates and scripts say that the run depends on."""
    with recorded() as dependencies, ExitStack() as imports:
        if options.extend or options.script:
            from orv.pythonfiles import imports_recorded

            imports.enter_context(imports_recorded())
        yield dependencies


def messages_of(options: GenerateOptions, said: list[str]) -> Messages:
    before = set(said)

    def new(tell: Callable[[str], None]) -> Callable[[str], None]:
        def listen(text: str) -> None:
            said.append(text)
            if text not in before:
                tell(text)

        return listen

    return Messages(new(lambda text: warn(text, options)), options.strict, new(debug))


def on_disk(options: GenerateOptions) -> TextsOf:
    """The texts of user regions that the output folder has."""
    folder: list[_native.OutputFolder] = []

    def texts(label: str, path: str, markers: _native.Markers) -> Texts:
        if not folder:
            folder.append(open_folder(options.out))
        return texts_on_disk(folder[0], path, markers)

    return texts


def known_texts(known: Mapping[str, Texts]) -> TextsOf:
    """The texts of user regions by the labels of their files."""
    return lambda label, path, markers: known.get(label, {})
