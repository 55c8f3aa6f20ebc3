"""Declaring and selecting files, and their attributes."""

from __future__ import annotations

from collections.abc import Callable, Mapping, Sequence
from dataclasses import dataclass
from typing import Any, NamedTuple

from orv import _native
from orv.delimiters import tag
from orv.errors import Messages, OrvError, OutputError, did_you_mean, value_words
from orv.positions import Position, here

# The kinds of files that are named by the model's table of names, with the type of name.
_NAMED_BY_TABLE = {"model_header": "ModelHeaderFile", "model_types": "ModelTypesFile"}


ATTRIBUTES = tuple(name for name, _, _ in _native.ATTRIBUTES)
# By name: "text", "flag" or "list".
_SETTABLE = {name: kind for name, kind, settable in _native.ATTRIBUTES if settable}

# What a `file` tag sets that is no attribute.
_OF_THE_TAG = ("extern_c", "guard", "markers", "order")


def attribute_mistake(name: str) -> str | None:
    """What is wrong with setting an attribute of this name in a `file` tag; None for nothing."""
    if name in _SETTABLE or name in _OF_THE_TAG:
        return None
    if name in ATTRIBUTES:
        return f"{name} cannot be set: a file keeps the name that declared it"
    return f'files have no attribute "{name}"{did_you_mean(name, [*_SETTABLE, *_OF_THE_TAG])}'


class FileShape(NamedTuple):
    """How a file is composed: the order of its sections, if it is not the usual one, whether a
    header gets a guard, and whether it has C linkage in C++."""

    order: tuple[str, ...] | None = None
    guard: bool = True
    extern_c: bool = False


@dataclass(slots=True)
class FileRecord:
    """What the templates said about one file beside what the library keeps."""

    kind: str
    declared: Position
    modules: tuple[int, ...] = ()
    shape: FileShape = FileShape()
    # Those of its user regions; see _native.Markers.
    markers: str | None = None


class FileView:
    """A file as templates read it: its attributes and the texts of its sections, by their names.

    Also `sections`, the names of the sections that it can have, and `functions`, the names of its
    functions.
    """

    __slots__ = ("_index", "_table")

    def __init__(self, table: FileTable, index: int) -> None:
        self._table = table
        self._index = index

    @property
    def sections(self) -> list[str]:
        """The names of the sections that the file can have."""
        return self._table.repository.section_names(self._index)

    @property
    def functions(self) -> list[str]:
        """The names of the functions in the order they were added."""
        self._table.require_text(self._index, "Functions")
        return self._table.repository.function_names(self._index)

    def __getattr__(self, name: str) -> str | bool | list[str]:
        if not name[:1].isupper():
            raise AttributeError(name)
        if name in ATTRIBUTES:
            return self._table.attribute(self._index, name)
        if name in _native.SECTION_NAMES:
            self._table.require_text(self._index, name)
            return self._table.repository.section_text(self._index, name)
        raise OrvError(
            f'files have no attribute or section "{name}"'
            + did_you_mean(name, [*ATTRIBUTES, *_native.SECTION_NAMES])
        )

    def __str__(self) -> str:
        return str(self._table.repository.get_attribute(self._index, "Name"))


