"""A command that has nothing to do says so without running, and never when something changed."""

from __future__ import annotations

import os
import shutil
import sys
import time
from collections.abc import Callable
from pathlib import Path

import pytest

from orv import unchanged
from orv.__main__ import main

# What every run that is not skipped leaves, against its word: one more byte in "calls", "a" or "b".
EXTENSION = """\
import orv, os
from beside import PREFIX
try:
    from optional import PREFIX
except ImportError:
    pass
open(os.environ["CALLS"], "a").write("a")
@orv.pure
@orv.filter
def prefixed(name):
    return PREFIX + name
"""
SCRIPT = """\
import orv, os
open(os.environ["CALLS"], "a").write("b")
@orv.pure
def fill():
    repo.FileList[0].getFileSection("BANNER_SECTION").addContent("SCRIPT\\n")
fill()
"""
FILES = {
    "orv.toml": '[run.a]\ntemplate = "t/main.j2"\ntemplates = ["more"]\nmodel = ["m=models/*.json",'
    ' "one.yaml"]\nschema = "schema.json"\nextend = "e.py"\nformat-all = true\n'
    'format = "sh f.sh style"\nout = "out/a"\nstamp = "stamp"\ndepfile = "d"\n'
    'manifest = "made.json"\n'
    '[run.b]\ntemplate = "t/b.j2"\nscript = "s.py"\nout = "out/b"\nfile-mode = "640"\n',
    "t/main.j2": '{{ warn("odd") }}{% for n, v in m.items() %}{% file n ~ ".c" %}'
    '{% section "Banner" %}'
    '{{ (n ~ v.x ~ one ~ depends("named"|safe)) | prefixed }}{% include "i.j2" %}\n'
    '{% include "none.j2"|safe ignore missing %}\n{% user "u" %}{% enduser %}\n'
    "{% endsection %}{% endfile %}{% endfor %}",
    "t/b.j2": '{% file "b.c" %}{% section "Banner" %}b{% endsection %}{% endfile %}'
    '{% file "none.c" %}{% endfile %}',
    "more/i.j2": "included",
    "models/x.json": '{"x": 1}',
    "one.yaml": "one: 1",
    "schema.json": '{"properties": {"one": {"type": "integer"}}}',
    "e.py": EXTENSION,
    "s.py": SCRIPT,
    "beside.py": 'PREFIX = "p"\n',
    "searched/first/none.py": "",
    "searched/second/optional.py": 'PREFIX = "o"\n',
    "f.sh": "cat; cat $1",
    "style": "/* style */\n",
    "named": "",
}


def write(path: str, text: str) -> Callable[[Path], object]:
    return lambda tree: (tree / path).write_text(text)


def edit(path: str, old: str, new: str) -> Callable[[Path], object]:
    """Give a file other bytes, but the size and the time that it had."""

    def change(tree: Path) -> None:
        found = (tree / path).stat()
        text = (tree / path).read_text()
        assert old in text and len(old) == len(new)
        (tree / path).write_text(text.replace(old, new))
        os.utime(tree / path, ns=(found.st_atime_ns, found.st_mtime_ns))

    return change


def move(tree: Path) -> None:
    os.rename(tree / "more", tree / "t/more")
    os.symlink("t/more", tree / "more")


# What changes between two commands, and which runs the second does.
CHANGES: list[tuple[Callable[[Path], object], str]] = [
    (lambda tree: None, ""),
    (lambda tree: os.utime(tree / "t/main.j2"), ""),
    (lambda tree: write("one.yaml", (tree / "one.yaml").read_text())(tree), ""),
    (edit("t/main.j2", "odd", "ODD"), "a"),
    (edit("more/i.j2", "included", "INCLUDED"), "a"),
    (write("t/none.j2", "there"), "a"),
    (write("t/i.j2", "shadows"), "a"),
    (lambda tree: os.unlink(tree / "t/i.j2"), "a"),
    (edit("models/x.json", "1", "2"), "a"),
    (write("models/y.json", '{"x": 3}'), "a"),
    (lambda tree: os.unlink(tree / "models/y.json"), "a"),
    (edit("one.yaml", "1", "5"), "a"),
    (write("schema.json", "{}"), "a"),
    (edit("e.py", "PREFIX + name", "name + PREFIX"), "a"),
    (edit("s.py", "SCRIPT", "script"), "b"),
    (edit("beside.py", '"p"', '"q"'), "a"),
    (write("searched/first/optional.py", 'PREFIX = "f"'), "ab"),
    (edit("style", "style", "STYLE"), "a"),
    (write("f.sh", "cat; cat $1; echo"), "a"),
    (write("out/a/.clang-format", ""), "a"),
    (write("named", "1"), "a"),
    (edit("out/a/x.c", "INCLUDED", "included"), "a"),
    (edit("out/a/x.c", "BEGIN u */\n", "BEGIN u */\n"), ""),
    (lambda tree: os.unlink(tree / "out/b/b.c"), "b"),
    (lambda tree: os.chmod(tree / "out/b/b.c", 0o600), "b"),
    (write("out/b/.orv-1.tmp", "left"), "b"),
    (edit("out/b/.orv-state.json", "b.c", "c.c"), "b"),
    (lambda tree: os.unlink(tree / "stamp"), "a"),
    (write("d", "other"), "a"),
    (move, "a"),
    (edit("orv.toml", "640", "644"), "ab"),
]


