"""Models of every format, merged, and the ones that are refused."""

from __future__ import annotations

import json
import tomllib
from io import BytesIO, TextIOWrapper
from pathlib import Path
from typing import Any
from xml.etree import ElementTree

import pytest
from conftest import Command

from orv.errors import ModelError
from orv.models.element import Element
from orv.models.model import Setting, build_model
from orv.models.sources import ModelSource

SAME = {"name": "m", "on": True, "sizes": [1, 2], "in": {"x": 1.5}}
SAME_IN = {
    "m.json": '\ufeff{"name": "m", "on": true, "sizes": [1, 2], "in": {"x": 1.5}}',
    "m.yaml": "name: m\non: true\nsizes: [1, 2]\nin: {x: 1.5}\n",
    "m.yml": "%YAML 1.2\n---\nbase: &b {x: 1.5}\n"
    'name: m\n"on": true\nsizes: [1, 2]\nin: {<<: *b}\n',
    "m.toml": 'name = "m"\non = true\nsizes = [1, 2]\n[in]\nx = 1.5\n',
}

# As many names that are given twice as a message lists.
REPEATED = "\n".join(f':1:{n}: the name "a" is given twice in one object' for n in range(9, 150, 7))

# What is refused, with the whole message behind the file's name.
REFUSED: dict[str, tuple[str | bytes, str]] = {
    "m.txt": ("", ": a model's name ends in .json, .yaml, .yml, .toml, .csv, .xml"),
    "syntax.json": ('{"a":\n 1,}', ":2:4: missing a name for object member"),
    "twice.json": (
        '{"a": {"b": [],\n "b": {"c": 1}}, "a": 2, "b": 3,\n 4',
        ':2:2: the name "b" is given twice in one object\n'
        ':2:18: the name "a" is given twice in one object\n:3:2: missing a name for object member',
    ),
    "many.json": ("{" + '"a": 1,' * 22 + "4", REPEATED),
    "closed.json": ("{" + '"a": 1,' * 22 + '"b": 1}', REPEATED),
    "nan.json": ("[NaN]", ":1:2: invalid value"),
    "nul.json": ('{"a":\n["\\u0000"]}', ":2:2: a model cannot hold a NUL character"),
    "raw.json": (b'{"a": 1}\n\0', ":2:1: a model cannot hold a NUL character"),
    "deep.json": ("[" * 100000, ":1:500: the model is nested more than 499 deep"),
    "large.json": ("[1e999]", ":1:2: number too big to be stored in double"),
    "number.json": ("[1e9.5]", ":1:5: missing a comma or ']' after an array element"),
    "long.json": ("[1" + 5000 * "0" + "]", ":1:2: an integer of 5001 digits is too long"),
    "digits.json": ("{1" + 500 * "0" + ": 1}", ":1:2: missing a name for object member"),
    "half.json": (
        '["\\udc00"]',
        ":1:2: the text holds half of a surrogate pair, which is no character",
    ),
    "latin.json": (b'[\n"\xe9"]', ":2:2: expected UTF-8, got the byte 0xE9"),
    "deep.yaml": ("[" * 100000, ":1:500: the model is nested more than 499 deep"),
    "syntax.yaml": ("a: [1\nb: 2", ":2:2: did not find expected ',' or ']'"),
    "nan.yaml": ("a: .nan", ":1:4: a model cannot hold .nan, which is no finite number"),
    "binary.yaml": ("\na: !!binary AAAA", ":2:4: the tag !!binary is not supported"),
    "time.yaml": ("a: !!timestamp x", ":1:4: the tag !!timestamp is not supported"),
    "bool.yaml": ("a: !!bool x", ':1:4: "x" is not of the tag !!bool'),
    "tag.yaml": (
        "!!python/object/apply:os.system [id]",
        ":1:1: the tag !!python/object/apply:os.system is not supported",
    ),
    "key.yaml": ("a:\n  1: x", ":2:3: the key 1 is a number; put it in quotes"),
    "true.yaml": ("true: x", ":1:1: the key true is a boolean; put it in quotes"),
    "list.yaml": ("? [a]\n: 1", ":1:3: expected a text for a key, got a list"),
    "twice.yaml": (
        'on: 1\nb: 2\n"on": 3\n',
        ':3:1: the name "on" is given twice in one object',
    ),
    "two.yaml": ("a: 1\n---\nb: 1", ":2:1: a model is one document; this is another one"),
    "self.yaml": ("a: &s\n- *s", ":2:3: the alias *s is inside of what it refers to"),
    "merge.yaml": ("<<: 1", ":1:5: expected a mapping or a list of mappings to merge"),
    "laughs.yaml": (
        "a0: &a0 [ha]\n"
        + "".join(f"a{i}: &a{i} [{', '.join([f'*a{i - 1}'] * 9)}]\n" for i in range(1, 30)),
        ":8:45: aliases lead to more than 10000000 values",
    ),
    "merges.yaml": (
        "- &a {" + ", ".join(f"k{i}" for i in range(2000)) + "}\n" + 2000 * "- {<<: *a}\n",
        ":1002:8: merge keys add more than 2000000 entries",
    ),
    "stairs.yaml": (
        "a0: &a0 []\n" + "".join(f"a{i}: &a{i} [*a{i - 1}]\n" for i in range(1, 600)),
        ":499:14: with the alias *a497 the model is nested more than 499 deep",
    ),
    "syntax.toml": (
        "a = \n",
        ":1:5: Error while parsing key-value pair: expected value, saw '\\n'",
    ),
    "dots.toml": ("a" + ".a" * 100000 + " = 1", ":1:1000: the model is nested more than 499 deep"),
    "braces.toml": (
        "a = " + "{" + 200 * ("b" + ".b" * 300 + " = {") + "}" * 201,
        ":1:1010: the model is nested more than 499 deep",
    ),
    "inf.toml": ("[a]\nb = inf", ":2:5: a model cannot hold a number that is not finite"),
    "year.toml": ("a = 0000-01-01", ":1:5: the date is out of range"),
    "empty.csv": ("\n", ":1:1: expected a line with the names of the columns"),
    "twice.csv": ("a,a\n", ':1:1: the column "a" is given twice'),
    "short.csv": ('a,b\n"\n",2\n3\n', ":4:1: expected 2 fields, got 1"),
    "open.csv": ('a,b\n1,"2\n', ":2:3: the quotes that open here are never closed"),
    "behind.csv": ('a,b\n1,"2"3\n', ":2:6: expected a comma or a new line behind the quotes"),
    "syntax.xml": ("<a>\n</b>", ":2:3: mismatched tag"),
    "laughs.xml": (
        "<!DOCTYPE a [\n<!ENTITY b0 'haha'>\n"
        + "".join(f"<!ENTITY b{i} '{f'&b{i - 1};' * 10}'>\n" for i in range(1, 9))
        + "]><a>&b8;</a>",
        ":11:6: the entities expand to more than 20 times the size of the document",
    ),
    "defaults.xml": (
        f"<!DOCTYPE a [<!ATTLIST b c CDATA '{'x' * 100000}'>]>\n<a>{'<b/>' * 9999}</a>",
        ":2:684: entities and attribute defaults expand to more than 16 MiB or 1048576 elements"
        " and attributes",
    ),
    "attributes.xml": (
        "<!DOCTYPE a [<!ATTLIST b "
        + " ".join(f"a{i} CDATA ''" for i in range(2000))
        + f">]>\n<a>{'<b/>' * 9999}</a>",
        ":2:2128: entities and attribute defaults expand to more than 16 MiB or 1048576 elements"
        " and attributes",
    ),
    "entities.xml": (
        "<!DOCTYPE a [\n" + "".join(f"<!ENTITY b{i} ''>\n" for i in range(1002)) + "]><a/>",
        ":1002:16: the document declares more than 1000 entities",
    ),
    "declared.xml": (
        "<!DOCTYPE a [\n<!ATTLIST a\n"
        + "".join(f"a{i} CDATA ''\n" for i in range(10002))
        + ">]><a/>",
        ":10003:14: the document declares more than 10000 attributes",
    ),
    "outside.xml": (
        '<!DOCTYPE a [<!ENTITY b SYSTEM "file:///etc/passwd">]><a>&b;</a>',
        ":1:58: the document uses an entity from another document, which is not read",
    ),
    "subset.xml": (
        '<!DOCTYPE r PUBLIC "-//x//y"\n "x.dtd">\n<r a="&foo;"/>',
        ":3:1: undefined entity",
    ),
    "utf16.xml": (
        '<!DOCTYPE r SYSTEM "x.dtd"><r a="&foo;"/>'.encode("utf-16"),
        ":1:21: the document takes declarations from elsewhere, which are not read",
    ),
    "parameter.xml": (
        '<!DOCTYPE r [\n<!ENTITY % foo "">%foo; ]><r a="&foo;"/>',
        ":2:19: the document takes declarations from elsewhere, which are not read",
    ),
    "deep.xml": ("<a>" * 100000, ":1:1498: the model is nested more than 499 deep"),
}


