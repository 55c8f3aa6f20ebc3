"""Who keeps what alive, and what happens to a handle whose object has died."""

import ctypes
import gc
import itertools
import weakref
from typing import Any

import orbel
import pytest


def assert_dead(use: Any) -> None:
    with pytest.raises(orbel.Error) as caught:
        use()
    assert caught.value.identifier == "Orbel:InvalidHandle"


def test_a_handle_keeps_the_owner_that_a_script_made(sample: Any) -> None:
    before = sample.living()
    box = sample.Box("b")
    part = box.import__("wheel")
    again = box.List[0].find("wheel")
    assert again == part and hash(again) == hash(part) and again is not part
    del box, again
    gc.collect()
    assert sample.living() == before + 2 and part.Label == "wheel"
    del part
    assert sample.living() == before


def test_a_handle_outlives_its_object_safely(sample: Any) -> None:
    box = sample.Box("b")
    part, other = box.import__("x"), sample.Item()
    equal = box.find("x")
    box.import_()
    assert not orbel.is_valid(part) and part == equal
    assert_dead(lambda: part.Label)
    assert_dead(lambda: setattr(part, "Label", "z"))
    assert_dead(lambda: box.isSameAs(part))
    orbel.destroy(other)
    assert_dead(lambda: orbel.destroy(other))
    with pytest.raises(orbel.Error, match="a script cannot destroy it"):
        orbel.destroy(box.import__("z"))
    assert orbel.is_valid(box) and box.find("z").Label == "z"


def test_deletion_in_any_order(varn: Any, sample: Any) -> None:
    before = sample.living()
    for order in itertools.permutations(range(4)):
        box = sample.Box("b")
        part = box.import__("p")
        repository = varn.VarnFileRepository()
        objects = [box, part, repository, repository.createGenericFile("a.c").getFunctionsSection()]
        del box, part, repository
        for number in order:
            objects[number] = None
        assert sample.living() == before


def test_an_array_keeps_the_owner_too(varn: Any) -> None:
    repository = varn.VarnFileRepository()
    repository.createGenericFile("a.c")
    alive = weakref.ref(repository)
    files = repository.FileList
    section = files[0].getFunctionsSection()
    del repository
    del files
    section.addFunction("f", "g")
    assert alive() is not None and section.getFunction(1) == "g"
    del section
    assert alive() is None


class Owner:
    wrapped: Any = None


def test_wrapped_objects_keep_what_they_were_wrapped_with(sample: Any) -> None:
    with open("/proc/self/maps") as maps:
        loaded = next(line.split()[-1] for line in maps if "liborbel_sample.so" in line)
    library = ctypes.CDLL(loaded)
    library.makeLibraryBox.restype = ctypes.c_void_p
    new_capsule = ctypes.pythonapi.PyCapsule_New
    new_capsule.restype = ctypes.py_object
    new_capsule.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_void_p]
    address = library.makeLibraryBox()
    capsule = new_capsule(address, b"orbel.HandleBase", None)
    owner = Owner()
    alive = weakref.ref(owner)
    box = orbel.wrap(capsule, owner)
    assert type(box) is sample.Box and box.Label == "kept by the library"
    part = box.import__("p")
    owner.wrapped = part  # a cycle that only the collector resolves
    del owner, box
    gc.collect()
    assert alive() is not None and part.Label == "p"
    del part
    gc.collect()
    assert alive() is None
    kept = orbel.wrap(capsule, None)
    with pytest.raises(orbel.Error, match="belongs to the library"):
        orbel.destroy(kept)
    library.deleteLibraryBox(ctypes.c_void_p(address))
    assert_dead(lambda: kept.Label)
    for unfit in (None, new_capsule(1, b"other", None)):
        with pytest.raises(TypeError, match='needs a capsule named "orbel.HandleBase"'):
            orbel.wrap(unfit, None)