def generate(tree: Path, *arguments: str) -> tuple[int, str, str]:
    """The exit code and what is printed by a command of its own, begun now."""
    child = os.fork()
    if child == 0:
        os.chdir(tree)
        for descriptor in (1, 2):
            path = str(tree.parent / f"stream{descriptor}")
            os.dup2(os.open(path, os.O_WRONLY | os.O_CREAT | os.O_TRUNC), descriptor)
        sys.stdout, sys.stderr = open(1, "w"), open(2, "w")
        sys.argv = ["orv", "generate", "--jobs=1", *arguments]
        unchanged.STARTED = time.time_ns()
        code = main()
        sys.stdout.flush()
        os._exit(code)
    code = os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])
    output, error = ((tree.parent / f"stream{stream}").read_text() for stream in (1, 2))
    return code, output, error


def state_of(tree: Path) -> dict[str, object]:
    return {
        str(path.relative_to(tree)): (path.read_bytes(), path.stat().st_mode)
        for path in sorted(tree.rglob("*"))
        if path.is_file()
    }


def is_ever_skipped(tree: Path, *arguments: str, tries: int = 9) -> bool:
    """Whether a run is skipped at last: what has just changed is not trusted at once."""
    for _ in range(tries):
        assert generate(tree, *arguments)[0] == 0, generate(tree)
        if not runs_done():
            return True
        time.sleep(unchanged.RACY / 1e9)
    return False


def runs_done() -> str:
    """The runs that were done since the last call."""
    calls = Path(os.environ["CALLS"])
    done = calls.read_text() if calls.exists() else ""
    calls.write_text("")
    return "".join(sorted(done))


