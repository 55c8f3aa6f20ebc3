"""User regions: what people write into generated files stays theirs, whatever is generated next."""

from __future__ import annotations

import os
import shutil
import time
from collections.abc import Callable
from pathlib import Path
from typing import NamedTuple

import pytest

from orv import interface
from orv._native import Markers
from orv.command.main import main
from orv.errors import OutputError
from orv.output.folder import open_folder

BEGIN, END = "/* USER CODE BEGIN %s */", "/* USER CODE END %s */"

# The files of a run: "NAME: ID ID" in each line of the setting `files`.
TEMPLATE = """\
{% for line in files.split(";") %}
{% set name, ids = line.split(":") %}
{% file name.strip() %}{% section "Functions" %}
void {{ text }}(void)
{% for id in ids.split() %}
  {% user id %}
  default
  {% enduser %}
{% endfor %}
{% endsection %}{% endfile %}
{% endfor %}
"""


class Done(NamedTuple):
    code: int
    out: str
    err: str


Generate = Callable[..., Done]


@pytest.fixture
def generate(
    tmp_path: Path, monkeypatch: pytest.MonkeyPatch, capsys: pytest.CaptureFixture[str]
) -> Generate:
    """Runs the command in this process, by default with TEMPLATE in a run with a name."""
    monkeypatch.chdir(tmp_path)
    Path("t.j2").write_text(TEMPLATE)

    def run(files: str, *more: str, text: str = "f", run: str | None = "r") -> Done:
        named = () if run is None else ("--run", run)
        setting = ("--set", f'files="{files}"', "--set", f"text={text}")
        code = main(["generate", "t.j2", "--out", "out", *named, *setting, *more])
        said = capsys.readouterr()
        return Done(code, said.out, said.err)

    return run


def region(id: str, text: str = "  default\n") -> str:
    return f"  {BEGIN % id}\n{text}  {END % id}\n"


def rewrite(path: str, old: str, new: str) -> None:
    data = Path("out", path).read_bytes()
    assert data.count(old.encode()) == 1, (path, data)
    Path("out", path).write_bytes(data.replace(old.encode(), new.encode("latin-1")))


def read(path: str) -> str:
    return Path("out", path).read_bytes().decode("latin-1")


# What someone writes into a region.
WRITTEN = [
    "",
    "\n\n",
    "no indentation\n\t tabs and blanks \n",
    'puts("/* USER CODE END a */"); /* USER CODE BEGIN b */\n',
    "NUL \0, \xff\xfe, \x0c and a \r alone\n",
    "some\r\nlines end\r\ndifferently\n",
    "/* USER CODE BEGIN */\n/* USER CODE\n// USER CODE BEGIN c\n#if 0\n",
    "x;\n" * 100_000,
]


@pytest.mark.parametrize("written", WRITTEN)
def test_text_is_kept_byte_for_byte(generate: Generate, written: str) -> None:
    assert generate("a.c: a b").code == 0
    assert read("a.c") == "void f(void)\n" + region("a") + region("b")
    rewrite("a.c", region("a"), region("a", written))
    before = Path("out/a.c").stat().st_ctime_ns
    # An edit inside a region is none of the file.
    assert generate("a.c: a b").out == "up to date\n"
    assert Path("out/a.c").stat().st_ctime_ns == before
    assert generate("a.c: new b a", "--strict", text="g").code == 0
    assert read("a.c") == "void g(void)\n" + region("new") + region("b") + region("a", written)
    outside = "void g(void)\n"
    rewrite("a.c", outside, "mine\n")
    assert "out/a.c was edited since" in generate("a.c: a b new").err
    assert generate("a.c: a b new", "--edited=overwrite").code == 0
    assert region("a", written) in read("a.c")


def test_line_ends_of_the_old_file(generate: Generate) -> None:
    generate("a.c: a b")
    converted = read("a.c").replace("\n", "\r\n").replace("default", "mine", 1)
    Path("out/a.c").write_bytes(converted.encode())
    assert generate("a.c: a b").out == "up to date\n"
    assert generate("a.c: a b c", text="g").code == 0
    expected = converted.replace("f(", "g(") + region("c").replace("\n", "\r\n")
    assert read("a.c") == expected


# What is done to the text of the file, and what is said of which line.
DAMAGES = [
    (END % "a", "", '5: the user region "b" begins inside of "a", which begins in line 2'),
    (END % "b", "", '5: the user region "b" has no end'),
    (BEGIN % "a", "", '4: the user region "a" ends without a beginning'),
    (END % "a", END % "b", '4: the user region "b" ends inside of "a", which begins in line 2'),
    (END % "a", BEGIN % "a", '4: the user region "a" begins inside of "a", which begins in line 2'),
    ("void f", region("b") + "void f", '8: the user region "b" is there already, in line 1'),
]


