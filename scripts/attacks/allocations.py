"""Calls and runs whose memory runs out: one allocation fails, or all that are not made of freed
memory. Each call of a script and each file of a run is as before or as after, and nothing leaks.
"""

from __future__ import annotations

import ctypes
import functools
import gc
import os
import random
import resource
from collections.abc import Callable
from pathlib import Path
from typing import Any

import orbel
from disk import LAYER, Found, Project, spread

# Of a run; the interpreter itself may hang without memory.
_MOST_SECONDS = 5

TEXT = "a text that is too long for a string to hold without allocating"
NAMES = ["s", TEXT, TEXT + "\udcff"]
Call = Callable[[Any], object]
CALLS: list[Call] = [
    lambda varn: varn.createGenericFile(TEXT),
    lambda varn: varn.createDataTypesFile("b.c"),
    lambda varn: varn.findFileByName("a.c"),
    lambda varn: varn.FileList,
    lambda varn: setattr(varn.FileList[0], "Type", TEXT),
    lambda varn: setattr(varn.FileList[0], "SystemsInFile", NAMES),
    lambda varn: setattr(varn.FileList[0], "Shared", True),
    lambda varn: varn.FileList[0].getFunctionsSection().addFunction(TEXT, TEXT),
    lambda varn: varn.FileList[0].getFunctionsSection().getFunction(1),
    lambda varn: varn.FileList[0].getFileSection("Typedefs").addContent(TEXT),
    lambda varn: varn.FileList[0].getTypedefsSection().getContent(),
    lambda varn: varn.FileList[0].getIncludesSection().addInclude(TEXT, True),
    lambda varn: setattr(varn.FileList[0], "SystemsInFile", [7]),
    lambda varn: varn.createGenericFile(7),
]


@functools.cache
def _number(name: str) -> ctypes.c_long:
    """A variable of allocations.cpp. Its value is set without an allocation."""
    return ctypes.c_long.in_dll(LAYER, name)


def _repository(varn: Any, name: str) -> Any:
    repository = varn.VarnFileRepository()
    file = repository.createGenericFile("a.c")
    file.getFunctionsSection().addFunction(name, TEXT)
    file.getTypedefsSection().addContent(name)
    return repository


def _state(repository: Any) -> str:
    sections = ("Functions", "Typedefs", "Includes")
    return repr(
        [
            (file, file.Type, file.SystemsInFile, file.Shared)
            + tuple(file.getFileSection(name).getContent() for name in sections)
            for file in repository.FileList
        ]
    )


def _passes(call: Call, repository: Any, allocations: int, exhausted: bool) -> bool:
    """Whether the call does without the allocation; errors of the call itself do."""
    armed = _number("faults_allocations")
    _number("faults_exhausted").value = exhausted
    armed.value = allocations
    try:
        try:
            call(repository)
        finally:
            armed.value = -1
    # The interpreter itself loses some of its errors.
    except (MemoryError, SystemError):
        return False
    except (orbel.Error, TypeError):
        pass
    return True


def _check_call(varn: Any, call: Call, name: str, exhausted: bool) -> None:
    """Have each allocation of the call fail, in turn, on a repository of its own."""
    repository = _repository(varn, name)
    before = _state(repository)
    _passes(call, repository, -1, exhausted)
    after = _state(repository)
    failed = 0
    for allocations in range(10_000):
        # Numbers that are no objects, which would be counted.
        blocks = (ctypes.c_long * 4)()
        for i in range(len(blocks)):
            repository = _repository(varn, name)
            passes = _passes(call, repository, allocations, exhausted)
            if _state(repository) != (after if passes else before):
                raise Found(f"call {CALLS.index(call)}, allocation {allocations}: half done")
            del repository
            gc.collect()
            blocks[i] = _number("faults_blocks").value
        if all(more > less for less, more in zip(blocks, blocks[1:])):
            raise Found(f"call {CALLS.index(call)}, allocation {allocations}: leaks {list(blocks)}")
        failed += not passes
        if passes and allocations > failed + 20:
            return


def memory_of_scripts(_: Path, case: int, chance: random.Random) -> None:
    varn = orbel.load("varn_filepackaging")
    # What is there already is left out of the collections.
    gc.freeze()
    name = "n" * chance.randrange(1, 5000)
    _check_call(varn, CALLS[case % len(CALLS)], name, case // len(CALLS) % 2 == 1)


def failing_allocation(folder: Path, case: int, _: random.Random) -> None:
    _run_out(folder, case, False)


def exhausted_memory(folder: Path, case: int, _: random.Random) -> None:
    _run_out(folder, case, True)


def _run_out(folder: Path, case: int, exhausted: bool) -> None:
    allocations = spread(case, _allocations_of_a_run(folder))

    def arm() -> None:
        LAYER.faults_watch_crashes()
        resource.setrlimit(resource.RLIMIT_CPU, (_MOST_SECONDS, _MOST_SECONDS))
        armed = _number("faults_allocations")
        _number("faults_exhausted").value = exhausted
        armed.value = allocations

    project = Project(folder)
    project.check(project.run("new", arm))


@functools.cache
def _allocations_of_a_run(folder: Path) -> int:
    many = 2**40

    def note_at_the_end() -> None:
        leave = os._exit

        def leave_note(code: int) -> None:
            (folder / "allocations").write_text(str(many - _number("faults_allocations").value))
            leave(code)

        vars(os)["_exit"] = leave_note
        _number("faults_allocations").value = many

    Project(folder).run("new", note_at_the_end)
    return int((folder / "allocations").read_text())


ATTACKS = [memory_of_scripts, failing_allocation, exhausted_memory]
