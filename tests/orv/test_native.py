"""Nothing that Python hands to the native part crashes it."""

from __future__ import annotations

import gc
import weakref
from typing import Any

import pytest

from orv import _native
from orv.errors import Diagnostic


@pytest.mark.parametrize("index", [-1, 1, 2**31 - 1])
def test_indices_are_checked_first(index: int) -> None:
    repository = _native.Repository()
    repository.create_generic("a.c")
    printer = _native.Printer(repository, str, print, id, print)
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
        (repository.compose, (index,)),
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
    printer = _native.Printer(repository, str, print, id, print)
    calls: list[tuple[Any, tuple[Any, ...]]] = [
        (_native.Printer, (wrong, str, print, id, print)),
        (repository.create_generic, (wrong,)),
        (repository.create_module_header, ("m.h", [wrong])),
        (repository.packaging_file, (wrong,)),
        (repository.set_attribute, (0, "Type", wrong)),
        (repository.set_attribute, (0, wrong, "x")),
        (repository.section_text, (0, wrong)),
        (repository.fill_custom, (0, "c", wrong)),
        (printer.section, (wrong, "a.c")),
        (printer.function, (wrong, "a.c", "")),
        (printer.outside, (wrong,)),
        (printer.leave, (wrong,)),
    ]
    for call, arguments in calls:
        with pytest.raises((TypeError, ValueError)):
            call(*arguments)
    assert len(repository) == 1 and repository.section_text(0, "Enums") == ""


def test_the_printer_refuses_what_it_cannot_do() -> None:
    repository = _native.Repository()
    repository.create_generic("a.c")
    heard: list[str] = []
    printer = _native.Printer(repository, repr, heard.append, id, print)
    printer.write("lost", " ", 1, None)
    assert (heard, printer.depth, printer.kind) == (["lost", "1", "None"], 1, "outside")
    calls: list[tuple[Any, tuple[Any, ...]]] = [
        (printer.close, ()),
        (printer.leave, (1,)),
        (printer.place, (0, "", True)),
        (printer.place, (-1, "", True)),
        (printer.indent, (" " * 201, True)),
        (printer.section, ()),
        (printer.section, (22, "a.c")),
        (printer.section, ("Enums", "no")),
        (printer.write, ("", "\0")),
    ]
    printer.section(0, "a.c")
    for call, arguments in calls[1:2] + calls[3:]:
        with pytest.raises((RuntimeError, TypeError, ValueError, Diagnostic)):
            call(*arguments)
    assert printer.failed_argument == 1
    printer.write("é\U0001f600", 2**70, -1, 1e22, True)
    printer.close()
    for call, arguments in calls[:3]:
        with pytest.raises((RuntimeError, ValueError)):
            call(*arguments)
    assert repository.section_text(0, "Banner") == f"é\U0001f600{2**70}-11e+22True"
    composed = repository.compose(0, ["Banner"])
    assert (bytes(composed)[-2:], composed.sections) == (b"e\n", {"Banner": 39})


def test_the_printer_finds_the_newest_file_of_a_name() -> None:
    repository = _native.Repository()
    printer = _native.Printer(repository, str, print, id, print)
    names = [f"{i}.c" for i in range(6)]
    for _ in range(2):
        newest = [repository.create_generic(name) for name in names]
        # The last ones first: those are what the printer still knows of the round before.
        assert [printer.target(name) for name in names[::-1] + names] == newest[::-1] + newest
        assert printer.target(names[5]) == printer.target("5.c") == newest[5]


def test_a_large_text_is_in_its_place() -> None:
    repository = _native.Repository()
    repository.create_generic("a.c")
    printer = _native.Printer(repository, str, print, id, print)
    texts = ["a\n", "b\n" * 2**17, "c\n", "d\n" * 2**20]
    for text in texts:
        printer.section("Enums", "a.c")
        printer.write(text)
        printer.close()
    assert repository.section_text(0, "Enums") == "".join(texts)
    assert bytes(repository.compose(0)).decode() == "".join(texts)


def test_the_repository_lives_as_long_as_its_users() -> None:
    repository = _native.Repository()
    repository.create_generic("a.c")
    printer = _native.Printer(repository, str, print, id, print)
    handle = repository.handle()
    del repository
    gc.collect()
    printer.section("Enums", "a.c")
    printer.write("x")
    printer.close()

    class Owner:
        def find(self, _: object) -> int:
            return 0

    owner: Any = Owner()
    owner.printer = _native.Printer(_native.Repository(), str, print, owner.find, print)
    alive = weakref.ref(owner)
    del owner
    gc.collect()
    assert alive() is None and "orbel.HandleBase" in repr(handle)