class FileTable:
    """The files that templates declare, by their index in the repository."""

    def __init__(self, repository: _native.Repository, messages: Messages) -> None:
        self.repository = repository
        # Whether text for a section of a file waits for a custom section that is placed in it.
        self.is_waiting: Callable[[int, str], bool] = lambda file, section: False
        self.has_regions: Callable[[int], bool] = lambda file: False
        self._messages = messages
        self._records: dict[int, FileRecord] = {}
        # Where files were declared, each line once: a loop declares many files at one.
        self._positions: dict[Position, Position] = {}
        self._by_key: dict[str, int] = {}

    def view(self, file: int) -> FileView:
        """The file as templates read it."""
        return FileView(self, file)

    def require_text(self, file: int, section: str) -> None:
        """Raise OrvError while part of the section's text is not known yet."""
        if self.is_waiting(file, section):
            raise OrvError(
                f'the text of section "{section}" waits for a custom section that is placed in it;'
                " it cannot be read before the end"
            )

    def attribute(self, file: int, name: str) -> str | bool | list[str]:
        """The attribute; an error for IsEmpty while the file's first text waits."""
        value = self.repository.get_attribute(file, name)
        if name == "IsEmpty" and value:
            for section in self.repository.section_names(file):
                self.require_text(file, section)
        return value

    def record(self, file: int) -> FileRecord | None:
        """What is known of a file; nothing for one that a script made."""
        return self._records.get(file)

    def restore(self, file: int, record: FileRecord | None) -> None:
        """Take over what is known of a file of a run that was rendered elsewhere."""
        if record is not None:
            self._records[file] = record

    def label(self, file: int) -> str:
        """The file's name as messages show it."""
        name = self.repository.get_attribute(file, "Name")
        return f'"{name}"' if name else "without a name"

    def place(self, file: int) -> str:
        """Where the file was declared, as messages begin with it: empty when that is not known."""
        position = self.position(file)
        return f"{position}: " if position else ""

    def position(self, file: int) -> str:
        """Where a template declared the file; empty when none did."""
        record = self._records.get(file)
        return str(record.declared) if record is not None else ""

    def disk_name(self, file: int) -> str:
        """The name that the file is written under, or nothing when it has none.

        That of a file without a name is its BaseName with the ending of its kind.
        """
        name = str(self.repository.get_attribute(file, "Name"))
        base = str(self.repository.get_attribute(file, "BaseName"))
        if name or not base:
            return name
        return base + (".h" if self.repository.is_header(file) else ".c")

    def path(self, file: int) -> str:
        """Where the file belongs below the output folder. Raises OutputError."""
        name = self.disk_name(file)
        if not name:
            raise OutputError("it has no name to be written under; give it a BaseName")
        directory = str(self.repository.get_attribute(file, "OutputDirectory"))
        return _native.output_path(directory, name)

    def adopt(self, file: int, script: str) -> None:
        """Take note of a file that a script made."""
        name = str(self.repository.get_attribute(file, "Name"))
        is_new, registered = self.repository.register_name(name)
        if not is_new and registered != name:
            self._messages.warn(self._clash(name, registered), script)

    def find(self, target: object) -> int:
        """The file that a template means by a name, a file object, or none: the current file, which
        there is not."""
        if target is None:
            raise OrvError(
                f"no file is open here; put this between {tag('file ...')} and {tag('endfile')} or"
                ' say which file it is for: of "NAME"'
            )
        if isinstance(target, FileView):
            return target._index
        if not isinstance(target, str):
            raise OrvError(f"expected a file name, got {type(target).__name__}")
        index = self.repository.find(target)
        if index < 0:
            raise OrvError(
                f'there is no file "{target}" yet; declare it with {tag("file")} first'
                + did_you_mean(target, self.names())
            )
        return index

    def names(self) -> list[str]:
        """The names of all files, in the order they were made."""
        files = range(len(self.repository))
        return [str(self.repository.get_attribute(file, "Name")) for file in files]

    def select(self, name: str | None, kind: str | None, arguments: Sequence[object]) -> int:
        """The file that a `file` tag means, made now unless it is there."""
        if kind == "packaging":
            if name is not None:
                raise OrvError("packaging takes no name; give the file a BaseName")
            return self._by_packaging_key(arguments)
        if kind in ("module_header", "module_source"):
            return self._module(name, kind, _module_indices(arguments))
        if arguments:
            raise OrvError(f"{kind} takes no arguments")
        if kind is not None and kind in _NAMED_BY_TABLE:
            name = self._name_from_table(name, kind)
        if not isinstance(name, str) or not name:
            raise OrvError(f"expected a file name, got {value_words(name)}")
        return self._named(name, kind)

    def set_attributes(self, file: int, attributes: Mapping[str, object]) -> None:
        """Set attributes by name, and what the tag says beside them."""
        for name, value in attributes.items():
            if name == "order":
                self._set_order(file, value)
            elif name == "markers":
                self._set_markers(file, value)
            elif name == "guard":
                self._shape(file, guard=_flag(name, value))
            elif name == "extern_c":
                self._shape(file, extern_c=_flag(name, value))
            else:
                self._set_attribute(file, name, value)

    def name_model(self, name: str, file_names: Mapping[str, object]) -> None:
        """Name the model and its well-known files."""
        for file_type, file_name in file_names.items():
            current = self.well_known_name(file_type)
            if not isinstance(file_name, str):
                raise OrvError(f"the name of {file_type} must be text")
            if current and current != file_name:
                raise OrvError(f'{file_type} is named "{current}" already')
            self.repository.name_file(file_type, file_name)
        self.repository.model_name = name

    def well_known_name(self, file_type: object) -> str:
        """The name that the model gave a file type; empty when it gave none."""
        if file_type not in _native.FILE_TYPES:
            hint = did_you_mean(str(file_type), _native.FILE_TYPES)
            raise OrvError(f'there is no file type "{file_type}"{hint}')
        return self.repository.file_name(str(file_type))

    def _named(self, name: str, kind: str | None) -> int:
        index = self.repository.find(name)
        if index >= 0:
            self._require_kind(index, kind)
            return index
        repository = self.repository
        makers: dict[str, Callable[[], int]] = {
            "generic": lambda: repository.create_generic(name),
            "data_types": lambda: repository.create_data_types(name),
            "text": lambda: repository.create_text(name),
            "model": lambda: repository.create_model(name),
            "model_header": repository.create_model_header,
            "model_types": repository.create_model_types,
        }
        return self._make(name, kind or "generic", makers[kind or "generic"])

    def _make(
        self, name: str, kind: str, maker: Callable[[], int], modules: tuple[int, ...] = ()
    ) -> int:
        position = here()
        position = self._positions.setdefault(position, position)
        self._report_clash(name)
        index = maker()
        self._records[index] = FileRecord(kind, position, modules)
        return index

    def _report_clash(self, name: str) -> None:
        is_new, registered = self.repository.register_name(name)
        if is_new:
            return
        self._messages.warn(self._clash(name, registered), here())

    def _clash(self, name: str, registered: str) -> str:
        other = self._records.get(self.repository.find(registered))
        where = f", declared at {other.declared}" if other is not None else ""
        return (
            f'the file "{name}" differs only in letter case from "{registered}"{where};'
            " some file systems cannot hold both"
        )

    def _require_kind(self, index: int, kind: str | None) -> None:
        record = self._records[index]
        if kind is not None and record.kind != kind:
            raise OrvError(
                f"the file {self.label(index)} was declared as {record.kind} at {record.declared};"
                f" it cannot be declared as {kind}"
            )

    def _name_from_table(self, name: str | None, kind: str) -> str:
        file_type = _NAMED_BY_TABLE[kind]
        stem = self.repository.file_name(file_type)
        naming = tag(f'model "NAME" {file_type}="..."')
        if name is not None:
            raise OrvError(f"the name of {kind} comes from {naming}")
        if not stem:
            raise OrvError(f"{kind} has no name yet; give it one with {naming}")
        return stem + ".h"

    def _module(self, name: str | None, kind: str, modules: tuple[int, ...]) -> int:
        repository = self.repository
        header = kind == "module_header"
        find = repository.find_module_header if header else repository.find_module_source
        create = repository.create_module_header if header else repository.create_module_source
        if name is None:
            found = find(modules[0]) if len(modules) == 1 else -1
            if found < 0:
                shown = ", ".join(map(str, modules))
                raise OrvError(f"no {kind} has the index {shown}; declare it by its name first")
            return found
        index = repository.find(name)
        if index >= 0:
            self._require_kind(index, kind)
            if modules and modules != self._records[index].modules:
                shown = ", ".join(map(str, self._records[index].modules)) or "none"
                raise OrvError(f"the file {self.label(index)} has the module indices {shown}")
            return index
        for module in modules:
            if find(module) >= 0:
                self._messages.warn(
                    f'module index {module} now means "{name}" and no longer'
                    f" {self.label(find(module))}",
                    here(),
                )
        named: str = name
        return self._make(name, kind, lambda: create(named, list(modules)), modules)

    def _by_packaging_key(self, arguments: Sequence[object]) -> int:
        if len(arguments) != 1 or not isinstance(arguments[0], str):
            raise OrvError('packaging takes one key, such as packaging("mdl_hdr")')
        key = arguments[0]
        if key in self._by_key:
            return self._by_key[key]
        index = self.repository.packaging_file(key)
        if index in self._records:
            other = next(k for k, i in self._by_key.items() if i == index)
            self._messages.warn(
                f'the packaging keys "{key}" and "{other}" mean the same file,'
                f" which has the attributes of {key} from now on",
                here(),
            )
        else:
            self._records[index] = FileRecord("packaging", here())
        self._by_key[key] = index
        return index

    def _set_order(self, file: int, value: object) -> None:
        if not isinstance(value, (list, tuple)) or not all(isinstance(v, str) for v in value):
            raise OrvError("order is a list of names of sections")
        for section in value:
            self.repository.require_section(file, section)
            if value.count(section) > 1:
                raise OrvError(f'order names the section "{section}" twice')
        self._shape(file, order=tuple(value))

    def _shape(self, file: int, **changes: Any) -> None:
        record = self._records[file]
        record.shape = record.shape._replace(**changes)

    def _set_markers(self, file: int, value: object) -> None:
        record = self._records[file]
        pattern = _native.Markers(_text("markers", value)).pattern
        if self.has_regions(file) and pattern != record.markers:
            raise OrvError(f"the file {self.label(file)} has user regions with other markers")
        record.markers = pattern

    def _set_attribute(self, file: int, name: str, value: object) -> None:
        kind = _SETTABLE[name]
        if kind == "list":
            for element in value if isinstance(value, (list, tuple)) else [value]:
                self.repository.set_attribute(file, name, _text(name, element))
            return
        if kind == "text":
            self._require_group(file, name, _text(name, value))
            self._report_move(file, name, _text(name, value))
            self.repository.set_attribute(file, name, _text(name, value))
            return
        flag = _flag(name, value)
        if name == "IsEmpty" and flag and not self.repository.get_attribute(file, "IsEmpty"):
            raise OrvError(f"the file {self.label(file)} is not empty and cannot be made so")
        self.repository.set_attribute(file, name, flag)

    def _report_move(self, file: int, name: str, value: str) -> None:
        folder = self.repository.get_attribute(file, "OutputDirectory")
        if name == "OutputDirectory" and folder and folder != value:
            self._messages.warn(
                f'the file {self.label(file)} had the OutputDirectory "{folder}" and has "{value}"'
                " from now on",
                here(),
            )

    def _require_group(self, file: int, name: str, value: str) -> None:
        group = self.repository.get_attribute(file, "Group")
        if name == "Group" and group and group != value:
            raise OrvError(
                f'the file {self.label(file)} is in the group "{group}", which it cannot leave'
            )


def _text(name: str, value: object) -> str:
    if not isinstance(value, str):
        raise OrvError(f"the value of {name} must be text, not {value_words(value)}")
    return value


def _flag(name: str, value: object) -> bool:
    if not isinstance(value, bool):
        raise OrvError(f"the value of {name} must be true or false, not {value_words(value)}")
    return value


def _module_indices(arguments: Sequence[object]) -> tuple[int, ...]:
    indices: list[int] = []
    for argument in arguments:
        for index in argument if isinstance(argument, (list, tuple)) else [argument]:
            if not isinstance(index, int) or isinstance(index, bool) or abs(index) >= 2**31:
                raise OrvError(f"a module index is a whole number, not {value_words(index)}")
            indices.append(index)
    return tuple(indices)