def write(folder: Path, name: str, text: str | bytes) -> str:
    path = folder / name
    path.write_bytes(text.encode() if isinstance(text, str) else text)
    return str(path)


def read(path: str, warnings: list[str] | None = None) -> Any:
    """The value of a model file of any format."""
    return build_model(
        [ModelSource("m", path)], [], (warnings if warnings is not None else []).append
    ).values["m"]


@pytest.mark.parametrize("name", SAME_IN)
def test_formats_agree(name: str, tmp_path: Path) -> None:
    model = read(write(tmp_path, name, SAME_IN[name]))
    model.pop("base", None)
    assert model == SAME and list(model) == list(SAME)


@pytest.mark.parametrize("name", REFUSED)
def test_refused(name: str, tmp_path: Path) -> None:
    text, reason = REFUSED[name]
    path = write(tmp_path, name, text)
    with pytest.raises(ModelError) as raised:
        read(path)
    assert str(raised.value).replace("\n" + path, "\n") == path + reason


def test_scalars_of_yaml(tmp_path: Path) -> None:
    values: dict[str, object] = {
        "yes": "yes", "~": None, "Null": None, "TRUE": True, "2024-01-01": "2024-01-01",
        "1_000": "1_000", "0x1F": 31, "0o17": 15, "-12": -12, "1.5": 1.5, "1.10": 1.1, "017": 17,
        "1e3": 1000.0, "+1": 1, "-.5": -0.5, ".": ".", "1.2.3": "1.2.3", "e3": "e3", "''": "",
        "!!str 1": "1", "!!float 1": 1.0, "! 1": "1", "9" * 30: int("9" * 30),
    }  # fmt: skip
    warnings: list[str] = []
    path = write(tmp_path, "m.yaml", "".join(f"- {written}\n" for written in values))
    model = read(path, warnings)
    assert list(map(repr, model)) == list(map(repr, values.values()))
    assert warnings == [
        f"{path}:{line}: {written} is a number and prints as {printed}; put it in quotes to keep it"
        " as it is written"
        for line, written, printed in [
            (11, "1.10", "1.1"), (12, "017", "17"), (13, "1e3", "1000.0"), (14, "+1", "1"),
            (15, "-.5", "-0.5"), (21, "1", "1.0"),
        ]
    ]  # fmt: skip


