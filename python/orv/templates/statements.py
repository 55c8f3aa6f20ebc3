"""What the packaging tags do when a template runs."""

from __future__ import annotations

from collections.abc import Callable, Iterator, Mapping, Sequence
from typing import NoReturn

from orv import _native
from orv.delimiters import tag as as_tag
from orv.errors import OrvError, value_words
from orv.files.run import Run
from orv.files.table import FileView
from orv.templates.printable import outside_text, text_of, refuse_in_value


class Statements:
    """The operations behind the tags, on one run. Compiled templates call them by name."""

    def __init__(self, run: Run) -> None:
        self._run = run
        self._printer = run.printer

    def globals(self) -> dict[str, Callable[..., object]]:
        """The functions that templates call: to read back, and to refuse a model."""
        return {
            "fail": self._fail, "file": self._view, "file_name": self._file_name,
            "files": self._views, "user": self._user_text,
        }  # fmt: skip

    def file(
        self,
        name: str | None,
        kind: str | None,
        arguments: Sequence[object],
        attributes: Mapping[str, object],
    ) -> None:
        """Make a file the current one until the body is closed that begins here."""
        run = self._run
        index = run.files.select(name, kind, arguments)
        run.files.set_attributes(index, attributes)
        for name in ("RequiredIncludes", "UtilityIncludes"):
            headers = attributes.get(name)
            for header in headers if isinstance(headers, (list, tuple)) else ():
                run.ask(index, str(header))
        self._printer.file(index)
        if run.step is not None:
            run.step()

    def require_quotes(self, defined: bool, name: str, written: str) -> None:
        """Refuse a name of a file or section that is no variable: its quotes are missing."""
        if not defined:
            raise OrvError(
                f"{written} is undefined; a name that is no variable is written in quotes: "
                + as_tag(f'{name} "{written}"')
            )

    def end_fill(self) -> None:
        """Close the body of `fill` and add its text to the custom section."""
        self._run.custom.fill(*self._printer.close_fill())

    def close_to(self, depth: int) -> None:
        """Close every body above `depth`; a text that would have become a value is dropped."""
        while self._printer.depth > depth:
            if self._printer.kind == "fill":
                self.end_fill()
            else:
                self._printer.close()

    def custom(self, name: object, builtin: str, target: object = None) -> None:
        """Declare a custom section."""
        self._run.custom.declare(self._printer.target(target), _name(name), builtin)

    def in_use(self, name: object, target: object = None) -> None:
        """Say that the templates place a custom section, if at all."""
        self._run.custom.mark_in_use(self._printer.target(target), _name(name))

    def place(self, name: object, target: object, indentation: object, directives: object) -> None:
        """Place a custom section at the end of what has been printed so far."""
        file = self._printer.target(target)
        checked = _name(name)
        kind = self._printer.destination
        if kind == "outside":
            raise OrvError(outside_text(as_tag(f'place "{checked}"')))
        if kind == "fill":
            raise OrvError(f'a custom section cannot hold the place of another one, "{checked}"')
        if kind == "capture":
            refuse_in_value(f'custom section "{checked}"', "place")
        number = self._run.place(file, checked)
        self._printer.place(number, _blanks(indentation), _flag("directives", directives))

    def user(self, id: object, blanks: str) -> None:
        """Begin a user region, with markers that are indented by `blanks`."""
        if not isinstance(id, str):
            raise OrvError(f"expected the identifier of a user region, got {value_words(id)}")
        printer = self._printer
        kind = printer.destination
        if kind == "outside":
            raise OrvError(outside_text(as_tag(f'user "{id}"')))
        if kind == "capture":
            refuse_in_value(f'user region "{id}"', "user")
        if printer.is_in_user:
            raise OrvError(f'the user region "{id}" cannot be inside of another one')
        begin, end = self._run.regions.declare(printer.destination_file, id, kind == "fill")
        printer.user(blanks + begin, blanks + end, self._run.site("marker"))

    def _user_text(self, id: object, target: object = None) -> str:
        """The text that a user region will have."""
        if not isinstance(id, str):
            raise OrvError(f"expected the identifier of a user region, got {value_words(id)}")
        return self._run.regions.text(self._printer.target(target), id)

    def indent(self, indentation: object, directives: object) -> None:
        """Indent what is printed until the body is closed that begins here."""
        self._printer.indent(_blanks(indentation), _flag("directives", directives))

    def model(self, name: str, file_names: Mapping[str, object]) -> None:
        """Name the model and its files."""
        self._run.files.name_model(name, file_names)

    def include_required(self, headers: Sequence[object], target: object = None) -> None:
        """Add headers that are included first."""
        file = self._include_target(target)
        for header in _headers(headers):
            self._run.ask(file, header)
            self._run.repository.set_attribute(file, "RequiredIncludes", header)

    def include_utility(self, headers: Sequence[object], target: object = None) -> None:
        """Add headers that are included around the added ones."""
        file = self._include_target(target)
        for header in _headers(headers):
            self._run.ask(file, header)
            self._run.repository.set_attribute(file, "UtilityIncludes", header)

    def include_added(self, headers: Sequence[object], target: object = None) -> None:
        """Add headers that are included in the order they come."""
        file = self._include_target(target)
        for header in _headers(headers):
            self._run.ask(file, header)
            self._run.repository.add_include(file, header.strip("<>"), header.startswith("<"))

    def _include_target(self, target: object) -> int:
        file = self._printer.target(target)
        self._run.repository.require_section(file, "Includes")
        return file

    def _fail(self, message: object) -> NoReturn:
        """End the run with a message about the model."""
        raise OrvError(text_of(message))

    def _view(self, name: str | None = None) -> FileView:
        """The file called `name`; the file being written when there is no name."""
        return self._run.files.view(self._printer.target(name))

    def _views(self) -> list[FileView]:
        """All files, in the order they were declared."""
        return [self._run.files.view(index) for index in range(len(self._run.repository))]

    def _file_name(self, file_type: str) -> str:
        """The name of one of the model's well-known files; empty when it has none."""
        return self._run.files.well_known_name(file_type)


def _name(name: object) -> str:
    if not isinstance(name, str) or not name:
        raise OrvError(f"expected the name of a custom section, got {value_words(name)}")
    return name


def _blanks(indentation: object) -> str:
    if type(indentation) is int and 0 <= indentation <= _native.LONGEST_INDENTATION:
        return " " * indentation
    if isinstance(indentation, str) and not indentation.strip(" \t"):
        return indentation
    raise OrvError(
        f"an indentation is a number of blanks, up to {_native.LONGEST_INDENTATION}, or a text of"
        f" blanks and tabs, not {value_words(indentation)}"
    )


def _flag(name: str, value: object) -> bool:
    if not isinstance(value, bool):
        raise OrvError(f"the value of {name} must be true or false, not {value_words(value)}")
    return value


def _headers(entries: Sequence[object]) -> Iterator[str]:
    for entry in entries:
        for header in entry if isinstance(entry, (list, tuple)) else [entry]:
            yield _header(header)


def _header(header: object) -> str:
    if not isinstance(header, str) or not header or "\n" in header:
        raise OrvError(f"a header is a text of one line, not {value_words(header)}")
    if '"' in header:
        raise OrvError(f"the header {header} is written without quotes, or as <{header[1:-1]}>")
    if header.startswith("<") != header.endswith(">") or header == "<>":
        raise OrvError(f"the header {header} is written as <NAME> or as NAME")
    return header
