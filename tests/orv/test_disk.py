"""Disks that are full, folders that refuse, runs that are killed, and paths that lead elsewhere."""

from __future__ import annotations

import ctypes
import errno
import fcntl
import os
import signal
import struct
import subprocess
import sys
import time
from collections.abc import Callable, Iterator
from pathlib import Path

import pytest
from conftest import Command

as_root = pytest.mark.skipif(os.geteuid() != 0, reason="only root can mount")

TWO_FILES = """\
{% file "a.c" %}{% section "Banner" %}{{ a }}{% endsection %}{% endfile %}
{% file "b.c" %}{% section "Banner" %}{{ b }}{% endsection %}{% endfile %}
"""


@pytest.fixture
def small_disk(tmp_path: Path) -> Iterator[Path]:
    folder = tmp_path / "disk"
    folder.mkdir()
    mount = ["mount", "-t", "tmpfs", "-o", "size=64k", "tmpfs", str(folder)]
    if subprocess.run(mount, capture_output=True, check=False).returncode != 0:
        pytest.skip("mounting is not allowed here")
    yield folder
    subprocess.run(["umount", str(folder)], check=True)


@as_root
def test_full_disk_leaves_every_file_old_or_new(orv: Command, small_disk: Path) -> None:
    run = ("generate", "t.j2", "--out", "disk", "--set")
    assert orv(*run, "a=1", "--set", "b=1", t__j2=TWO_FILES).returncode == 0
    text = TWO_FILES.replace("{{ b }}", "{{ b * 99999 }}")
    full = orv(*run, "a=2", "--set", 'b="2"', t__j2=text)
    assert (full.returncode, full.stdout, full.stderr) == (
        1,
        "",
        "error: disk/b.c cannot be written: No space left on device\n"
        "new  disk/a.c\nold  disk/b.c\n",
    )
    assert {path.name: path.read_text() for path in small_disk.glob("*.c")} == {
        "a.c": "2\n",
        "b.c": "1\n",
    }


@as_root
def test_read_only_folder(orv: Command, small_disk: Path) -> None:
    run = ("generate", "t.j2", "--out", "disk", "--set", "b=1", "--set")
    assert orv(*run, "a=1", t__j2=TWO_FILES).returncode == 0
    subprocess.run(["mount", "-o", "remount,ro", str(small_disk)], check=True)
    refused = orv(*run, "a=2")
    assert (refused.returncode, refused.stdout, refused.stderr) == (
        1,
        "",
        "error: disk/.orv-state.json cannot be written: Read-only file system\n",
    )


MANY = """\
{% for i in range(1500) %}
{% file "%04d.c" % i %}{% section "Banner" %}{{ x * 2000 }}{% endsection %}{% endfile %}
{% endfor %}
"""


@pytest.mark.parametrize("how", [signal.SIGTERM, signal.SIGINT, signal.SIGKILL])
def test_killed_in_the_middle(orv: Command, tmp_path: Path, how: signal.Signals) -> None:
    run = ("generate", "t.j2", "--out", "out", "--quiet", "--set")
    assert orv(*run, 'x="old"', t__j2=MANY).returncode == 0
    last = tmp_path / "out/0040.c"
    before = last.stat().st_ino
    process = subprocess.Popen(
        [sys.executable, "-m", "orv", *run, 'x="new"'],
        cwd=tmp_path,
        stderr=subprocess.PIPE,
        text=True,
    )
    while last.stat().st_ino == before and process.poll() is None:
        time.sleep(0.0005)
    process.send_signal(how)
    _, message = process.communicate()
    texts = {path: path.read_text() for path in sorted((tmp_path / "out").glob("*.c"))}
    assert set(texts.values()) == {"old" * 2000 + "\n", "new" * 2000 + "\n"}
    if how != signal.SIGKILL:
        said = [f"{text[:3]}  out/{path.name}" for path, text in texts.items()]
        assert message == "\n".join(["error: interrupted while writing", *said, ""])
    assert orv(*run, 'x="end"').returncode == 0
    left = [path.name for path in (tmp_path / "out").iterdir() if path.suffix != ".c"]
    assert left == [".orv-state.json"]
    state = (tmp_path / "out/.orv-state.json").read_bytes()
    assert orv(*run, 'x="end"', "--state", "other.json", "--adopt").returncode == 0
    assert (tmp_path / "other.json").read_bytes() == state