def test_merge_keys_of_yaml(tmp_path: Path) -> None:
    text = """
a: &a {x: 1, y: 1}
b: &b {y: 2, z: [2]}
"<<": text
one: {y: 3, <<: *a}
both:
  <<: [*a, {x: 0}, *b]
  z: &z 3
alias: *z
? *z2
: &z2 k
""".replace(
        "? *z2\n: &z2 k\n", "key: &k k\n*k : 4\n"
    )
    built = build_model([ModelSource(None, write(tmp_path, "m.yaml", text))], [])
    model = built.values
    assert list(model.pop("both").items()) == [("x", 1), ("y", 1), ("z", 3)]
    assert list(model["one"].items()) == [("x", 1), ("y", 3)]
    assert (model["<<"], model["alias"], model["k"]) == ("text", 3, 4)
    lines = [built.places.place_of(model["one"], key) for key in ("x", "y")]
    assert [str(line).rpartition(":")[2] for line in lines] == ["2", "5"]


def test_toml_as_python_reads_it(tmp_path: Path) -> None:
    text = '''z = 1\na.b.c = [1, {x = 2}]\n"q.r" = """\n{[."""\n[t.u]\nd = 1979-05-27T07:32:00-08:00
t = 07:32:00.5\n[[n]]\nx = 1979-05-27\n[t]\nv = 'a.b'\n[[n]]\n'''
    assert read(write(tmp_path, "m.toml", text)) == tomllib.loads(text)


