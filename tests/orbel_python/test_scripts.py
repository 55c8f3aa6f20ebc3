"""What scripts see of packages, classes and values."""

import inspect
import pydoc
import re
import subprocess
import sys
from typing import Any

import orbel
import pytest


def test_a_script_inspects_and_extends_the_files_of_a_run(varn: Any) -> None:
    repository = varn.VarnFileRepository()
    assert repository.FileList.shape == (1, 0)
    file = repository.createGenericFile("model.c")
    file.Type = "SystemBody"
    file.SystemsInFile = ["<Root>", "<S1>"]
    section = file.getFunctionsSection()
    assert section.addFunction("step", "void step(void) {}") is None
    assert (file.Name, file.Type, file.SystemsInFile) == (
        "model.c",
        "SystemBody",
        ["<Root>", "<S1>"],
    )
    assert (section.getNumberOfFunctions(), section.getFunctionName(1)) == (1, "step")
    assert type(section) is varn.FunctionsSection
    assert isinstance(file, varn.VarnFile) and isinstance(file, orbel.Object)
    repository.createDataTypesFile("model_types.h")
    files = repository.FileList
    assert (files.class_name, files.shape, files.heterogeneous) == ("Varn.VarnFile", (1, 2), True)
    assert [type(each).__name__ for each in files] == ["VarnGenericFile", "VarnDataTypesFile"]
    assert files[0] == file and hash(files[0]) == hash(file) and files[1] != file
    assert repository.findFileByName("model_types.h") == files[1]
    assert repository.findFileByName("Model.c") is None


def test_functions_and_their_names_have_indices_of_their_own(varn: Any) -> None:
    section = varn.FunctionsSection()
    section.addFunction("f", "body")
    section.addContent("a body without a name")
    assert section.getFunction(2) == "a body without a name"
    get, get_name = section.getFunction, section.getFunctionName
    for refused, index in (
        (get, 0),
        (get, 3),
        (get_name, 0),
        (get_name, 2),
        (get_name, 2**32 - 1),
    ):
        with pytest.raises(orbel.Error, match=f"^The index {index} is outside 1 to "):
            refused(index)


def test_sections_by_the_names_of_their_kinds(varn: Any) -> None:
    file = varn.VarnModuleFile("m.h")
    assert file.getFileSection("TYPEDEFS_SECTION") == file.getTypedefsSection()
    absent = file.getFileSection("BANNER_SECTION")
    absent.addContent("lost")
    assert absent.isEmpty() and file.getFileSection("typedefs_section") == absent
    assert not file.hasSection("BANNER_SECTION") and not file.hasSection("typedefs_section")


@pytest.mark.parametrize("name", ["VarnGenericFile", "VarnDataTypesFile", "VarnModuleFile"])
def test_section_getters_reach_their_kinds(varn: Any, name: str) -> None:
    shorter = {
        "Enums": "Enumerations",
        "ForwardDeclarations": "ForwardDecls",
        "ExternFunctions": "ExternFcns",
        "FunctionPrototypes": "FcnPrototypes",
    }
    file = getattr(varn, name)("a.c")
    getters = re.findall(r"\bget(?!File)(\w+)Section\b", " ".join(dir(file)))
    assert len(getters) >= 3
    for getter in getters:
        words = re.findall("[A-Z][a-z]+", shorter.get(getter, getter))
        kind = "_".join([*words, "Section"]).upper()
        assert file.hasSection(kind), kind
        assert getattr(file, f"get{getter}Section")() == file.getFileSection(kind)


def test_classes_are_built_from_the_definitions_of_any_module(sample: Any) -> None:
    assert [name for name in dir(sample) if not name.startswith("_")] == [
        "Box",
        "Item",
        "Shape",
        "echo",
        "living",
    ]
    assert (sample.__doc__, sample.__version__) == ("Boxes and items", "1.2.3.4")
    assert sample is orbel.load("orbel_sample") is orbel.package("Sample")
    assert sample.Box.__mro__[1:3] == (sample.Item, orbel.package("orbel.mixin").Heterogeneous)
    box = sample.Box("b")
    part = box.import__("wheel")  # the host's "import"; "import_" is another method of the box
    assert box.find("wheel") == part and getattr(box, "__len___") == 1
    box.import_()
    assert box.find("wheel") is None
    with pytest.raises(RuntimeError, match="the box is stuck"):
        box.fail("the box is stuck")


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
        "[]",
        "['FileSection', 'Heterogeneous', 'IncludesSection']",
    ]


def test_help_shows_the_host_signatures(varn: Any, sample: Any) -> None:
    plain_text: Any = vars(pydoc)["plaintext"]
    text = pydoc.render_doc(varn.FunctionsSection, renderer=plain_text)
    assert (
        " |  addFunction(self, text1, text2, /)\n"
        " |      addFunction(Varn.FunctionsSection, char, char) returns void\n"
    ) in text
    text = pydoc.render_doc(varn.VarnGenericFile, renderer=plain_text)
    assert text.split("\n")[2:4] == [
        "class VarnGenericFile(VarnFile)",
        " |  VarnGenericFile(text, /)",
    ]
    assert " |  Name\n |      char vector, read only\n" in text
    assert str(inspect.signature(sample.Box("b").isSameAs)) == "(object, /)"
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
    assert repr(sample.Box.isSameAs) == (
        "<method isSameAs(Sample.Item, Sample.Item) returns logical scalar>"
    )


@pytest.mark.parametrize(
    "value, back",
    [
        (None, None),
        (True, True),
        (2**32 - 1, 2**32 - 1),
        (-0.5, -0.5),
        ("", ""),
        ("h\u00e9\U0001f600\0", "h\u00e9\U0001f600\0"),
        (b"a\xffb\xc3\x28", "a\udcffb\udcc3("),
        ([], []),
        (("a", b"b", 3, [None, True]), ["a", "b", 3, [None, True]]),
        (orbel.StringArray(["a", b"\xff"]), orbel.StringArray(["a", "\udcff"])),
    ],
)
def test_values_pass_there_and_back(sample: Any, value: object, back: object) -> None:
    result = sample.echo(value)
    assert result == back and type(result) is type(back)


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
