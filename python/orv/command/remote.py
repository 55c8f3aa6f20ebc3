"""Runs that the workers of a scheduler render. They are formatted and written by this process.

A run travels as its options, with the files that it reads. It comes back as its composed files,
with what was said and with what it looked for and did not find: what of this is here is sent with
the run once more.
"""

from __future__ import annotations

import glob
import os
import pickle
from collections.abc import Callable, Mapping, Sequence
from copy import copy
from typing import NamedTuple

from orv import inputs
from orv.command.batch import Attempt, attempt
from orv.command.console import failure_of, warn

from orv.command.generate import (
    MOST_RENDERINGS, Rendering, conclude, known_texts, messages_of, on_disk,
)  # fmt: skip
from orv.command.options import GenerateOptions
from orv.command.outputs import Outcome, layout_of
from orv.delimiters import DELIMITERS
from orv.errors import OrvError
from orv.files.regions import Texts, unsettled
from orv.models.sources import folders_of, provide_input, standard_input
from orv.output.folder import open_folder
from orv.output.plan import compose, plan
from orv.output.snapshot import Snapshot, restored, snapshot
from orv.output.state import StateFile
from orv.output.tracefile import encoded, trace_document
from orv.runs.cluster import Cluster
from orv.runs.done import Done, Printed
from orv.runs.order import Touched, waits
from orv.runs.parcel import Mirror, Parcel, parcel_of
from orv.runs.service import Task
from orv.templates.engine import lint, source_beside
from orv.templates.library import Language


class Request(NamedTuple):
    """What a worker needs besides files: `known` are texts of user regions, by the labels of files,
    `markers` those of the files on the disk, `given` what is on standard input."""

    options: GenerateOptions
    known: Mapping[str, Texts] | None
    markers: Mapping[str, str]
    given: bytes


class Response(NamedTuple):
    """What a worker gives back: the run and the paths that it read, or its failure.

    `absent` are the paths at which it found nothing.
    """

    run: Snapshot | None
    sources: list[str]
    failure: str
    absent: set[str]


def respond(request: Request, mirror: Mirror) -> Response:
    """Render a run on a worker."""
    provide_input(request.given)
    run: Snapshot | None = None
    sources: list[str] = []
    failure = ""
    with inputs.observed() as found:
        try:
            run, sources = _rendered(request, mirror)
        except Exception as error:
            failure = mirror.originals(failure_of(error).encode()).decode()
    paths = {mirror.original(path) for path in found.absent}
    return Response(run, [mirror.original(path) for path in sources], failure, paths)


def _rendered(request: Request, mirror: Mirror) -> tuple[Snapshot, list[str]]:
    options = _placed(request.options, mirror)
    known = request.known
    run, sources = Rendering(options).run(on_disk(options) if known is None else known_texts(known))
    folder, layout = open_folder(options.out), layout_of(options)
    files = compose(run, folder, layout)
    taken = snapshot(run, files, options.manifest is not None, mirror.original)
    if options.trace is not None:
        planned = plan(run, folder, layout, request.markers, files)
        trace = trace_document(run, planned, request.options.out)
        taken.trace = mirror.originals(encoded(trace))
        taken.texts = {run.files.label(file.index): file.region_texts() for file in planned}
    return taken, sources


def _placed(options: GenerateOptions, mirror: Mirror) -> GenerateOptions:
    """The options with the paths that the files have on a worker."""
    placed = copy(options)
    for name in ("template", "templates", "script", "extend", "schema"):
        setattr(placed, name, [mirror.path(path) for path in getattr(options, name)])
    placed.model = [
        model if model.is_input else model._replace(path=mirror.path(model.path))
        for model in options.model
    ]
    placed.out = mirror.path(options.out)
    return placed


class _Run:
    """A run of the command line, while it is rendered."""

    def __init__(self, options: GenerateOptions) -> None:
        self.options = options
        self.known: Mapping[str, Texts] | None = None
        # Files that the run needs besides those that are sent at first.
        self.more: set[str] = set()
        self.renderings = 0
        # The messages of this process, and the lines of those of the workers.
        self.said: list[str] = []
        self.printed: list[bytes] = []