@pytest.mark.parametrize(("old", "new", "message"), DAMAGES)
def test_damaged_markers(generate: Generate, old: str, new: str, message: str) -> None:
    generate("a.c: a b; b.c:")
    rewrite("a.c", old, new)
    for mode in ("--edited=overwrite", "--check", "--no-state"):
        assert generate("a.c: a b; b.c:", mode, text="g") == (1, "", f"out/a.c:{message}\n")
    assert "void f" in read("a.c") and read("b.c") == "void f(void)\n"


def test_orphans(generate: Generate) -> None:
    generate("a.c: init never; b.c: x")
    rewrite("a.c", region("init"), region("init", "mine\n"))
    # Never written, so that nothing is lost.
    assert generate("a.c: init; b.c: x").code == 0
    refused = generate("a.c: other inti; b.c: x")
    assert refused == (
        1,
        "",
        "error: nothing was written\n"
        'out/a.c:2: no template has the user region "init" any more; the nearest new one is "inti"'
        " of a.c, at t.j2:6; --orphans=keep moves its text to out/a.c.orphans, --orphans=drop"
        " discards it\n",
    )
    check = generate("a.c: inti; b.c: x", "--check")
    assert check.out == 'changed out/a.c\norphan  "init" of out/a.c:2\n1 outdated, 1 orphaned\n'
    Path("out/a.c.orphans").write_bytes(b"earlier")
    for _ in range(2):
        kept = generate("a.c:; b.c: x", "--orphans=keep")
        assert (kept.code, kept.out) == (0, "changed out/a.c\norphans out/a.c.orphans\n")
        assert kept.err == (
            'out/a.c:2: warning: no template has the user region "init" any more; its text goes to'
            " out/a.c.orphans\n"
        )
        # A text is kept once, and can be put back as it is.
        entry = f"{BEGIN % 'init'}\nmine\n{END % 'init'}\n"
        assert read("a.c.orphans") == "earlier\n" + entry
        generate("a.c: init; b.c: x")
        rewrite("a.c", region("init"), region("init", "mine\n"))
    dropped = generate("a.c:; b.c: x", "--orphans=drop")
    assert dropped == (0, 'changed out/a.c\ndropped "init" of out/a.c:2\n', "")
    assert read("a.c") == "void f(void)\n"
    # What another file has, too, is not lost; a run that was killed may have moved it there.
    generate("a.c: x; b.c: x")
    for name in ("a.c", "b.c"):
        rewrite(name, "default", "both")
    assert generate("a.c:; b.c: x").code == 0 and "both" in read("b.c")


def test_orphans_of_files_that_are_no_longer_made(generate: Generate) -> None:
    generate("a.c: x; b.c: x y; c.c: x")
    rewrite("a.c", "default", "mine")
    rewrite("b.c", region("x"), region("x", "his\n"))
    refused = generate("c.c: x")
    assert [line[:10] for line in refused.err.splitlines()[1:]] == ["out/a.c:2:", "out/b.c:2:"]
    assert generate("c.c: x", "--stale=keep").code == 0
    assert generate("c.c: x").err == refused.err
    rewrite("a.c", "f(void)", "mine(void)")
    for _ in range(2):
        # The edited file stays, its text is kept once.
        assert generate("c.c: x", "--orphans=keep").code == 0
        assert "mine(void)" in read("a.c") and read("a.c.orphans").count("mine") == 1
    rewrite("a.c", "mine(void)", "f(void)")
    rewrite("a.c", "mine", "more")
    assert '"x" any more' in generate("c.c: x").err
    # A text goes from a file that stays to another one and back, and is lost by neither.
    shutil.rmtree("out")
    generate("a.c: x")
    rewrite("a.c", "default", "mine")
    assert "moved" in generate("b.c: x", "--stale=keep").out
    assert generate("a.c: x").out == "removed out/b.c\n"
    assert '"x" any more' in generate("c.c:").err
    shutil.rmtree("out")
    generate("a.c: x; c.c: x")
    rewrite("a.c", "default", "mine")
    # A run without a name removes nothing, so that nothing is lost.
    assert generate("c.c: x", run=None, text="g").code == 1
    kept = generate("c.c: x", "--orphans=keep")
    assert (kept.code, kept.out) == (0, "removed out/a.c\norphans out/a.c.orphans\n")
    assert "mine" in read("a.c.orphans") and not Path("out/a.c").exists()


