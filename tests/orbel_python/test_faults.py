"""Whatever a script does wrong: a clean error, nothing changed, never a crash."""

import copy
import gc
import pickle
import subprocess
import sys
import threading
from collections.abc import Callable, Iterator
from typing import Any

import orbel
import pytest

CLEAN = (orbel.Error, TypeError, AttributeError)


class Hostile(str):
    """A text whose own code must never run."""

    def __str__(self) -> str:
        raise KeyboardInterrupt

    __repr__ = __index__ = __len__ = __iter__ = __eq__ = __hash__ = __str__


def nested(depth: int) -> list[Any]:
    value: list[Any] = []
    for _ in range(depth):
        value = [value]
    return value


def endless() -> list[Any]:
    value: list[Any] = ["a"]
    value.append(value)
    return value


class Indexed:
    def __index__(self) -> int:
        raise KeyboardInterrupt


UNFIT: list[Any] = [
    None,
    True,
    0,
    -1,
    2**32,
    2**200,
    -(2**200),
    1.5,
    float("nan"),
    1j,
    "",
    "a\0b",
    "\ud800",
    b"\xff",
    [],
    ["a", 1],
    ["\ud800"],
    [None],
    (),
    nested(1000),
    endless(),
    [endless()] * 2,
    {},
    set(),
    object(),
    object,
    len,
    orbel,
    Indexed(),
    [Indexed()],
    orbel.StringArray(["x"]),
    range(3),
    bytearray(b"x"),
]


def state(repository: Any) -> str:
    """Everything that scripts can see of the files of a repository."""
    return repr([[read(file, name) for name in dir(file)] for file in repository.FileList])


def read(file: Any, name: str) -> Any:
    member = getattr(type(file), name)
    if isinstance(member, orbel.Method) and len(member.signature) == 2:
        section = member(file)
        return [section.getContent(), section.isEmpty()]
    return getattr(file, name) if type(member).__name__ == "getset_descriptor" else None


def calls(host_class: Any) -> Iterator[Callable[[Any, Any], Any]]:
    """Every way to hand a value to the members of an object, found by reflection."""
    for name in dir(host_class):
        member = getattr(host_class, name)
        if isinstance(member, orbel.Method):
            for count in (1, 2, 3, 50):
                if count != len(member.signature) - 2:
                    yield lambda target, value, m=member, n=count: m(target, *[value] * n)
                    continue
                for place in range(count):
                    yield lambda target, value, m=member, n=count, p=place: m(
                        target, *["x"] * p, value, *[Hostile("x")] * (n - p - 1)
                    )
            yield lambda target, value, m=member: m(value)
            yield lambda target, value, m=member: m(target, "x", keyword=value)
        elif type(member).__name__ == "getset_descriptor" and not name.startswith("_"):
            yield lambda target, value, n=name: setattr(target, n, value)
            yield lambda target, value, m=member: m.__get__(value)


def sample_objects(varn: Any) -> list[Any]:
    repository = varn.VarnFileRepository()
    file = repository.createGenericFile("a.c")
    section = file.getFunctionsSection()
    section.addFunction("f", "g")
    return [repository, file, section, file.getIncludesSection()]


def test_unfit_values_everywhere(varn: Any) -> None:
    foreign = [*UNFIT, varn.VarnFile, varn.VarnGenericFile("b.c"), sample_objects(varn)[0].FileList]
    refused = 0
    for place in range(4):
        objects = sample_objects(varn)
        for call in calls(type(objects[place])):
            for value in foreign:
                before = state(objects[0])
                try:
                    call(objects[place], value)
                except CLEAN as error:
                    assert str(error)
                    assert state(objects[0]) == before, (error, value)
                    refused += 1
                else:
                    objects = sample_objects(varn)
    assert refused > 3000


def doubling(levels: int) -> list[Any]:
    """A small list that has two to the power of ``levels`` elements in all."""
    nested: list[Any] = []
    for _ in range(levels):
        nested = [nested, nested]
    return nested


def test_errors_name_what_was_wrong(varn: Any) -> None:
    section = varn.FunctionsSection()
    file = varn.VarnGenericFile("a.c")
    for call, message in (
        (
            lambda: section.getFunction(-1),
            "argument 1 of Varn.FunctionsSection.getFunction is an int outside 0 to 4294967295",
        ),
        (
            lambda: section.addFunction("f", {}),
            "argument 2 of Varn.FunctionsSection.addFunction cannot be of the type dict",
        ),
        (
            lambda: setattr(file, "Type", "\ud800"),
            "the value of Varn.VarnFile.Type has a lone surrogate, which no host text holds",
        ),
        (
            lambda: setattr(file, "SystemsInFile", ["a", object()]),
            "element 2 of the value of Varn.VarnFile.SystemsInFile cannot be of the type object",
        ),
        (
            lambda: setattr(file, "SystemsInFile", endless()),
            "element 2 of the value of Varn.VarnFile.SystemsInFile is a list that contains itself",
        ),
        (
            lambda: setattr(file, "SystemsInFile", doubling(60)),
            "element 1 of the value of Varn.VarnFile.SystemsInFile holds more than 1000000"
            " elements in lists within lists",
        ),
        (lambda: setattr(file, "Nme", "b.c"), "'VarnGenericFile' object has no attribute 'Nme'"),
        (lambda: delattr(file, "Type"), "Varn.VarnFile.Type cannot be deleted"),
        (
            lambda: varn.VarnFile.hasSection("x"),
            "Varn.VarnFile.hasSection needs an object of the class Varn.VarnFile,"
            " but was given str",
        ),
        (lambda: varn.VarnGenericFile(name="a"), "Varn.VarnGenericFile takes no keyword arguments"),
        (lambda: varn.Nothing, "the package Varn has no class 'Nothing'"),
        (
            lambda: setattr(varn, "x", 1),
            "'x' cannot be set: a package of the host cannot be changed",
        ),
        (
            lambda: orbel.StringArray(["a", 1]),
            "element 2 of a StringArray must be a str or bytes, but is a int",
        ),
    ):
        with pytest.raises(CLEAN) as caught:
            call()
        assert str(caught.value) == message


