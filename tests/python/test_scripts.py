"""What scripts see of packages, classes and values."""

import inspect
import pydoc
import subprocess
import sys
from typing import Any

import orbel
import pytest


def test_a_script_inspects_and_extends_the_files_of_a_run(varn: Any) -> None:
    repository = varn.VarnFileRepository()
    file = repository.createGenericFile("model.c")
    file.Type = "SystemBody"
    file.SystemsInFile = ["<Root>", "<S1>"]
    section = file.getFunctionsSection()
    assert section.addFunction("step", "void step(void) {}") is None
    assert (file.Name, file.Type, file.SystemsInFile) == ("model.c", "SystemBody", ["<Root>", "<S1>"])
    assert (section.getNumberOfFunctions(), section.getFunctionName(1)) == (1, "step")
    assert type(section) is varn.FunctionsSection
    assert isinstance(file, varn.VarnFile) and isinstance(file, orbel.Object)
    repository.createDataTypesFile("model_types.h")
    files = repository.FileList
    assert (files.class_name, files.shape, files.heterogeneous) == ("Varn.VarnFile", (1, 2), True)
    assert [type(each).__name__ for each in files] == ["VarnGenericFile", "VarnDataTypesFile"]
    assert files[0] == file and hash(files[0]) == hash(file) and files[1] != file
    assert repository.findFileByName("none.c") is None


def test_classes_are_built_from_the_definitions_of_any_module(sample: Any) -> None:
    assert [name for name in dir(sample) if not name.startswith("_")] == [
        "Box", "Part", "Thing", "echo", "living",
    ]  # fmt: skip
    assert (sample.__doc__, sample.__version__) == ("Boxes and parts", "0.1.2.3")
    assert sample is orbel.load("orbel_zoo") is orbel.package("Sample")
    assert sample.Box.__mro__[1:3] == (sample.Thing, orbel.package("orbel.mixin").Heterogeneous)
    box = sample.Box("b")
    part = box.import__("wheel")  # the host's "import"; "import_" is another method of the box
    assert box.holds(part) and box.last() == part and getattr(box, "__len___") == 1
    box.import_()
    assert box.last() is None
    with pytest.raises(RuntimeError, match="the box is stuck"):
        box.fail()


def test_loading_defines_nothing() -> None:
    """A class is made when it is first asked for, with the classes that it derives from."""
    script = (
        "import orbel; v = orbel.load('varn_filepackaging')\n"
        "def made(): return sorted(c.__name__ for c in of(orbel.Object))\n"
        "def of(c): return [d for s in c.__subclasses__() for d in (s, *of(s))]\n"
        "print(made()); v.IncludesSection; print(made())"
    )
    ran = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, check=True)
    assert ran.stdout.split("\n")[:2] == [
        "[]", "['FileSection', 'Heterogeneous', 'IncludesSection']"
    ]  # fmt: skip


def test_help_shows_the_host_signatures(varn: Any, sample: Any) -> None:
    text = pydoc.render_doc(varn.FunctionsSection, renderer=pydoc.plaintext)
    assert (
        " |  addFunction(self, text1, text2, /)\n"
        " |      addFunction(Varn.FunctionsSection, char, char) returns void\n"
    ) in text
    text = pydoc.render_doc(varn.VarnGenericFile, renderer=pydoc.plaintext)
    assert text.split("\n")[2:4] == ["class VarnGenericFile(VarnFile)", " |  VarnGenericFile(text, /)"]
    assert " |  Name\n |      char vector, read only\n" in text
    assert str(inspect.signature(sample.Box("b").holds)) == "(object, /)"
    assert "class VarnFile(orbel.mixin.Heterogeneous)" in pydoc.plain(pydoc.render_doc(varn))
    assert {"getFileSection", "Type"} <= set(dir(varn.VarnModuleFile("m.c")))


def test_repr_names_class_and_object(varn: Any, sample: Any) -> None:
    repository = varn.VarnFileRepository()
    file = repository.createGenericFile("a\udcff.c")
    assert repr(file) == "<Varn.VarnGenericFile Name='a\\udcff.c'>"
    assert repr(file.getFunctionsSection()).startswith("<Varn.FunctionsSection at 0x")
    assert repr(repository.FileList) == f"<1x1 Varn.VarnFile [{file!r}]>"
    orbel.destroy(repository)
    assert repr(file) == "<Varn.VarnGenericFile, no longer exists>"
    assert repr(sample.Box.holds) == (
        "<method holds(Sample.Box, Sample.Part) returns logical scalar>"
    )


@pytest.mark.parametrize(
    "value, back",
    [
        (None, None),
        (True, True),
        (0, 0),
        (2**32 - 1, 2**32 - 1),
        (-0.5, -0.5),
        ("", ""),
        ("h\u00e9\U0001f600\0", "h\u00e9\U0001f600\0"),
        (b"a\xffb\xc3\x28", "a\udcffb\udcc3("),
        ("a\udcffb", "a\udcffb"),
        ([], []),
        (("a", b"b", 3, [None, True]), ["a", "b", 3, [None, True]]),
        (orbel.StringArray(["a", b"\xff"]), orbel.StringArray(["a", "\udcff"])),
    ],
)
def test_values_pass_there_and_back(sample: Any, value: object, back: object) -> None:
    result = sample.echo(value)
    assert result == back and type(result) is type(back)


def test_lists_of_strings(varn: Any) -> None:
    section = varn.IncludesSection()
    for value, back in (
        (["a.h", b"\xff.h"], ["a.h", "\udcff.h"]),
        (("b.h",), ["b.h"]),
        (orbel.StringArray(["c.h"]), ["c.h"]),
        ([], []),
        (["d.h"], ["d.h"]),
        (None, []),
    ):
        section.RequiredIncludes = value
        assert section.RequiredIncludes == back


def test_messages_have_the_words_of_the_catalogue(varn: Any) -> None:
    def refuse() -> orbel.Error:
        with pytest.raises(orbel.Error) as caught:
            varn.FunctionsSection().getFunction(5)
        return caught.value

    error = refuse()
    assert str(error) == "The index 5 is outside 1 to 0."
    assert (error.identifier, error.arguments) == ("Orbel:IndexOutOfRange", (5, 0))
    orbel.set_message("Orbel:IndexOutOfRange", "kein Index {1}")
    assert str(refuse()) == "kein Index 5"
    orbel.set_message("Orbel:IndexOutOfRange", "The index {1} is outside 1 to {2}.")
