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

# What every run that is not skipped leaves, against its word: one more byte in "calls".
EXTENSION = """\
import orv, os
from beside import PREFIX
try:
    from optional import PREFIX
except ImportError:
    pass
open(os.environ["CALLS"], "a").write("x")
@orv.pure
@orv.filter
def prefixed(name):
    return PREFIX + name
"""
SCRIPT = """\
import orv
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
    '{{ (n ~ v.x ~ one ~ depends("named")) | prefixed }}{% include "i.j2" %}\n'
    '{% include "none.j2" ignore missing %}\n{% user "u" %}{% enduser %}\n'
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


# What changes between two runs, and whether the second is skipped all the same.
CHANGES: list[tuple[Callable[[Path], object], bool]] = [
    (lambda tree: None, True),
    (lambda tree: os.utime(tree / "t/main.j2"), True),
    (lambda tree: write("one.yaml", (tree / "one.yaml").read_text())(tree), True),
    (edit("t/main.j2", "odd", "ODD"), False),
    (edit("more/i.j2", "included", "INCLUDED"), False),
    (write("t/none.j2", "there"), False),
    (write("t/i.j2", "shadows"), False),
    (lambda tree: os.unlink(tree / "t/i.j2"), False),
    (edit("models/x.json", "1", "2"), False),
    (write("models/y.json", '{"x": 3}'), False),
    (lambda tree: os.unlink(tree / "models/y.json"), False),
    (edit("one.yaml", "1", "5"), False),
    (write("schema.json", "{}"), False),
    (edit("e.py", "PREFIX + name", "name + PREFIX"), False),
    (edit("s.py", "SCRIPT", "script"), False),
    (edit("beside.py", '"p"', '"q"'), False),
    (write("searched/first/optional.py", 'PREFIX = "f"'), False),
    (edit("style", "style", "STYLE"), False),
    (write("f.sh", "cat; cat $1; echo"), False),
    (write("out/a/.clang-format", ""), False),
    (write("named", "1"), False),
    (edit("out/a/x.c", "INCLUDED", "included"), False),
    (edit("out/a/x.c", "BEGIN u */\n", "BEGIN u */\n"), True),
    (lambda tree: os.unlink(tree / "out/b/b.c"), False),
    (lambda tree: os.chmod(tree / "out/b/b.c", 0o600), False),
    (write("out/b/.orv-1.tmp", "left"), False),
    (edit("out/b/.orv-state.json", "b.c", "c.c"), False),
    (lambda tree: os.unlink(tree / "stamp"), False),
    (write("d", "other"), False),
    (move, False),
    (edit("orv.toml", "640", "644"), False),
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
        before = count_of_runs()
        assert generate(tree, *arguments)[0] == 0, generate(tree)
        if count_of_runs() == before:
            return True
        time.sleep(unchanged.RACY / 1e9)
    return False


def count_of_runs() -> int:
    calls = Path(os.environ["CALLS"])
    return calls.stat().st_size if calls.exists() else 0


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
    for number, (change, is_skipped) in enumerate(CHANGES):
        assert is_ever_skipped(tree)
        shutil.copytree(tree, twin, symlinks=True)
        change(tree)
        before, begun = count_of_runs(), time.time()
        found = generate(tree), state_of(tree)
        assert (number, count_of_runs() == before) == (number, is_skipped)
        if is_skipped:
            assert (tree / "stamp").stat().st_mtime > begun - 0.1
            assert found == (generate(tree, "--always"), state_of(tree))
        if found[0][0] != 0:
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
    before = count_of_runs()
    assert generate(tree, "--jobs", "2")[0] == 0 and count_of_runs() > before


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