def test_temporaries_are_removed_unless_someone_writes_them(orv: Command, tmp_path: Path) -> None:
    report = ("--manifest", "r/m.json")
    run = ("generate", "t.j2", "--out", "out", "--set", "a=1", "--set", "b=1", *report)
    assert orv(*run, t__j2=TWO_FILES).returncode == 0
    left, own = ".orv-0123456789abcdef.tmp", ".orv-0000000000000000.tmp"
    for folder in ("out", "r"):
        (tmp_path / folder / left).touch()
        (tmp_path / folder / own).touch()
    (tmp_path / "out/.orv-d.tmp").mkdir()
    with (tmp_path / "out" / own).open() as held, (tmp_path / "r" / own).open() as other:
        fcntl.flock(held, fcntl.LOCK_EX)
        fcntl.flock(other, fcntl.LOCK_EX)
        assert orv(*run).stdout == "up to date\n"
    names = sorted(str(path.relative_to(tmp_path)) for path in tmp_path.rglob(".orv-*.tmp"))
    assert names == ["out/" + own, "out/.orv-d.tmp", "r/" + own]


def test_modes(orv: Command, tmp_path: Path) -> None:
    run = ("generate", "t.j2", "--out", "out", "--set", "b=1", "--fsync", "--set")
    assert orv(*run, "a=1", "--file-mode", "444", t__j2=TWO_FILES).returncode == 0
    file, same = tmp_path / "out/a.c", tmp_path / "out/b.c"
    assert [path.stat().st_mode & 0o7777 for path in (file, same)] == [0o444, 0o444]
    file.chmod(0o6751)
    assert orv(*run, "a=2").returncode == 0
    assert (file.read_text(), file.stat().st_mode & 0o7777) == ("2\n", 0o751)
    assert orv(*run, "a=3", "--file-mode", "640").returncode == 0
    assert [path.stat().st_mode & 0o7777 for path in (file, same)] == [0o640, 0o640]
    assert "expected an octal mode" in orv(*run, "a=3", "--file-mode", "9").stderr


def test_one_run_at_a_time(orv: Command, tmp_path: Path) -> None:
    run = ("generate", "t.j2", "--out", "out", "--set", "a=1", "--set", "b=1", "--lock-timeout")
    assert orv(*run, "0", t__j2=TWO_FILES).returncode == 0
    folder = os.open(tmp_path / "out", os.O_RDONLY)
    fcntl.flock(folder, fcntl.LOCK_SH)
    assert orv(*run, "0", "--check").returncode == 0
    late = orv(*run, "0", "--always")
    assert (late.returncode, late.stderr) == (
        1,
        "error: another run is using out and has not ended in 0 seconds; --lock-timeout=SECONDS"
        " waits longer\n",
    )
    command = [sys.executable, "-m", "orv", *run, "30", "--always"]
    with subprocess.Popen(command, cwd=tmp_path, stderr=subprocess.PIPE, text=True) as waiting:
        assert waiting.stderr is not None
        said = waiting.stderr.readline()
        assert said == "warning: waiting for another run that is using out\n"
        os.close(folder)
    assert waiting.returncode == 0


SWAP = """
import os, sys
from orv.errors import OutputError
from orv.output.folder import open_folder
folder = open_folder("out")
location = folder.locate("a/b/x.c")
os.rename(sys.argv[1], "moved")
os.symlink(sys.argv[2], sys.argv[1])
actions = (lambda: folder.replace(location, b"new", None), lambda: folder.compare(location, b""),
           lambda: folder.remove(location), lambda: folder.replace("a/b/c/x", b"new", None))
for action in actions:
    try:
        action()
        print("done")
    except (OSError, OutputError) as error:
        print("refused")
try:
    folder.replace("../x.c", b"new", None)
except OSError as error:
    print(error.strerror)
"""


def without_openat2() -> None:
    """Make the kernel say that it does not know openat2(2), as sandboxes do."""
    openat2, allow, no_such_call = 437, 0x7FFF0000, 0x00050000 | errno.ENOSYS
    steps = ((0x20, 0, 0, 0), (0x15, 0, 1, openat2), (0x06, 0, 0, no_such_call),
             (0x06, 0, 0, allow))  # fmt: skip
    code = b"".join(struct.pack("HBBI", *step) for step in steps)
    program = ctypes.create_string_buffer(code)
    filters = struct.pack("HxxxxxxP", len(steps), ctypes.addressof(program))
    prctl = ctypes.CDLL(None, use_errno=True).prctl
    set_filter, no_new_privileges, mode_filter = 22, 38, 2
    assert prctl(no_new_privileges, 1, 0, 0, 0) == 0
    assert prctl(set_filter, mode_filter, filters, 0, 0) == 0


@pytest.mark.parametrize("limit", [None, without_openat2])
def test_links_put_in_the_way_are_not_followed(
    tmp_path: Path, limit: Callable[[], None] | None
) -> None:
    command = [sys.executable, "-c", SWAP]
    for swapped, target in (("out/a", "moved"), ("out/a/b", "../../moved"), ("out", "elsewhere")):
        place = tmp_path / swapped.replace("/", "-")
        (place / "out/a/b").mkdir(parents=True)
        (place / "elsewhere/a/b").mkdir(parents=True)
        (place / "out/a/b/x.c").write_text("old")
        (place / "elsewhere/a/b/x.c").write_text("old")
        done = subprocess.run([*command, swapped, target], cwd=place, capture_output=True,
                              text=True, preexec_fn=limit, check=False)  # fmt: skip
        # The folder that a user names was opened before: it is still written to.
        expected = "done" if swapped == "out" else "refused"
        assert done.stdout == f"{expected}\n" * 4 + "Invalid cross-device link\n", done.stderr
        assert (place / "elsewhere/a/b/x.c").read_text() == "old"
        if swapped != "out":
            assert [p.read_text() for p in (place / "moved").rglob("x*")] == ["old"]