def test_rows_of_csv(tmp_path: Path) -> None:
    text = 'name,note\r\n\r\na,"x, ""y""\nz"\r\nb,\n'
    built = build_model([ModelSource("m", write(tmp_path, "m.csv", text))], [])
    rows = built.values["m"]
    assert rows == [{"name": "a", "note": 'x, "y"\nz'}, {"name": "b", "note": ""}]
    assert str(built.places.place_of(rows[1], "note")).endswith("m.csv:5")


def test_xml_elements(tmp_path: Path) -> None:
    text = (
        "<?xml version='1.0'?><!-- <!DOCTYPE --><!DOCTYPE r PUBLIC '-//x' \"y.dtd\" [\n"
        "<!ENTITY who 'w&#38;amp;'><!ENTITY hi '<d>hi &who;</d>'><!ATTLIST c m CDATA 'd'>\n]>"
        '<r><!-- x --><c n="1">a<b>b</b>&lt;</c>\n<c n="&who;"/>&hi;</r>'
    )
    built = build_model([ModelSource(None, write(tmp_path, "m.xml", text))], [])
    root: Element = built.values["r"]
    first, second = root.all("c")
    assert (first.attributes, first.text, first.content[0]) == ({"n": "1", "m": "d"}, "ab<", "a")
    assert (second.attributes["n"], root.children[2].text) == ("w&", "hi w&")
    assert (root.line, second.line, root.first("e")) == (3, 4, None)
    assert built.places.path_of(second, "n") == "r/c[2]/@n"
    assert str(built.places.place_of(second, "n")).endswith("m.xml:4")


def test_xml_is_what_another_parser_makes_of_it(tmp_path: Path) -> None:
    registry = Path("/usr/share/khronos-api/gl.xml")
    text = '<?xml version="1.0" encoding="ISO-8859-1"?>\n'
    text += '<r a="&lt;\xe9">x&#233;<![CDATA[<]]>y<b/>z</r>'
    (tmp_path / "latin.xml").write_text(text, encoding="latin-1")
    for path in (tmp_path / "latin.xml", registry):
        model = read(str(path))
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


def test_models_merge_by_name(tmp_path: Path) -> None:
    a = write(tmp_path, "a.json", '{"x": {"p": 1, "q": [1]},\n "y": 1}')
    b = write(tmp_path, "b.toml", '[x]\nq = [2]\nr = "t"\n')
    c = write(tmp_path, "c.json", "[3]")
    arguments = ["x.p=v1.10", "x.n=-12", "z.l=[1, null]", 'z.t="5"', "z.u=007", "y="]
    arguments.append(".".join("a" * 499) + "=1")
    model, _, places, files, _ = build_model(
        [ModelSource.parse(a), ModelSource.parse(b), ModelSource.parse(f"list={c}")],
        [Setting.parse(argument) for argument in arguments],
    )
    assert len(repr(model.pop("a"))) == 499 * 7 - 6
    assert model == {
        "x": {"p": "v1.10", "q": [2], "r": "t", "n": -12},
        "y": "",
        "list": [3],
        "z": {"l": [1, None], "t": "5", "u": "007"},
    }
    assert files == [a, b, c]
    x = model["x"]
    found = [places.place_of(x, key) for key in ("p", "q", "r", "n", "new")]
    assert found == ["--set x.p", f"{b}:2", f"{b}:3", "--set x.n", f"{a}:1"]
    assert [places.path_of(x["q"], 0), places.path_of(x)] == ["x.q[0]", "x"]


