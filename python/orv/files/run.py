"""The state of one run: the repository that is filled and what the templates said about it."""

from __future__ import annotations

from collections.abc import Callable

from orv import _native
from orv.errors import Located, Messages, OrvError, TemplateError
from orv.files.customsections import CustomSections, Placement
from orv.files.regions import KnownRegions, Regions
from orv.files.table import FileTable
from orv.positions import here


class Run:
    """One repository, filled by templates and finished once.

    The parts do the work: `files` declares and selects, `printer` takes text, `custom` knows the
    custom sections, `regions` the user regions, with what is `known` of them, `trace` where text
    comes from, in a run that is traced, and how long templates run, in one that is `timed`. `step`
    is called each time a template opens a file.
    """

    def __init__(
        self,
        messages: Messages,
        text_of: Callable[[object], str],
        refuse_outside: Callable[[str], None],
        step: Callable[[], None] | None = None,
        known: KnownRegions = KnownRegions(),
        traced: bool = False,
        places: _native.Places | None = None,
        timed: bool = False,
    ) -> None:
        self.messages = messages
        # Files that templates, scripts and extensions say the outputs depend on.
        self.dependencies: list[str] = []
        self.step = step
        self.repository = _native.Repository()
        self.trace = self.repository.start_trace() if traced else None
        if timed and self.trace is not None:
            self.trace.start_clock()
        # How long each script ran.
        self.script_seconds: dict[str, float] = {}
        # Where the values of the model were written, in a run that is traced. It keeps the model.
        self.places = places if traced and places is not None else _native.Places()
        self.files = FileTable(self.repository, messages)
        self.printer = _native.Printer(
            self.repository, text_of, refuse_outside, self.files.find, self._report_repeated
        )
        self.files.is_waiting = self.printer.is_waiting
        self.custom = CustomSections(self.repository, messages)
        self.regions = Regions(self.files, messages, known)
        self.files.has_regions = self.regions.has_regions
        self._placements: list[Placement] = []

    def ask(self, file: int, header: str) -> None:
        """Note which line of a template asks for a header, given as in lists of headers."""
        if self.trace is not None:
            quoted = header if header.startswith("<") else f'"{header}"'
            self.trace.ask(file, quoted, self.site("include"))

    def site(self, kind: str) -> int:
        """A site where the template is that runs; 0 in a run that is not traced."""
        if self.trace is None:
            return 0
        place = here()
        return self.trace.add_site(kind, place.template, place.line)

    def place(self, file: int, name: str) -> int:
        """The number by which the printer knows a custom section that is placed here."""
        self._placements.append(Placement(file, name, here()))
        return len(self._placements) - 1

    def finish(self) -> None:
        """Put every custom section where it belongs. Nothing may be added by templates after."""
        self.custom.require_declared()
        self.printer.finish(self._retrieve)
        self.custom.report_never_placed()
        for file in self.custom.filled_files():
            self.repository.place_custom_sections(file)

    def _report_repeated(self, file: int, name: str, first: str) -> None:
        """Warn about a function that the running template adds a second time."""
        self.messages.warn(
            f'the file {self.files.label(file)} has a function "{name}" already, added at {first}',
            here(),
        )

    def _retrieve(self, number: int, file: int, section: str) -> str:
        placement = self._placements[number]
        requester = f"{self.files.label(file)} {section}"
        try:
            return self.custom.retrieve(placement, requester)
        except Located:
            raise
        except OrvError as error:
            raise TemplateError(f"{placement.position}: {error}") from error