class RemoteRuns:
    """Runs that are rendered elsewhere, and written here in their order."""

    def __init__(
        self, runs: Sequence[GenerateOptions], report: Callable[[int, Done[Attempt]], None]
    ) -> None:
        self._runs = [_Run(options) for options in runs]
        self._report = report
        self._after = waits(Touched(run.inputs, run.written) for run in runs)
        self._begun = 0
        self._reported = 0
        self._arrived: dict[int, Done[Response]] = {}
        # The files that the runs of a pattern have in common.
        self._common: dict[int, bytes] = {}

    def do(self, scheduler: str) -> None:
        """Do all runs. Raises OrvError when the scheduler cannot be used."""
        # What workers look at is not recorded: the command runs the next time, too.
        inputs.current().is_incomplete = True
        cluster = Cluster(scheduler)
        try:
            while self._reported < len(self._runs):
                self._begin(cluster)
                for number, done in cluster.receive():
                    if self._needs_more(number, done):
                        self._send([number], cluster)
                    else:
                        self._arrived[number] = done
                while self._reported in self._arrived:
                    self._end(self._reported, self._arrived.pop(self._reported), cluster)
            for number in cluster.begun_again():
                options = self._runs[number].options
                warn(f'the run "{options.label}" began more than once on the workers', options)
        finally:
            cluster.close()

    def _begin(self, cluster: Cluster) -> None:
        while room := cluster.room(len(self._runs) - self._begun):
            numbers = self._next(room)
            if not numbers:
                return
            self._begun += len(numbers)
            self._send(numbers, cluster)

    def _next(self, count: int) -> list[int]:
        """The runs to begin now, at most `count`, which have files in common."""
        numbers: list[int] = []
        while len(numbers) < count and self._begun + len(numbers) < len(self._runs):
            number = self._begun + len(numbers)
            whole = self._runs[number].options.whole
            is_alone = whole is None or whole is not self._runs[self._begun].options.whole
            if self._after[number] > self._reported or (numbers and is_alone):
                break
            numbers.append(number)
        return numbers

    def _send(self, numbers: Sequence[int], cluster: Cluster) -> None:
        common = self._parcel(self._runs[numbers[0]].options)
        cluster.send(numbers, common, [self._task(self._runs[number]) for number in numbers])

    def _task(self, run: _Run) -> bytes:
        options = copy(run.options)
        markers = _markers_on_disk(options)
        own = [*run.more, *(os.path.join(options.out, location) for location in markers)]
        if options.model_file is not None:
            own.append(options.model_file.path)
        options.format = options.whole = None
        given = standard_input() if any(model.is_input for model in options.model) else b""
        request = Request(options, run.known, markers, given)
        return pickle.dumps(Task(f"{__name__}:respond", request, os.getcwd(), parcel_of(own)))

    def _parcel(self, options: GenerateOptions) -> bytes:
        if options.whole is None:
            return _common_parcel(options).packed
        key = id(options.whole)
        if key not in self._common:
            self._common[key] = _common_parcel(options.whole).packed
        return self._common[key]

    def _needs_more(self, number: int, done: Done[Response]) -> bool:
        """Whether a run looked for files that are here and were not sent."""
        run = self._runs[number]
        absent = done.result.absent if done.result is not None else set()
        found = {path for path in absent if os.path.isfile(path)} - run.more
        run.more |= found
        return bool(found)

    def _end(self, number: int, done: Done[Response], cluster: Cluster) -> None:
        """Write and report a run, or have it rendered again for the texts of user regions."""
        run, response = self._runs[number], done.result
        if response is None:
            self._finish(number, Done(None, done.error, done.printed))
        elif response.run is None:
            self._finish(number, Done(Attempt(None, response.failure), None, done.printed))
        else:
            self._show(run, done.printed)
            data, sources = response.run, response.sources
            ended = attempt(lambda: self._conclude(run, data, sources))
            if ended.outcome is not None or ended.failure:
                self._finish(number, Done(ended))
            else:
                run.more |= {os.path.join(run.options.out, file.path) for file in data.files}
                self._send([number], cluster)

    def _finish(self, number: int, done: Done[Attempt]) -> None:
        self._reported += 1
        self._report(number, done)

    def _conclude(self, run: _Run, data: Snapshot, sources: Sequence[str]) -> Outcome | None:
        """Write a run. None when it has to be rendered again, with the texts that are known now."""
        rendered, composed = restored(data, messages_of(run.options, run.said))
        ended = conclude(rendered, sources, run.options, composed)
        if isinstance(ended, Outcome):
            return ended
        run.renderings += 1
        if run.renderings == MOST_RENDERINGS:
            raise unsettled(data.questions, ended)
        run.known = ended
        return None

    def _show(self, run: _Run, printed: Printed) -> None:
        """Print what a worker has printed, but for the messages of an earlier rendering."""
        lines = printed.error.splitlines(keepends=True)
        new = [line for line in lines if line not in run.printed]
        run.printed += new
        printed._replace(error=b"".join(new)).show()


def _markers_on_disk(options: GenerateOptions) -> dict[str, str]:
    """The markers of the files in the output folder that have user regions, by location."""
    if options.no_state:
        return {}
    try:
        folder = open_folder(options.out)
        return StateFile(folder, options.state, False).load(folder).markers()
    except OrvError:
        # It will be an error where the file is needed.
        return {}


def _common_parcel(options: GenerateOptions) -> Parcel:
    """The files that options name, with what belongs to them, but for the file of a pattern."""
    python = [*options.script, *options.extend]
    paths = [*_templates(options), *python, *options.schema]
    folders = [os.getcwd(), *options.templates]
    for folder in {os.path.dirname(path) for path in python}:
        paths += _modules_in(folder)
    for model in options.model:
        if model.is_input or model is options.model_file:
            continue
        paths.append(model.path)
        if glob.has_magic(model.path):
            paths += glob.glob(model.path, recursive=True)
            folders += folders_of(model.path)
    return parcel_of(paths, folders)


def _templates(options: GenerateOptions) -> list[str]:
    """The templates, and those that they name."""
    found: list[str] = list(options.template)
    language = Language(delimiters=options.delimiters or DELIMITERS)
    sources = [
        source_beside(path, options.templates, found, options.follow_links)
        for path in options.template
    ]
    lint(sources, language)
    return found


def _modules_in(folder: str) -> list[str]:
    """The Python modules and packages of a folder."""
    packages = glob.glob(os.path.join(folder, "*", "__init__.py"))
    inside = [os.path.join(os.path.dirname(path), "**", "*.py") for path in packages]
    patterns = [os.path.join(folder, "*.py"), *inside]
    return [path for pattern in patterns for path in glob.glob(pattern, recursive=True)]
