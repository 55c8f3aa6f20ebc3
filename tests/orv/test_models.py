"""Models of every format, merged, and the ones that are refused."""

from __future__ import annotations

from pathlib import Path
from xml.etree import ElementTree

import pytest

from orv.errors import ModelError
from orv.models.model import ModelSource, Setting, build_model, load_model
from orv.models.xmlmodel import Element

SAME = {"name": "m", "on": True, "sizes": [1, 2], "in": {"x": 1.5}}
SAME_IN = {
    "m.json": '\ufeff{"name": "m", "on": true, "sizes": [1, 2], "in": {"x": 1.5}}',
    "m.yaml": "name: m\non: true\nsizes: [1, 2]\nin: {x: 1.5}\n".replace("on:", '"on":'),
    "m.yml": 'base: &b {x: 1.5}\nname: m\n"on": true\nsizes: [1, 2]\nin: {<<: *b}\n',
    "m.toml": 'name = "m"\non = true\nsizes = [1, 2]\n[in]\nx = 1.5\n',
}

REFUSED = {
    "m.txt": ("", "a model's name ends in .json, .yaml, .yml, .toml, .xml"),
    "syntax.json": ('{"a":\n 1,}', "line 2: Expecting property name enclosed in double quotes"),
    "twice.json": ('{"a": 1, "a": 2}', 'the name "a" is given twice in one object'),
    "nan.json": ("[NaN]", "NaN is no JSON value"),
    "nul.json": ('{"a": ["\\u0000"]}', "the model holds a NUL character, which no file of text"),
    "deep.json": ("[" * 100000, "the model is nested too deeply"),
    "deep.yaml": ('["' * 100000, "line 1: "),
    "deeper.yaml": ("[" * 100000, "line 1: the model is nested more than 499 deep"),
    "large.json": ("[1e999]", "the model holds inf, which is no finite number"),
    "nan.yaml": ("a: .nan", "the model holds nan, which is no finite number"),
    "key.json": ('{"a\\u0000": 1}', "the model holds a NUL character"),
    "key.yaml": ("? !!binary AAAA\n: 1", "the model holds binary data"),
    "latin.json": (b'"\xe9"', "'utf-8' codec can't decode byte 0xe9 in position 1"),
    "tag.yaml": ("!!python/object/apply:os.system [id]", "line 1: could not determine a"),
    "twice.yaml": ("a: 1\nb: 2\na: 3\n", 'line 3: the name "a" is given twice'),
    "binary.yaml": ("a: !!binary AAAA", "the model holds binary data, which templates cannot"),
    "syntax.toml": ("a = \n", "Invalid value (at line 1, column 5)"),
    "syntax.xml": ("<a>\n</b>", "line 2: mismatched tag"),
    "laughs.xml": (
        '<!DOCTYPE a [\n<!ENTITY b "ha"><!ENTITY c "&b;&b;&b;">]><a>&c;</a>',
        'line 2: the document declares the entity "b", which is refused',
    ),
    "outside.xml": (
        '<!DOCTYPE a [<!ENTITY b SYSTEM "file:///etc/passwd">]><a>&b;</a>',
        'line 1: the document declares the entity "b", which is refused',
    ),
    "subset.xml": (
        '<!DOCTYPE r SYSTEM "x.dtd">\n<r a="&foo;">a&foo;b</r>',
        "line 1: the document refers to another document, which is refused",
    ),
    "unknown.xml": (
        '<!DOCTYPE r [\n%foo; ]><r a="&foo;">a&foo;b</r>',
        'line 2: the document uses the entity "foo", which it does not declare',
    ),
    "deep.xml": ("<a>" * 100000, "line 1: elements are nested more than 499 deep"),
}


def write(folder: Path, name: str, text: str | bytes) -> str:
    path = folder / name
    path.write_bytes(text.encode() if isinstance(text, str) else text)
    return str(path)


@pytest.mark.parametrize("name", SAME_IN)
def test_formats_agree(name: str, tmp_path: Path) -> None:
    model = load_model(write(tmp_path, name, SAME_IN[name]))
    assert isinstance(model, dict)
    model.pop("base", None)
    assert model == SAME