CONFLICTS = [
    (["a.json"], {"a.json": "[1]"}, "a.json:1: the model is a list, not an object with names;"
     " give it a name: --model NAME=a.json"),
    (["a.json", "b.yaml"], {"a.json": '{"y":\n1, "z": 1}', "b.yaml": "y: {}\nz: 2"},
     'b.yaml:1: "y" is already at a.json:2; give a model a name of its own: --model NAME=b.yaml\n'
     'b.yaml:2: "z" is already at a.json:2; give a model a name of its own: --model NAME=b.yaml'),
    (["a.xml", "b.xml"], {"a.xml": "<r/>", "b.xml": "\n<r/>"}, 'b.xml:2: "r" is already at'
     " a.xml:1; give a model a name of its own: --model NAME=b.xml"),
    (["m=*.json"], {}, "*.json: no file has such a name"),
    (["*.json"], {"a.json": "1"}, "*.json: give the models of a pattern a name:"
     " --model NAME=*.json"),
    (["m=a.*"], {"a.json": "1", "a.xml": "<r/>"}, 'a.xml: the name "a" is taken by a.json'),
    (["m=-"], {}, "the model from standard input is one of -:json, -:yaml, -:toml, -:csv, -:xml"),
    (["a.json"], {}, "a.json: No such file or directory"),
]  # fmt: skip


@pytest.mark.parametrize("arguments, files, message", CONFLICTS)
def test_sources_that_do_not_go_together(
    arguments: list[str],
    files: dict[str, str],
    message: str,
    tmp_path: Path,
    monkeypatch: pytest.MonkeyPatch,
) -> None:
    monkeypatch.chdir(tmp_path)
    for name, text in files.items():
        write(tmp_path, name, text)
    with pytest.raises(ModelError) as raised:
        build_model(map(ModelSource.parse, arguments), [])
    assert str(raised.value) == message