def test_changes(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    tree, twin = tmp_path / "tree", tmp_path / "twin"
    if not hasattr(pytest.importorskip("orbel"), "load"):
        pytest.skip("the host's Python package is not built")
    monkeypatch.setenv("CALLS", str(tmp_path / "calls"))
    monkeypatch.setattr(unchanged, "RACY", 50_000_000)
    for folder in ("second", "first"):
        monkeypatch.syspath_prepend(tree / "searched" / folder)
    for path, text in FILES.items():
        (tree / path).parent.mkdir(parents=True, exist_ok=True)
        (tree / path).write_text(text)
    for number, (change, runs) in enumerate(CHANGES):
        assert is_ever_skipped(tree)
        shutil.copytree(tree, twin, symlinks=True)
        change(tree)
        begun = time.time()
        found = generate(tree), state_of(tree)
        assert (number, runs_done()) == (number, runs)
        if found[0][0] == 0:
            assert (tree / "stamp").stat().st_mtime > begun - 0.1
            again = generate(tree, "--always"), state_of(tree)
            assert (again[0][2], again[1]) == (found[0][2], found[1])
            assert runs or again == found
            runs_done()
        else:
            shutil.rmtree(tree)
            os.rename(twin, tree)
        shutil.rmtree(twin, ignore_errors=True)
    assert is_ever_skipped(tree, "--jobs", "2")
    for path in ("e.py", "s.py"):
        text = (tree / path).read_text()
        (tree / path).write_text(text.replace("@orv.pure\n", ""))
        assert not is_ever_skipped(tree, tries=3)
        (tree / path).write_text(text)
    edit("more/i.j2", "INCLUDED", "included")(tree)
    runs_done()
    assert (generate(tree, "--jobs", "2")[0], runs_done()) == (0, "a")


# A run that makes a model of others, one beside it in the same folder, one for each model, and one
# with the label of one of these.
RUNS = {
    "orv.toml": '[run.first]\ntemplate = "first.j2"\nmodel = "first.json"\nout = "made"\n'
    'extend = "e.py"\n[run.beside]\ntemplate = "beside.j2"\nset = "id=b"\nout = "made"\n'
    'extend = "e.py"\n[run.each]\ntemplate = "each.j2"\nfor-each = "m=models/*.json"\n'
    'model = "n=made/made.json"\nout = "gen/{m}"\ndepfile = "d"\nstamp = "s"\noutputs = "o"\n'
    'manifest = "gen/{m}.json"\nextend = "e.py"\nformat = "sh f.sh style"\nformat-all = true\n'
    '[run."each, m=models/x.json"]\ntemplate = "b.j2"\nout = "like"\n',
    "e.py": "import orv, os\n@orv.pure\n@orv.prepare\ndef note(model):\n    with open"
    '(os.environ["CALLS"], "a") as calls:\n        calls.write(model.get("id") or model["m"]["id"])\n'
    "    return model\n",
    "first.j2": '{% file "made.json" as text %}{% section "Text" %}{"v": {{ v }}}{% endsection %}'
    "{% endfile %}",
    "first.json": '{"id": "f", "v": 1}',
    "beside.j2": FILES["t/b.j2"],
    "b.j2": FILES["t/b.j2"],
    "each.j2": '{{ warn("of " ~ m.id) }}{% file "none.c" %}{% endfile %}{% file "a.c" %}'
    '{% section "Banner" %}{{ m.id }}{{ n.v }}{% endsection %}{% endfile %}',
    "models/x.json": '{"id": "x"}',
    "models/y.json": '{"id": "y"}',
    "f.sh": "cat; cat $1",
    "style": "/* style */\n",
}

# What changes, the runs that are done then, and the exit code.
STEPS: list[tuple[Callable[[Path], object], str, int]] = [
    (lambda tree: None, "", 0),
    (edit("models/x.json", "x", "X"), "X", 0),
    (write("models/z.json", '{"id": "z"}'), "z", 0),
    (lambda tree: os.unlink(tree / "models/x.json"), "", 0),
    (edit("style", "style", "STYLE"), "yz", 0),
    (edit("first.json", "1", "2"), "bfyz", 0),
    (edit("beside.j2", "b{%", "c{%"), "b", 0),
    # The state that two runs have in common has changed since the first one was done.
    (edit("each.j2", "of ", "to "), "fyz", 0),
    (write("models/y.json", "{"), "", 1),
    (edit("models/z.json", "z", "Z"), "Z", 1),
    (write("models/y.json", '{"id": "Y"}'), "Y", 0),
    (edit("gen/z/a.c", "Z", "z"), "Z", 1),
    (edit("gen/z/a.c", "z", "Z"), "", 0),
    (lambda tree: shutil.rmtree(tree / "gen/y"), "Y", 0),
    (write("gen/y.json", "other"), "Y", 0),
    (lambda tree: os.unlink(tree / "d"), "", 0),
    (write("orv.toml", RUNS["orv.toml"].replace("id=b", "id=B")), "BYZf", 0),
]


@pytest.mark.parametrize("jobs", ["1", "2"])
def test_changes_of_single_runs(tmp_path: Path, monkeypatch: pytest.MonkeyPatch, jobs: str) -> None:
    monkeypatch.setenv("CALLS", str(tmp_path / "calls"))
    monkeypatch.setattr(unchanged, "RACY", 50_000_000)
    tree = tmp_path / "tree"
    for path, text in RUNS.items():
        (tree / path).parent.mkdir(parents=True, exist_ok=True)
        (tree / path).write_text(text)
    for _ in range(2):
        assert generate(tree, "--jobs", jobs)[0] == 0
    runs_done()
    for number, (change, runs, code) in enumerate(STEPS):
        change(tree)
        time.sleep(unchanged.RACY / 1e9)
        found = generate(tree, "--jobs", jobs)
        assert (number, runs_done(), found[0]) == (number, runs, code)
        before = state_of(tree)
        again = generate(tree, "--jobs", jobs, "--always")
        assert (number, *again[::2], state_of(tree)) == (number, *found[::2], before)
        runs_done()


def test_coarse_times(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    """File systems may count in steps of two seconds, in which a file can change unseen."""
    exact = unchanged.signature_of

    def coarse(found: os.stat_result) -> unchanged.Signature:
        mode, device, inode, size, *times = exact(found)
        bytes_time, file_time = (time - time % unchanged.RACY for time in times)
        return mode, device, inode, size, bytes_time, file_time

    monkeypatch.setattr(unchanged, "signature_of", coarse)
    tree = tmp_path / "tree"
    tree.mkdir()
    (tree / "b.j2").write_text(FILES["t/b.j2"])
    run = ("b.j2", "--out", "out")
    assert [generate(tree, *run)[0] for _ in range(2)] == [0, 0]
    edit("out/b.c", "b", "c")(tree)
    assert generate(tree, *run)[0] == 1
