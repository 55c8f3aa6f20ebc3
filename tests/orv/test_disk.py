"""Disks that are full, folders that refuse, runs that are killed, and paths that lead elsewhere."""

from __future__ import annotations

import os
import signal
import subprocess
import sys
import time
from collections.abc import Iterator
from pathlib import Path

import pytest
from conftest import Command

from orv.output.writer import _process_table

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
    assert {path.name: path.read_text() for path in small_disk.iterdir()} == {
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
        "error: disk/a.c cannot be written: Read-only file system\nold  disk/a.c\n",
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
    assert [path for path in (tmp_path / "out").iterdir() if path.suffix != ".c"] == []


def test_temporaries_of_others_are_left_alone(orv: Command, tmp_path: Path) -> None:
    (tmp_path / "out").mkdir()
    folder = tmp_path / f"out/.orv-{_process_table():08x}-999997-00000000.tmp"
    elsewhere = tmp_path / "out/.orv-00000000-999997-00000000.tmp"
    folder.mkdir()
    elsewhere.touch()
    run = ("generate", "t.j2", "--out", "out", "--set", "a=1", "--set", "b=1")
    assert orv(*run, t__j2=TWO_FILES).returncode == 0
    assert folder.exists() and elsewhere.exists()


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
    '"a\\\\b.c"': "the name 'a\\\\b.c' holds a backslash or a control character",
    '"a\\nb.c"': "the name 'a\\nb.c' holds a backslash or a control character",
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
    (out / "inside").symlink_to("folder")
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
        assert done.stderr.startswith("error: t.j2:2: the file ")
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
        'error: t.j2:2: the file "x.c": the file "inside/./x.c", declared at t.j2:1, is written to'
        " the same path\n"
    )
    below = orv(*run, "d=new.c", t__j2=text.replace("inside/./x.c", "new.c"))
    assert below.stderr == (
        'error: t.j2:2: the file "y.c" is below "new.c", which is a file and not a folder\n'
    )
