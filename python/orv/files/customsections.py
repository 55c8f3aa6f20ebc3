"""The custom sections that the templates declare, fill, place and mark as in use."""

from __future__ import annotations

from dataclasses import dataclass, field
from typing import NamedTuple

from orv import _native
from orv.delimiters import tag
from orv.errors import Diagnostic, Located, Messages, OrvError, did_you_mean
from orv.positions import Position, here


@dataclass
class _CustomSection:
    """What is known of one custom section; it may be declared after all else."""

    builtin: str = ""
    declared: Position | None = None
    first_fill: Position | None = None
    in_use: Position | None = None
    placed: Position | None = None
    early_text: list[str] = field(default_factory=list)


class Placement(NamedTuple):
    """Where a template places the custom section `name` of the file `file`."""

    file: int
    name: str
    position: Position


class CustomSections:
    """All custom sections of a run, by file and name.

    Text for a section that is not declared yet is kept until it is.
    """

    def __init__(self, repository: _native.Repository, messages: Messages) -> None:
        self._repository = repository
        self._messages = messages
        self._sections: dict[tuple[int, str], _CustomSection] = {}

    def declare(self, file: int, name: str, builtin: str) -> None:
        """Attach the custom section `name` to the section `builtin` of the file."""
        section = self._section(file, name)
        try:
            self._repository.declare_custom(file, builtin, name)
        except Diagnostic as error:
            if section.declared is None:
                raise
            raise OrvError(
                f'the custom section "{name}" is declared on "{section.builtin}" at'
                f' {section.declared}; it cannot be on "{builtin}" too'
            ) from error
        except ValueError as error:
            hint = did_you_mean(builtin, _native.SECTION_NAMES)
            if not hint:
                raise
            raise OrvError(f'there is no section "{builtin}"{hint}') from error
        section.builtin = builtin
        section.declared = section.declared or here()
        early, section.early_text = section.early_text, []
        for text in early:
            self._repository.fill_custom(file, name, text)

    def fill(self, file: int, name: str, text: str) -> None:
        """Add text to the custom section, which may be declared later. No text changes nothing."""
        if not text:
            return
        section = self._section(file, name)
        section.first_fill = section.first_fill or here()
        if section.builtin:
            self._repository.fill_custom(file, name, text)
        else:
            section.early_text.append(text)

    def mark_in_use(self, file: int, name: str) -> None:
        """Mark the custom section as placed by the templates themselves."""
        self._repository.mark_custom_in_use(file, name)
        section = self._section(file, name)
        section.in_use = section.in_use or here()

    def retrieve(self, placement: Placement, requester: str) -> str:
        """The text of a custom section, which is handed out once."""
        file, name, position = placement
        section = self._sections.get((file, name))
        if section is None or not section.builtin:
            known = [other for owner, other in self._sections if owner == file]
            file_name = self._repository.get_attribute(file, "Name")
            raise OrvError(
                f'the file "{file_name}" has no custom section "{name}"'
                + (did_you_mean(name, known) or f": declare it with {tag('custom')}")
            )
        if section.placed is not None:
            raise OrvError(
                f'the custom section "{name}" is placed at {section.placed} already;'
                " it can be placed only once"
            )
        text = self._repository.retrieve_custom(file, name, requester)
        section.placed = position
        return text

    def require_declared(self) -> None:
        """Fail when a custom section was filled or is in use that does not exist."""
        for (file, name), section in self._sections.items():
            if section.builtin:
                continue
            place = section.first_fill or section.in_use
            done = "filled" if section.first_fill else "marked as in use"
            file_name = self._repository.get_attribute(file, "Name")
            known = [n for (owner, n), s in self._sections.items() if owner == file and s.builtin]
            hint = did_you_mean(name, known) or ": " + tag(f'custom "{name}" on "SECTION"')
            raise Located(
                f'{place}: the custom section "{name}" of "{file_name}" is {done} but never'
                f" declared{hint}"
            )

    def report_never_placed(self) -> None:
        """Report the custom sections whose text is never placed."""
        for (file, name), section in self._sections.items():
            if section.first_fill is None or section.placed:
                continue
            if section.in_use:
                reason = "it is marked as in use"
            elif section.builtin == "Documentation":
                reason = "custom sections on Documentation are not added at its end"
            else:
                continue
            file_name = self._repository.get_attribute(file, "Name")
            self._messages.warn(
                f'the text of custom section "{name}" of "{file_name}" is never placed: {reason},'
                " and no " + tag(f'place "{name}"') + " says where it goes",
                section.first_fill,
            )

    def filled_files(self) -> list[int]:
        """The files that have a custom section with text, in order."""
        return sorted({file for (file, _), s in self._sections.items() if s.first_fill is not None})

    def _section(self, file: int, name: str) -> _CustomSection:
        return self._sections.setdefault((file, name), _CustomSection())
