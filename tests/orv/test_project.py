"""Project files: command lines written down."""

from __future__ import annotations

from pathlib import Path

import pytest
from conftest import Command, stderr_of

PROJECT = """\
[run.code]
template = ["t/a.j2", "t/b.j2"]   # both fill the same file
model = "m/m.json"
set = ["y=2", "z=z"]
out = "gen"
depfile = "code.d"
depfile-target = "gen.stamp"
quiet = true

[run.other]
template = "t/a.j2"
model = ["m/m.json", "n=m/m.json"]
out = "other"
set = '''
y=3'''
"""


def test_runs_of_a_project_file(orv: Command, tmp_path: Path) -> None:
    for folder in ("t", "m", "sub"):
        (tmp_path / folder).mkdir()
    (tmp_path / "m/m.json").write_text('{"x": "x", "z": 0}')
    part = '{% section "Banner" of "c" %}{{ x }}{{ y }}{{ z }} {% endsection %}'
    (tmp_path / "t/a.j2").write_text('{% file "c" %}{% endfile %}' + part)
    (tmp_path / "t/b.j2").write_text(part.replace("Banner", "Enums").replace("x }}", "w }}"))
    run = ("generate", "--project", "orv.toml")
    first = orv(*run, "--set", "w=w", orv__toml=PROJECT.replace("\ny=3", "y=3"))
    assert (first.returncode, first.stdout, first.stderr) == (0, "new     other/c\n", "")
    made = (tmp_path / "gen/c", tmp_path / "other/c")
    assert [path.read_text() for path in made] == ["x2z \nw2z \n", "x30 \n"]
    rule = "gen.stamp: \\\n  m/m.json \\\n  orv.toml \\\n  t/a.j2 \\\n  t/b.j2\n"
    assert (tmp_path / "code.d").read_text() == rule
    # In a folder below, the command line's paths are relative to that one; single values replace
    # the file's, and what the file has of the same sort.
    below_it = ("generate", "--run", "code", "--set", "y=9", "--set", "w=w", "--out", "here")
    below = orv(*below_it, "--verbose", cwd=tmp_path / "sub")
    assert (below.returncode, below.stdout) == (0, "new     here/c\n")
    assert below.stderr.startswith("run code\nread ../m/m.json\nread ../t/a.j2\n")
    assert (tmp_path / "sub/here/c").read_text() == "x9z \nw9z \n"


RUN = '[run.a]\ntemplate = "t.j2"\nout = "o"\n'
# The message, and the project file with more arguments.
MISTAKES: dict[str, str | tuple[str, str]] = {
    "orv.toml:2: Expected '=' after a key in a key/value pair": "[run.a]\nout",
    "orv.toml:2: Invalid value": "[run.a]\nset = [\n",
    'orv.toml:4: the key "modle": there is no such option; did you mean "model"?':
        RUN + "modle = 1\n",
    'orv.toml:6: the key "project": there is no such option; did you mean "expect"?':
        RUN + 'set = [\n"x=1"]\nproject = "x"\n',
    'orv.toml:1: the key "out" belongs below [run.NAME]': 'out = "x"\n',
    'orv.toml:3: the key "runs" is unknown; did you mean "run"?': "\n# runs\nruns = 1\n",
    "orv.toml: the file has no run; begin one with [run.NAME]": "run = {}\n",
    "orv.toml:1: expected a table [run.a]": "run.a = 1\n",
    'orv.toml:1: the run "a" has no key "template"': "[run.a]\nout = 'o'\n",
    'orv.toml:4: the key "check": expected true or false, got \'yes\'': RUN + 'check = "yes"\n',
    'orv.toml:4: the key "model": expected a text, got true': RUN + 'model = ["m", true]\n',
    'orv.toml:4: the key "manifest": expected a text, got an array': RUN + 'manifest = ["m"]\n',
    "orv.toml:5: the key \"set\": expected KEY=VALUE with a name for KEY, not 'x'":
        RUN + '\nset = "x"\n',
    'orv.toml:5: the key "verbose": not allowed with "quiet"':
        RUN + "quiet = true\nverbose = true\n",
    'orv.toml: there is no run "aa"; did you mean "a"?': (RUN, "--run=aa"),
    'the runs "a" and "b" both write d': (RUN + RUN.replace("a]", "b]"), "--manifest=d"),
}  # fmt: skip


@pytest.mark.parametrize("message", MISTAKES)
def test_mistakes_in_project_files(orv: Command, tmp_path: Path, message: str) -> None:
    case = MISTAKES[message]
    text, *arguments = (case,) if isinstance(case, str) else case
    done = orv("generate", *arguments, orv__toml=text, t__j2="{% file 'a' %}")
    is_misuse = not message.startswith("orv.toml")
    shown = f"error: {message}\n" if is_misuse else stderr_of(message)
    if is_misuse:
        shown = f"orv generate: {shown}Try 'orv generate --help'.\n"
    assert (done.returncode, done.stdout, done.stderr) == (2 if is_misuse else 1, "", shown)
    assert not (tmp_path / "o").exists()