# What the run makes first, what it makes then, and where the text of the region x of a.c is then;
# without a place it is an orphan.
MOVES = [
    ("a.c: x", "d/a.c: x", "d/a.c"),
    ("a.c: x", "b.c: y x", "b.c"),
    ("a.c: x; a.y: x", "b.c: x; b.y: x", "b.c"),
    ("a.c: x; d/b.c: x", "d/a.c: x; b.c: x", "d/a.c"),
    ("a.c: x; b.c: x", "c.c: x; d.c: x", None),
    ("a.c: x; b.c:", "a.c:; b.c: x", "b.c"),
    ("a.c: x; b.c: y", "a.c: y; b.c: x", None),
    ("a.c: x; b.c: x", "b.c: x", None),
    ("a.c: x", "A.C: x", "A.C"),
]


@pytest.mark.parametrize(("before", "after", "place"), MOVES)
def test_text_moves_with_its_file(
    generate: Generate, before: str, after: str, place: str | None
) -> None:
    generate(before)
    for line in before.split(";"):
        name, _, ids = line.strip().partition(":")
        if ids:
            rewrite(name, "default", f"written in {name}")
    done = generate(after, "--strict")
    if place is None:
        assert done.code == 1 and done.err.startswith("error: nothing was written\nout/a.c:2: no")
        return
    assert done.code == 0, done.err
    assert f'moved   "x" of out/a.c:2 to out/{place}\n' in done.out
    assert region("x", "  written in a.c\n") in read(place)
    assert generate(after).out == "up to date\n"


def test_a_text_is_never_lost_by_state_or_options(generate: Generate) -> None:
    generate("a.c: x")
    rewrite("a.c", "default", "mine")
    mine = read("a.c")
    state = Path("out/.orv-state.json")
    known = state.read_text()
    state.unlink()
    assert "no run made it" in generate("a.c: x", text="g").err
    for more in ("--adopt", "--no-state"):
        assert '"x" any more' in generate("a.c:", more).err
        assert generate("a.c: x", more).code == 0 and read("a.c") == mine
    # A state that never had the region, and another style of markers.
    state.write_text(known.replace('"x"', '"other"'))
    assert '"x" any more' in generate("a.c:").err
    state.write_text(known)
    slashes = ("--markers", "// <{id}> ... // </{id}>")
    assert generate("a.c: x", *slashes).code == 0
    assert read("a.c") == "void f(void)\n  // <x>\n  mine\n  // </x>\n"
    assert '"x" any more' in generate("a.c:", "--edited=overwrite").err
    Path("out/a.c.orphans").symlink_to("/dev/null")
    assert "leads out of the folder out" in generate("a.c:", "--orphans=keep").err
    assert "  mine\n" in read("a.c")


PATTERNS = {
    "# {id} ... # {id}": 'the lines of "# {id} ... # {id}" cannot be told apart',
    "# {id}": 'expected the lines that begin and end a region, with " ... " between them, such as'
    ' "// BEGIN {id} ... // END {id}", got "# {id}"',
    "# a ... # {id}": 'expected text with one {id} after it, got "# a"',
    "{id} ... # {id}": 'expected text with one {id} after it, got "{id}"',
}  # fmt: skip


def test_patterns_of_markers() -> None:
    for pattern, message in PATTERNS.items():
        with pytest.raises(ValueError) as raised:
            Markers(pattern)
        assert str(raised.value) == message
    for id in ("", " x", "x */ y", "x\n", "x\0"):
        with pytest.raises(ValueError, match="expected an identifier that fits into the line"):
            Markers("/* {id} ... /* end {id} */").lines(id)


def test_what_is_written_during_a_run_is_not_written_over(tmp_path: Path) -> None:
    for name in ("old.c", "gone.c"):
        (tmp_path / name).write_text("1\n")
        os.utime(tmp_path / name, (1, 1))
    folder = open_folder(str(tmp_path))
    for name in ("old.c", "new.c", "gone.c"):
        folder.compare(name, b"2\n")
    time.sleep(0.02)
    # As long as before, with the time that they had.
    for name in ("old.c", "new.c", "gone.c"):
        (tmp_path / name).write_text("X\n")
        os.utime(tmp_path / name, (1, 1))
    for name in ("old.c", "new.c"):
        with pytest.raises(OutputError, match=f"{name} was changed while the run was at work"):
            folder.replace(name, b"", None)
    with pytest.raises(OutputError, match="gone.c was changed while the run was at work"):
        folder.remove("gone.c")
    folder.compare("old.c", b"2\n")
    for text in ("X\n", "3\n"):
        assert (tmp_path / "old.c").read_text() == text
        folder.replace("old.c", b"3\n", None)


