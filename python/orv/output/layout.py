"""How the sections of a file follow one another in the text that is written."""

from __future__ import annotations

import re
from typing import NamedTuple

from orv import _native
from orv.errors import OutputError
from orv.files.run import Run

# What a section may use stands before it: checks of the compilation after the includes that they
# look at, types after what they are made of, declarations before definitions.
_BEGINNING = ("Banner", "Documentation", "Includes", "ModelTypesIncludes")
_TYPES = (
    "ModelTypesDefines", "Defines", "IntrinsicTypes", "PrimitiveTypedefs", "ForwardDecls",
    "Enums", "ModelTypesTypedefs", "Typedefs",
)  # fmt: skip
_CHECKS = ("CompilerErrors", "CompilerWarnings")
_CODE = ("ExternData", "ExternFcns", "FcnPrototypes", "Declarations", "Definitions", "Functions")

# A header checks what its includer has set up before it adds to it; a source checks what all of
# its includes and its own defines have come to, and its user's top part stands before its code.
HEADER_ORDER = (*_BEGINNING, *_CHECKS, "UserTop", *_TYPES, *_CODE, "UserBottom")
SOURCE_ORDER = (*_BEGINNING, "UserTop", *_TYPES, *_CHECKS, *_CODE, "UserBottom")

_HEADER_ENDINGS = (".h", ".hh", ".hpp", ".hxx", ".inc")
_IDENTIFIER = re.compile("[A-Za-z_][A-Za-z0-9_]*")


class ComposedFile(NamedTuple):
    """The bytes of a file, and the size of each of its sections that has text, in written order."""

    data: bytes
    sections: dict[str, int]


def is_header(name: str, file_type: str) -> bool:
    """Whether a file is a header, by the end of its name or, failing that, of its Type."""
    return name.lower().endswith(_HEADER_ENDINGS) or file_type.endswith("Header")


def compose(run: Run, file: int) -> ComposedFile:
    """Write the sections of a file one after the other.

    Each section starts a line of its own. A header with a DefinedMacro is guarded by it: the guard
    opens before the first section that is not the banner and closes at the end.
    """
    header = is_header(_text(run, file, "Name"), _text(run, file, "Type"))
    guard = _guard_macro(run, file) if header else ""
    stream = _native.Stream.in_memory()
    sizes: dict[str, int] = {}
    is_open = False
    for section in _order(run, file, header):
        if guard and not is_open and section != "Banner":
            stream.write(f"#ifndef {guard}\n#define {guard}\n\n".encode())
            is_open = True
        size = stream.write_section(run.repository, file, section)
        if size:
            sizes[section] = size
    if is_open:
        stream.write(f"\n#endif /* {guard} */\n".encode())
    data = stream.contents()
    stream.close()
    return ComposedFile(data, sizes)


def _order(run: Run, file: int, header: bool) -> tuple[str, ...]:
    record = run.files.record(file)
    if record is None or record.order is None:
        return HEADER_ORDER if header else SOURCE_ORDER
    for section in run.repository.section_names(file):
        if section not in record.order and run.repository.section_text(file, section):
            raise OutputError(f'its order leaves out the section "{section}", which has text')
    return record.order


def _guard_macro(run: Run, file: int) -> str:
    macro = _text(run, file, "DefinedMacro")
    if macro and not _IDENTIFIER.fullmatch(macro):
        raise OutputError(f'its DefinedMacro "{macro}" is no identifier')
    return macro


def _text(run: Run, file: int, attribute: str) -> str:
    return str(run.repository.get_attribute(file, attribute))
