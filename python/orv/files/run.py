"""The state of one run: the repository that is filled and what the templates said about it."""

from __future__ import annotations

from orv import _native
from orv.files.customsections import CustomSections
from orv.errors import Diagnostic, Located, Messages, OrvError, TemplateError
from orv.files.table import FileTable
from orv.files.placement import Placement, Placements, WaitingText


class Run:
    """One repository, filled by templates and finished once.

    The parts do the work: `files` declares and selects, `sink` takes text, `custom` knows the
    custom sections, `placements` what waits for them.
    """

    def __init__(self, messages: Messages) -> None:
        self.messages = messages
        self.repository = _native.Repository()
        self.placements = Placements()
        self.sink = _native.TextSink(self.repository, self.placements.wait)
        self.files = FileTable(self.repository, messages)
        self.custom = CustomSections(self.repository, messages)

    def section_text(self, file: int, section: str) -> str:
        """The section's text as it stands; an error while part of it waits for a custom section."""
        self._require_text(file, section)
        return self.repository.section_text(file, section)

    def function_names(self, file: int) -> list[str]:
        """The names of the functions; an error while one of them waits for a custom section."""
        self._require_text(file, "Functions")
        return self.repository.function_names(file)

    def attribute(self, file: int, name: str) -> str | bool | list[str]:
        """The attribute; an error for IsEmpty while the file's first text waits."""
        value = self.repository.get_attribute(file, name)
        if name == "IsEmpty" and value:
            for section in self.repository.section_names(file):
                self._require_text(file, section)
        return value

    def finish(self) -> None:
        """Put every custom section where it belongs. Nothing may be added by templates after."""
        self.custom.require_declared()
        waiting, self.placements.waiting = self.placements.waiting, []
        self.sink.stop_deferring()
        for text in waiting:
            self._add(text)
        self.custom.report_never_placed()
        for file in self.custom.filled_files():
            self.repository.place_custom_sections(file)

    def _require_text(self, file: int, section: str) -> None:
        if self.sink.is_deferred(file, section):
            raise OrvError(
                f'the text of section "{section}" waits for a custom section that is placed in it;'
                " it cannot be read before the end"
            )

    def _add(self, waiting: WaitingText) -> None:
        pieces = self.placements.split(waiting.text)
        text = "".join(p if isinstance(p, str) else self._retrieve(p, waiting) for p in pieces)
        if waiting.function is None:
            self.sink.append_to(text, waiting.section, waiting.file)
        else:
            self.sink.add_function_to(text, waiting.function, waiting.file)

    def _retrieve(self, placement: Placement, waiting: WaitingText) -> str:
        requester = f"{self.files.label(waiting.file)} {waiting.section}"
        try:
            return self.custom.retrieve(placement.file, placement.name, requester)
        except Located:
            raise
        except (Diagnostic, OrvError) as error:
            raise TemplateError(f"{placement.position}: {error}") from error