@pytest.mark.parametrize("name", REFUSED)
def test_refused(name: str, tmp_path: Path) -> None:
    text, reason = REFUSED[name]
    path = write(tmp_path, name, text)
    with pytest.raises(ModelError) as raised:
        load_model(path)
    assert str(raised.value).startswith(f"{path}: {reason}")


def test_xml_elements(tmp_path: Path) -> None:
    path = write(tmp_path, "m.xml", '<r><!-- x --><c n="1">a<b>b</b>&lt;</c><c/>\n</r>')
    model = load_model(path)
    assert isinstance(model, dict) and list(model) == ["r"]
    root: Element = model["r"]
    first = root.all("c")[0]
    assert (first.attributes, first.text, first.content[0]) == ({"n": "1"}, "ab<", "a")
    assert (len(root.all("c")), root.first("d")) == (2, None)


def test_xml_is_what_another_parser_makes_of_it(tmp_path: Path) -> None:
    registry = Path("/usr/share/khronos-api/gl.xml")
    text = '<?xml version="1.0" encoding="ISO-8859-1"?>\n'
    text += '<r a="&lt;\xe9">x&#233;<![CDATA[<]]>y<b/>z</r>'
    (tmp_path / "latin.xml").write_text(text, encoding="latin-1")
    for path in (tmp_path / "latin.xml", registry):
        model = load_model(str(path))
        assert isinstance(model, dict)
        waiting = [(ElementTree.parse(path).getroot(), *model.values())]
        while waiting:
            theirs, ours = waiting.pop()
            content = [theirs.text, *(part for child in theirs for part in (child, child.tail))]
            assert (ours.tag, ours.attributes) == (theirs.tag, theirs.attrib)
            assert ours.text == "".join(theirs.itertext())
            assert [part for part in ours.content if isinstance(part, str)] == [
                part for part in content if isinstance(part, str)
            ]
            assert [c for c in ours.content if not isinstance(c, str)] == ours.children
            waiting += zip(theirs, ours.children, strict=True)


def test_yaml_keeps_shared_parts_shared_and_gives_sets_an_order(tmp_path: Path) -> None:
    laughs = "a0: &a0 [ha]\n" + "".join(
        f"a{i}: &a{i} [{', '.join([f'*a{i - 1}'] * 9)}]\n" for i in range(1, 30)
    )
    text = laughs + "m: !!omap [s: !!set {b, c, a}]\nself: &s [*s]\n"
    model = load_model(write(tmp_path, "m.yaml", text))
    assert isinstance(model, dict) and model["m"] == [("s", ["a", "b", "c"])]


def test_models_merge_by_name(tmp_path: Path) -> None:
    a = write(tmp_path, "a.json", '{"x": {"p": 1, "q": [1]}, "y": 1}')
    b = write(tmp_path, "b.toml", 'y = 2\n[x]\nq = [2]\nr = "t"\n')
    c = write(tmp_path, "c.json", "[3]")
    arguments = ["x.p=v1.10", "x.n=-12", "z.l=[1, null]", 'z.t="5"', "z.u=007", "z.e="]
    model = build_model(
        [ModelSource.parse(a), ModelSource.parse(b), ModelSource.parse(f"list={c}")],
        [Setting.parse(argument) for argument in arguments],
    )
    assert model == {
        "x": {"p": "v1.10", "q": [2], "r": "t", "n": -12},
        "y": 2,
        "list": [3],
        "z": {"l": [1, None], "t": "5", "u": "007", "e": ""},
    }
    with pytest.raises(ModelError, match="the model is a list, not an object with names"):
        build_model([ModelSource(None, c)], [])


@pytest.mark.parametrize("text", ["[NaN]", '{"a":1,"a":2}', '"\\u0000"', "[1", "[" * 100000])
def test_wrong_json_is_no_setting(text: str) -> None:
    with pytest.raises(ModelError):
        Setting.parse(f"x={text}")