# What a template declares, and what is said about it; {out} is the output folder's full path.
REFUSED = {
    '"/etc/x.c"': 'the path "/etc/x.c" is absolute; it has to be below the output folder',
    '"C:/x.c"': 'the path "C:/x.c" is absolute; it has to be below the output folder',
    '"../x.c"': 'the path "../x.c" climbs out of its folder',
    '"x.c" OutputDirectory="a/../.."': 'the path "a/../../x.c" climbs out of its folder',
    '"x.c" OutputDirectory="/tmp"': 'the path "/tmp" is absolute; it has to be below the output'
    " folder",
    '"link/x.c"': "the link {out}/link leads out of the folder out",
    '"file.c"': "the link {out}/file.c leads out of the folder out",
    '"loop"': "the link {out}/loop leads to itself",
    '"plain/x.c"': "{out}/plain is not a folder",
    '"folder"': "{out}/folder is there and not a file",
    '"pipe"': "{out}/pipe is there and not a file",
    '"a\\\\b.c"': 'the name "a\\b.c" holds a backslash',
    '"a\\nb.c"': 'the name "a\\u000Ab.c" holds U+000A, a control character',
    '"a\u2028b"': 'the name "a\\u2028b" holds U+2028, a line separator',
    '"\u202eh.c"': 'the name "\\u202Eh.c" holds U+202E, a bidirectional override',
    '"\x85.c"': 'the name "\\u0085.c" holds U+0085, a control character',
    '"x.c" OutputDirectory=".Git/hooks"': 'the name ".Git" belongs to the version control system',
    '".orv-x.tmp"': 'the name ".orv-x.tmp" is kept for the engine\'s own files',
    '"toroot"': "{out} is there and not a file",
    '"a" * 256': f'the name "{"a" * 256}" is longer than 255 bytes',
    '"folder/"': "the file has no name",
}


def hostile_folder(tmp_path: Path) -> Path:
    out = tmp_path / "out"
    (out / "folder").mkdir(parents=True)
    (tmp_path / "elsewhere").mkdir()
    (out / "link").symlink_to("../elsewhere")
    (out / "file.c").symlink_to("../elsewhere/file.c")
    (out / "loop").symlink_to("loop")
    (out / "inside").symlink_to(out / "folder")
    (out / "toroot").symlink_to("folder/..")
    (out / "plain").write_text("")
    os.mkfifo(out / "pipe")
    return out


def test_paths_that_lead_elsewhere_are_refused(orv: Command, tmp_path: Path) -> None:
    out = hostile_folder(tmp_path)
    for name, reason in REFUSED.items():
        text = (
            '{% file "ok.c" %}{% section "Banner" %}x{% endsection %}{% endfile %}\n'
            "{% file " + name + ' %}{% section "Banner" %}x{% endsection %}{% endfile %}'
        )
        done = orv("generate", "t.j2", "--out", "out", t__j2=text)
        assert done.returncode == 1 and done.stdout == ""
        assert done.stderr.startswith("t.j2:2: the file ")
        assert done.stderr.endswith(f": {reason.format(out=out)}\n"), name
        assert not (out / "ok.c").exists() and list((tmp_path / "elsewhere").iterdir()) == []


def test_links_inside_are_followed_and_paths_are_written_once(orv: Command, tmp_path: Path) -> None:
    out = hostile_folder(tmp_path)
    text = (
        '{% file "inside/./x.c" %}{% section "Banner" %}x{% endsection %}{% endfile %}\n'
        '{% file "y.c" OutputDirectory=d %}{% section "Banner" %}y{% endsection %}{% endfile %}'
    )
    run = ("generate", "t.j2", "--out", "out", "--set")
    assert orv(*run, "d=folder", t__j2=text).returncode == 0
    assert (out / "inside").is_symlink() and (out / "folder/x.c").read_text() == "x\n"
    same = orv(*run, "d=inside", t__j2=text.replace("y.c", "x.c"))
    assert same.stderr == (
        't.j2:2: the file "x.c": the file "inside/./x.c", declared at t.j2:1, is written to'
        " the same path\n"
    )
    below = orv(*run, "d=new.c", t__j2=text.replace("inside/./x.c", "new.c"))
    assert below.stderr == (
        't.j2:2: the file "y.c" is below "new.c", which is a file and not a folder\n'
    )