def test_classes_and_objects_stay_what_they_are(varn: Any) -> None:
    file = varn.VarnGenericFile("a.c")
    for attempt in (
        lambda: type("Mine", (varn.VarnFile,), {}),
        lambda: type(varn.VarnFile)("Mine", (varn.VarnFile,), {}),
        lambda: type.__new__(type(varn.VarnFile), "Mine", (varn.VarnFile,), {}),
        lambda: setattr(varn.VarnFile, "Name", 1),
        lambda: delattr(varn.VarnFile, "Name"),
        lambda: setattr(file, "__class__", varn.FunctionsSection),
        lambda: object.__new__(varn.VarnGenericFile),
        lambda: orbel.Object(),
        lambda: orbel.Object.__new__(varn.VarnFile.__base__),
        lambda: orbel.Method(),
        lambda: copy.copy(file),
        lambda: copy.deepcopy(file),
        lambda: pickle.dumps(file),
        lambda: file < file,
        lambda: varn.VarnFile.Name.__get__(varn.FunctionsSection()),
    ):
        with pytest.raises(CLEAN):
            attempt()
    assert file.Name == "a.c" and copy.copy(varn) is varn


class Destroyer:
    """Destroys an object and empties a list from a finaliser, in the middle of something else."""

    def __init__(self, victim: Any, names: list[Any]) -> None:
        self.victim = victim
        self.names = names
        self.itself = self

    def __del__(self) -> None:
        orbel.destroy(self.victim)
        self.names.clear()


def test_finalisers_that_destroy_what_is_in_use(varn: Any) -> None:
    threshold = gc.get_threshold()
    gc.set_threshold(1)
    try:
        for _ in range(50):
            repository = varn.VarnFileRepository()
            names: list[Any] = [f"\udcff{number}" for number in range(20)]
            files = [repository.createGenericFile(name) for name in names]
            Destroyer(repository, names)
            try:
                files[0].SystemsInFile = names
                assert len(repository.FileList) == 20
            except orbel.Error as error:
                assert error.identifier == "Orbel:InvalidHandle"
    finally:
        gc.set_threshold(*threshold)


def test_threads_share_objects_under_the_lock(varn: Any) -> None:
    section = varn.FunctionsSection()
    interval = sys.getswitchinterval()
    sys.setswitchinterval(1e-6)

    def add() -> None:
        for number in range(300):
            section.addFunction(f"f{number}", "b")
            section.getFunction(section.getNumberOfFunctions())
            varn.VarnFileRepository().createGenericFile("a.c").getFunctionsSection()

    threads = [threading.Thread(target=add) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    sys.setswitchinterval(interval)
    assert section.getNumberOfFunctions() == 1200


def test_nothing_is_left_behind(sample: Any) -> None:
    box = sample.Box("b")
    counted = [None, sample.Box, type(box), sample.Box.isSameAs, *UNFIT]

    def once() -> None:
        for value in UNFIT:
            for call in calls(sample.Box):
                try:
                    call(box, value)
                except (*CLEAN, RuntimeError):
                    pass
        box.import_()

    once()
    before = [sys.getrefcount(each) for each in counted], sample.living()
    for _ in range(5):
        once()
    after = [sys.getrefcount(each) for each in counted], sample.living()
    changes = [abs(a - b) for a, b in zip(after[0], before[0])]
    assert max(changes) < 5 and after[1] == before[1]


def test_a_package_that_was_unloaded() -> None:
    """In a process of its own: a module starts once."""
    script = """
import orbel
sample = orbel.load("orbel_sample")
box = sample.Box("b")
orbel.unload(sample); orbel.unload(sample)
for use in (lambda: sample.Box("c"), lambda: sample.Item, lambda: orbel.package("Sample"),
            lambda: orbel.load("orbel_sample")):
    try:
        use()
    except orbel.Error as error:
        print(error.identifier)
print(box.Label, box.import__("p").Label, "Item" in dir(sample))
"""
    ran = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True)
    assert (ran.returncode, ran.stdout.split("\n")[:5]) == (
        0,
        [
            "Orbel:UnknownClass",
            "Orbel:UnknownPackage",
            "Orbel:UnknownPackage",
            "Orbel:ModuleSpent",
            "b p False",
        ],
    ), ran.stderr