def test_patterns_and_standard_input(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.chdir(tmp_path)
    (tmp_path / "d").mkdir()
    (tmp_path / "e" / "f").mkdir(parents=True)
    for name, text in {"d/b.c.json": "{}", "d/a.xml": "<r/>", "[x].json": "[1]"}.items():
        write(tmp_path, name, text)
    monkeypatch.setattr("sys.stdin", TextIOWrapper(BytesIO(b"a,b\n1,2\n")))
    sources = ["m=d/*", "in=-:csv", "x=[x].json", "n=**/b*.json"]
    model, _, places, files, folders = build_model(map(ModelSource.parse, sources), [])
    assert list(model["m"]) == ["a", "b.c"] and model["m"]["a"]["r"].tag == "r"
    assert (model["in"], model["x"]) == ([{"a": "1", "b": "2"}], [1])
    assert files == ["d/a.xml", "d/b.c.json", "[x].json", "d/b.c.json"]
    assert folders == ["d", ".", "e", "e/f"]
    assert places.place_of(model["in"][0], "a") == "<stdin>:2"


def test_places_follow_what_scripts_change(tmp_path: Path) -> None:
    rows = ",\n".join(f'{{"n": {i},\n\n"t": "x"}}' for i in range(70000))
    path = write(tmp_path, "m.json", f'{{"a b": [{rows}],\n "s": [1, 2,\n 3]}}')
    model, _, places, _, _ = build_model([ModelSource(None, path)], [])
    row, s = model["a b"][69999], model["s"]
    assert places.place_of(row, "t") == f"{path}:{69999 * 3 + 3}"
    assert places.place_of(model["a b"], 69999) == f"{path}:{69999 * 3 + 1}"
    assert places.path_of(row, "t") == "['a b'][69999].t"
    assert places.place_of(s, 2) == f"{path}:{70000 * 3 + 2}"
    row["new"] = 1
    assert places.place_of(row, "new") == f"{path}:{69999 * 3 + 1}"
    del row["n"]
    s.sort(reverse=True)
    assert places.place_of(row, "t") == f"{path}:{69999 * 3 + 1}"
    assert places.place_of(s, 2) == f"{path}:{70000 * 3 + 1}"
    assert (places.place_of([]), places.path_of({}, "a")) == (None, None)


@pytest.mark.parametrize("text", ["[NaN]", '{"a":1,"a":2}', '"\\u0000"', "[1", "[" * 100000])
def test_wrong_json_is_no_setting(text: str) -> None:
    with pytest.raises(ModelError, match="^x: "):
        Setting.parse(f"x={text}")


def test_settings_end_with_a_message_at_any_depth() -> None:
    with pytest.raises(ValueError, match="expected at most 499 names in KEY, got 60000"):
        Setting.parse(".".join("a" * 60000) + "=1")


SCHEMA = """
$schema: http://json-schema.org/draft-07/schema#
properties:
  vars:
    items:
      properties: {type: {enum: [int, float]}, name: {type: string}}
      patternProperties: {^x_: {}}
      additionalProperties: false
      required: [name]
  x: {type: string}
"""


def test_a_schema_names_the_lines_of_the_model(orv: Command) -> None:
    model = '{"vars": [\n{"name": "a",\n"type": "text"},\n{"type": "int",\n"x_a": 1, "bits": 2}]}'
    files = {"m__json": model, "s__yaml": SCHEMA}
    done = orv("model", "--model", "m.json", "--schema", "s.yaml", "--set", "x=1", **files)
    assert (done.returncode, done.stderr) == (
        1,
        "error: --set x: x: 1 is not of type 'string'\n"
        "m.json:3: vars[0].type: 'text' is not one of ['int', 'float']\n"
        "m.json:4: vars[1]: 'name' is a required property\n"
        "m.json:5: vars[1].bits: 'bits' does not match any of the regexes: '^x_'\n",
    )
    for schema, message in [
        ('{"type": 1}', "s.json: 1 is not valid under any of the given schemas"),
        ('{"$ref": "http://x/y"}', 's.json: the reference to "http://x/y" leads out of the schema'),
        ('{"$ref": "#"}', "s.json: the schema refers to itself without end"),
    ]:
        done = orv("model", "--model", "m.json", "--schema", "s.json", s__json=schema)
        assert done.stderr == f"error: {message}\n"


def test_the_command_prints_the_model(orv: Command) -> None:
    toml = "d = 2026-01-31\n[a]\n'x y' = [1,\n {}]\n"
    files = {"m__toml": toml, "x__xml": "<r n='1'>t\n<s/></r>"}
    run = ("model", "--model", "m.toml", "--model", "x.xml", "--set", "a.z=q")
    assert json.loads(orv(*run, **files).stdout) == {
        "d": "2026-01-31",
        "a": {"x y": [1, {}], "z": "q"},
        "r": {"tag": "r", "attributes": {"n": "1"}, "content": ["t\n", {"tag": "s"}]},
    }
    assert orv(*run, "--places").stdout.splitlines() == [
        'm.toml:1: d = "2026-01-31"',
        "m.toml:3: a['x y'][0] = 1",
        "m.toml:4: a['x y'][1] = {}",
        '--set a.z: a.z = "q"',
        'x.xml:1: r.attributes.n = "1"',
        'x.xml:1: r.content[0] = "t\\n"',
        'x.xml:2: r.content[1] = {"tag": "s"}',
    ]
