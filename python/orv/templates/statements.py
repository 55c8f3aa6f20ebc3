"""What the packaging tags do when a template runs."""

from __future__ import annotations

from collections.abc import Callable, Mapping, Sequence
from typing import Any, NamedTuple, NoReturn

from jinja2 import pass_context

from orv.errors import Located, OrvError
from orv.templates.tags import outside_text
from orv.files.view import FileView
from orv.templates.positions import Position
from orv.templates.printable import printable
from orv.files.run import Run

Filter = Callable[..., Any]


class IncludedText(NamedTuple):
    """The first text that a template printed and where, if it is known."""

    position: Position | None
    text: str


class Statements:
    """The operations behind the tags, on one run. They print nothing unless they say so."""

    def __init__(self, run: Run) -> None:
        self._run = run
        self._enclosing: list[int] = []
        # How the text of the last included template began, if it printed any.
        self.included_text: IncludedText | None = None

    def filters(self) -> dict[str, Filter]:
        """The filters that the tags are compiled to, by name."""
        sink = self._run.sink
        operations: dict[str, Filter] = {
            "orv section": sink.append,
            "orv function": sink.add_function,
            "orv section of": self._section_of,
            "orv function of": self._function_of,
            "orv fill": self._fill,
            "orv fill of": self._fill,
            "orv outside": self._outside,
        }
        for name in ("custom", "endfile", "file", "in_use", "model", "place"):
            operations[f"orv {name}"] = _run_time_only(getattr(self, f"_{name}"))
        for name, add in (
            ("include_required", self._required),
            ("include_utility", self._utility),
            ("include_added", self._added),
        ):
            operations[f"orv {name}"] = _run_time_only(self._include(add))
        return operations

    def globals(self) -> dict[str, Callable[..., object]]:
        """The functions that templates call: to read back, and to refuse a model."""
        return {
            "fail": self._fail, "file": self._view, "file_name": self._file_name,
            "files": self._views,
        }  # fmt: skip

    def _file(
        self,
        name: str | None,
        kind: str | None,
        arguments: Sequence[object],
        attributes: Mapping[str, object],
    ) -> None:
        run = self._run
        index = run.files.select(name, kind, arguments)
        run.files.set_attributes(index, attributes)
        self._enclosing.append(run.sink.current)
        run.sink.current = index

    def _endfile(self, _: None) -> None:
        self._run.sink.current = self._enclosing.pop()

    def _section_of(self, text: str, section: str, target: object) -> str:
        return self._run.sink.append_to(text, section, self._run.files.find(target))

    def _function_of(self, body: str, name: str, target: object) -> str:
        return self._run.sink.add_function_to(body, name, self._run.files.find(target))

    def _fill(self, text: str, name: object, target: object = None) -> str:
        self._run.custom.fill(self._index(target), _name(name), text)
        return ""

    def _custom(self, name: object, builtin: str, target: object = None) -> None:
        self._run.custom.declare(self._index(target), _name(name), builtin)

    def _in_use(self, name: object, target: object = None) -> None:
        self._run.custom.mark_in_use(self._index(target), _name(name))

    def _place(self, name: object, target: object = None) -> str:
        """Print the mark of the custom section."""
        return self._run.placements.mark(self._index(target), _name(name))

    def _model(self, name: str, file_names: Mapping[str, object]) -> None:
        self._run.files.name_model(name, file_names)

    def _include(self, add: Callable[[int, str], None]) -> Filter:
        def include(headers: Sequence[object], target: object = None) -> None:
            index = self._index(target)
            for entry in headers:
                for header in entry if isinstance(entry, (list, tuple)) else [entry]:
                    add(index, _header(header))

        return include

    def _required(self, index: int, header: str) -> None:
        self._run.repository.set_attribute(index, "RequiredIncludes", header)

    def _utility(self, index: int, header: str) -> None:
        self._run.repository.set_attribute(index, "UtilityIncludes", header)

    def _added(self, index: int, header: str) -> None:
        is_system = header.startswith("<")
        self._run.repository.add_include(index, header.strip("<>"), is_system)

    def _outside(self, value: object) -> str:
        text = str(printable(value))
        included, self.included_text = self.included_text, None
        if text and not text.isspace():
            complaint = outside_text(self._run.placements.readable(text))
            if included is not None and text.lstrip().startswith(included.text.strip()):
                raise Located(f"{included.position}: {complaint}")
            raise OrvError(complaint)
        return text

    def _fail(self, message: object) -> NoReturn:
        """End the run with a message about the model."""
        raise OrvError(str(message))

    def _view(self, name: str | None = None) -> FileView:
        """The file called `name`; the file being written when there is no name."""
        return FileView(self._run, self._index(name))

    def _views(self) -> list[FileView]:
        """All files, in the order they were declared."""
        return [FileView(self._run, index) for index in range(len(self._run.repository))]

    def _file_name(self, file_type: str) -> str:
        """The name of one of the model's well-known files; empty when it has none."""
        return self._run.repository.file_name(file_type)

    def _index(self, target: object) -> int:
        if target is not None:
            return self._run.files.find(target)
        if self._run.sink.current < 0:
            raise OrvError(
                "no file is open here; put this between {% file ... %} and {% endfile %}"
                ' or say which file it is for: of "NAME"'
            )
        return self._run.sink.current


def _run_time_only(operation: Filter) -> Filter:
    @pass_context
    def call(_: object, *arguments: object) -> object:
        return operation(*arguments)

    return call


def _name(name: object) -> str:
    if not isinstance(name, str) or not name:
        raise OrvError(f"a custom section is meant by its name, not by {name!r}")
    return name


def _header(header: object) -> str:
    if not isinstance(header, str) or not header or "\n" in header:
        raise OrvError(f"a header is a text of one line, not {header!r}")
    if '"' in header:
        raise OrvError(f"the header {header} is written without quotes, or as <{header[1:-1]}>")
    if header.startswith("<") != header.endswith(">") or header == "<>":
        raise OrvError(f"the header {header} is written as <NAME> or as NAME")
    return header
