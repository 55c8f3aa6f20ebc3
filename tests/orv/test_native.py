"""Nothing that Python hands to the native part crashes it."""

from __future__ import annotations

import gc
import weakref
from pathlib import Path
from typing import Any

import pytest

from orv import _native
from orv.errors import Diagnostic


@pytest.mark.parametrize("index", [-1, 1, 2**31 - 1])
def test_indices_are_checked_first(index: int) -> None:
    repository = _native.Repository()
    repository.create_generic("a.c")
    sink = _native.TextSink(repository, print)
    calls: list[tuple[Any, tuple[Any, ...]]] = [
        (repository.get_attribute, (index, "Type")),
        (repository.set_attribute, (index, "Type", "x")),
        (repository.section_text, (index, "Enums")),
        (repository.section_names, (index,)),
        (repository.function_names, (index,)),
        (repository.add_include, (index, "a.h", False)),
        (repository.place_custom_sections, (index,)),
        (repository.declare_custom, (index, "Enums", "c")),
        (repository.fill_custom, (index, "c", "x")),
        (repository.retrieve_custom, (index, "c", "x")),
        (repository.class_name, (index,)),
        (sink.append_to, ("x", "Enums", index)),
        (sink.add_function_to, ("x", "f", index)),
        (_native.Stream.in_memory().write_section, (repository, index, "Enums")),
    ]
    for call, arguments in calls:
        with pytest.raises(Diagnostic) as raised:
            call(*arguments)
        error = raised.value
        assert (error.identifier, error.arguments) == ("Pyx:codeGen:InvalidFileIndex", (index,))


@pytest.mark.parametrize("wrong", [None, "\0", "\ud800", 2**40])
def test_wrong_arguments_are_refused(wrong: Any) -> None:
    repository = _native.Repository()
    repository.create_generic("a.c")
    repository.declare_custom(0, "Enums", "c")
    sink = _native.TextSink(repository, print)
    calls: list[tuple[Any, tuple[Any, ...]]] = [
        (_native.TextSink, (wrong, print)),
        (repository.create_generic, (wrong,)),
        (repository.create_module_header, ("m.h", [wrong])),
        (repository.packaging_file, (wrong,)),
        (repository.set_attribute, (0, "Type", wrong)),
        (repository.set_attribute, (0, wrong, "x")),
        (repository.section_text, (0, wrong)),
        (repository.fill_custom, (0, "c", wrong)),
        (sink.append_to, ("x", wrong, 0)),
        (sink.add_function_to, ("x", wrong, 0)),
        (_native.Stream.in_memory().write, (wrong,)),
    ]
    for call, arguments in calls:
        with pytest.raises((TypeError, ValueError)):
            call(*arguments)
    assert len(repository) == 1 and repository.section_text(0, "Enums") == ""


def test_the_repository_lives_as_long_as_its_users() -> None:
    repository = _native.Repository()
    repository.create_generic("a.c")
    sink = _native.TextSink(repository, print)
    handle = repository.handle()
    alive = weakref.ref(sink)
    del repository
    gc.collect()
    sink.append_to("x", "Enums", 0)
    sink.current = 0
    sink.append("y", "Enums")
    del sink
    assert alive() is None and "orbel.HandleBase" in repr(handle)


def test_streams_report_what_the_system_says(tmp_path: Path) -> None:
    stream = _native.Stream.create(tmp_path / "a")
    stream.write(b"x")
    stream.flush()
    stream.close()
    stream.close()
    assert (tmp_path / "a").read_bytes() == b"x"
    with pytest.raises(FileExistsError) as exists:
        _native.Stream.create(tmp_path / "a")
    assert exists.value.filename == str(tmp_path / "a")
    with pytest.raises(FileNotFoundError):
        _native.Stream.create(tmp_path / "no" / "b")
    with pytest.raises(ValueError, match="null"):
        _native.Stream.create("a\0b")
    with pytest.raises(RuntimeError, match="is closed"):
        stream.write(b"y")
    with pytest.raises(RuntimeError, match="not in memory"):
        _native.Stream.create(tmp_path / "c").contents()