STYLES = {
    "a.py": ("# USER CODE BEGIN x", "# USER CODE END x"),
    "CMakeLists.txt": ("# USER CODE BEGIN x", "# USER CODE END x"),
    "a.md": ("<!-- USER CODE BEGIN x -->", "<!-- USER CODE END x -->"),
    "a.sql": ("-- USER CODE BEGIN x", "-- USER CODE END x"),
    "a.cpp": (BEGIN % "x", END % "x"),
}
STYLED = """\
{% for name in names %}
{% file name as text %}
one{% user "x" %}two{% enduser %}three
{% endfile %}{% endfor %}
{% file "own.c" markers="// {id} begins ... // {id} ends" %}{% section "Banner" %}
{% user "x" %}{% enduser %}{% endsection %}{% endfile %}
"""


def test_styles(tmp_path: Path) -> None:
    template = tmp_path / "t.j2"
    template.write_text(STYLED)
    run = interface.render(template, {"names": list(STYLES)})
    files = interface.plan(run, tmp_path / "out")
    made = {file.path: file.data.decode() for file in files}
    assert made.pop("own.c") == "// x begins\n// x ends\n"
    assert made == {
        name: f"one\n{begin}\ntwo\n{end}\nthree\n" for name, (begin, end) in STYLES.items()
    }
    interface.write(files, run)
    del files
    (tmp_path / "out/own.c").write_text("// x begins\nmine\n// x ends\n")
    template.write_text(STYLED.replace('user "x"', 'user "y"'))
    run = interface.render(template, {"names": []})
    with pytest.raises(OutputError, match='own.c:1: no template has the user region "x" any more'):
        interface.write(interface.plan(run, tmp_path / "out"), run)


ASKING = """\
{% file "a.c" %}
{% if "printf" in user("x") %}{% section "Includes" %}#include <stdio.h>
{% endsection %}{% endif %}
{% section "Functions" %}{% indent 2 %}{% user "x" %}
printf();
{% enduser %}{% endindent %}
{% if user("z", "b.c") %}z{% endif %}
{% endsection %}
{% endfile %}
{% do warn("once") %}
"""


def test_templates_ask_for_what_will_be_there(generate: Generate) -> None:
    declared = '{% file "b.c" %}{% section "Banner" %}{% user "z" %}{% enduser %}{% endsection %}'
    Path("t.j2").write_text(f"{declared}{{% endfile %}}\n{ASKING}")
    assert generate("").err == "t.j2:11: warning: once\n"
    first = "#include <stdio.h>\n" + region("x", "  printf();\n")
    assert read("a.c") == first
    assert generate("").out == "up to date\n"
    rewrite("a.c", "  printf();\n", "puts();\n")
    rewrite("b.c", "BEGIN z */\n", "BEGIN z */\n\xff\n")
    assert generate("").code == 0
    assert read("a.c") == region("x", "puts();\n") + "z\n"
    assert generate("", "--dry-run").out == "up to date\n"
    # The text comes from a file that is no longer made.
    Path("t.j2").write_text(Path("t.j2").read_text().replace("a.c", "moved.c"))
    assert generate("").code == 0 and read("moved.c") == region("x", "puts();\n") + "z\n"
    Path("t.j2").write_text('{% file "b.c" %}{{ user("y") }}{% endfile %}')
    assert generate("").err == 't.j2:1: the file "b.c" has no user region "y"\n'
    Path("t.j2").write_text(
        '{% file "n.c" %}{% section "Enums" %}{% user "n" %}{{ user("n") }}x{% enduser %}'
        "{% endsection %}{% endfile %}"
    )
    assert generate("").err == (
        't.j2:1: the text of the user region "n" of "n.c" depends on itself: what user() gives'
        " changes it each time\n"
    )


def test_formatter_leaves_kept_text_alone(generate: Generate) -> None:
    Path("t.j2").write_text(TEMPLATE.replace("name.strip()", "name.strip() Indent=true"))
    shout = ("--format", "tr f g")
    assert generate("a.c: x", *shout).code == 0
    assert read("a.c") == "void g(void)\n" + region("x", "  degault\n")
    rewrite("a.c", "degault", "fine")
    assert generate("a.c: x", *shout).out == "up to date\n"
    assert generate("a.c: x", *shout, text="h").code == 0
    assert read("a.c") == "void h(void)\n" + region("x", "  fine\n")
    for damage, said in (
        ("tr U u", "the formatter damaged or moved the markers of user regions"),
        ("sed /END/d", "the formatter damaged the markers of user regions: line 2: the user region"
         ' "x" has no end'),
    ):  # fmt: skip
        damaged = generate("a.c: x", "--format", damage, text="i").err
        assert damaged == f't.j2:3: the file "a.c": {said}\n'
    assert "fine" in read("a.c")
