"""The command line as a user runs it."""

from __future__ import annotations

import json
import os
import subprocess
import sys
from pathlib import Path

import pytest
from conftest import Command, stderr_of

TEMPLATE = """\
{% file name ~ ".h" DefinedMacro=name|upper ~ "_H" %}
{% section "ExternData" %}
extern int {{ name }};
{% endsection %}
{% endfile %}
{% file name ~ ".c" OutputDirectory="src" Group="code" %}
{% include_required name ~ ".h", "<stddef.h>" %}
{% function "get" %}
int get(void) { return {{ start }}; }
{% endfunction %}
{% endfile %}
{% file "none.c" %}{% include_required "a.h" %}{% endfile %}
"""
MODEL = '{"name": "count", "start": 1}'
EMPTY = "empty, not written: none.c (only includes)\n"


def test_generate_writes_what_differs_and_nothing_else(orv: Command, tmp_path: Path) -> None:
    run = ("generate", "t.j2", "--model", "m.json", "--out", "out")
    first = orv(*run, t__j2=TEMPLATE, m__json=MODEL)
    assert (first.returncode, first.stdout, first.stderr) == (
        0,
        f"new     out/count.h\nnew     out/src/count.c\n{EMPTY}",
        "",
    )
    source, header = tmp_path / "out/src/count.c", tmp_path / "out/count.h"
    assert source.read_text() == (
        '#include "count.h"\n\n#include <stddef.h>\nint get(void) { return 1; }\n'
    )
    names = sorted(path.name for path in (tmp_path / "out").rglob("*"))
    assert names == [".orv-state.json", "count.c", "count.h", "src"]
    source.chmod(0o640)
    os.utime(header, (1, 1))
    second = orv(*run, "--set", "start=2", "--verbose")
    assert (second.returncode, second.stdout, second.stderr) == (
        0,
        f"changed out/src/count.c\n{EMPTY}",
        "read m.json\nread t.j2\nsame    out/count.h\nempty   none.c\n",
    )
    assert (header.stat().st_mtime, source.stat().st_mode & 0o777) == (1, 0o640)


def test_check_diff_and_dry_run_write_nothing(orv: Command, tmp_path: Path) -> None:
    run = ("generate", "t.j2", "--model", "m.json", "--out", "out")
    dry = orv(*run, "--dry-run", t__j2=TEMPLATE, m__json=MODEL)
    assert (dry.returncode, dry.stdout) == (
        0,
        f"new     out/count.h\nnew     out/src/count.c\n{EMPTY}",
    )
    assert orv(*run, "--check", "--quiet").returncode == 1
    assert not (tmp_path / "out").exists()
    orv(*run)
    same = orv(*run, "--check")
    assert (same.returncode, same.stdout) == (0, f"up to date\n{EMPTY}")
    (tmp_path / "out/count.h").unlink()
    (tmp_path / "out/src/count.c").write_text("old\nend")
    both = orv(*run, "--check", "--diff")
    assert (both.returncode, both.stdout) == (
        1,
        "--- /dev/null\n+++ out/count.h\n@@ -0,0 +1,6 @@\n+#ifndef COUNT_H\n+#define COUNT_H\n+\n"
        "+extern int count;\n+\n+#endif /* COUNT_H */\n"
        "--- out/src/count.c\tedited since it was generated\n"
        "+++ out/src/count.c\tgenerated, as before\n@@ -1,2 +1,4 @@\n-old\n-end\n"
        '\\ No newline at end of file\n+#include "count.h"\n+\n+#include <stddef.h>\n'
        "+int get(void) { return 1; }\n",
    )
    assert (orv(*run, "--diff").returncode, (tmp_path / "out/count.h").exists()) == (0, False)


def test_manifest(orv: Command, tmp_path: Path) -> None:
    run = ("generate", "t.j2", "--model", "m.json", "--out", "out", "--manifest", "man.json")
    outputs = ("--outputs", "paths")
    assert orv(*run, *outputs, t__j2=TEMPLATE, m__json=MODEL).returncode == 0
    assert (tmp_path / "paths").read_text() == "out/count.h\nout/src/count.c\n"
    first = (tmp_path / "man.json").read_bytes()
    files = json.loads(first)["files"]
    assert [(file["path"], file["empty"]) for file in files] == [
        ("count.h", False),
        ("none.c", True),
        ("src/count.c", False),
    ]
    source = files[2]
    assert source["attributes"]["Group"] == "code"
    assert {key: source[key] for key in ("functions", "includes", "sections", "size")} == {
        "functions": ["get"],
        "includes": ['"count.h"', "<stddef.h>"],
        "sections": {"Includes": 40, "Functions": 28},
        "size": 68,
    }
    orv(*run)
    assert (tmp_path / "man.json").read_bytes() == first


@pytest.mark.parametrize("locale", ["C", "POSIX", "C.UTF-8"])
def test_bytes_do_not_depend_on_locale_or_hash_seed(
    orv: Command, tmp_path: Path, locale: str
) -> None:
    template = (
        '{% file "é.c" %}{% section "Banner" %}{{ m|join }} {{ m.z }} {{ s|join }} ü {{ x }}\n'
        "{% endsection %}{% endfile %}"
    )
    (tmp_path / "t.j2").write_bytes(template.encode())
    (tmp_path / "m.yaml").write_bytes("m: {z: ö, a: 1}\ns: [a, b, c]\n".encode())
    run = ("generate", "t.j2", "--model", "m.yaml", "--out", "out", "--manifest", "m.json")
    env = {"LC_ALL": locale, "PYTHONUTF8": "0", "PYTHONCOERCECLOCALE": "0", "PYTHONHASHSEED": "7"}
    assert orv(*run, "--set", "x=é", env=env).returncode == 0
    written = (tmp_path / "out").joinpath("é.c").read_bytes()
    assert written == "za ö abc ü é\n".encode()
    assert json.loads((tmp_path / "m.json").read_bytes())["files"][0]["path"] == "é.c"


ONE_FILE = '{% file "a.c" %}{% section "Banner" %}x{% endsection %}{% endfile %}'


# Where reports are put beside the template, and what is said about it.
OVERLAPS = {
    "--stamp s --depfile t.j2": 'the depfile "t.j2" would take the place of "t.j2", which was read',
    "--manifest out/a.c": 'the manifest "out/a.c" would take the place of the file "out/a.c"',
    "--manifest q --depfile-target t --depfile ./q": 'the depfile "./q" would take the place of'
    ' the manifest "q"',
    "--manifest out/a.c/m": 'the manifest "out/a.c/m" and the file "out/a.c" cannot be below'
    " each other",
    "--stamp out/.orv-state.json": 'the stamp "out/.orv-state.json" would take the place of'
    ' the state file "out/.orv-state.json"',
    "--outputs out/a.c --expect ./a.c": 'the list of outputs "out/a.c" would take the place of the'
    ' file "out/a.c"',
    "--expect b.c": "nothing was written\na.c is made, but no --expect names it\n"
    "b.c is not made, but --expect names it",
    "--manifest .": ". is a folder; a report is a file",
    "--manifest t.j2/m": 'the manifest "t.j2/m" cannot be written: Not a directory',
    "--out .": 't.j2:1: the file "t.j2" would take the place of "t.j2", which was read',
    "--out t.j2": "{folder}/t.j2 is not a folder; nothing can be written below it",
}


@pytest.mark.parametrize("options", OVERLAPS)
def test_nothing_takes_the_place_of_something_else(
    orv: Command, tmp_path: Path, options: str
) -> None:
    text = ONE_FILE.replace("a.c", "t.j2") if options == "--out ." else ONE_FILE
    done = orv("generate", "t.j2", "--out", "out", *options.split(), t__j2=text)
    assert (done.returncode, done.stdout) == (1, "")
    assert done.stderr == stderr_of(OVERLAPS[options].format(folder=tmp_path))
    assert [path.name for path in tmp_path.iterdir()] == ["t.j2"]
    assert (tmp_path / "t.j2").read_text() == text


def test_reports_follow_links_and_are_written_into_devices(orv: Command, tmp_path: Path) -> None:
    (tmp_path / "link").symlink_to("new/m.json")
    run = ("generate", "t.j2", "--out", "out", "--manifest", "link", "--depfile-target",
           "t", "--depfile", "/dev/stdout")  # fmt: skip
    done = orv(*run, t__j2=ONE_FILE)
    assert (done.returncode, done.stdout) == (0, "new     out/a.c\nt: \\\n  t.j2\n")
    assert (tmp_path / "link").is_symlink() and (tmp_path / "new/m.json").exists()
    assert orv(*run[:-1], "/dev/null").returncode == 0 and Path("/dev/null").is_char_device()


# What the shell does with the streams, how the command ends and whether it has written.
STREAMS = {
    "2>&-": ("", 0, True),
    ">&-": ("", 0, True),
    ">/dev/full": ("", 1, True),
    ">/dev/full ": ("--diff", 1, False),
    ">/dev/full  ": ("--check", 1, False),
    "| true": ("--diff", 1, False),
    "2>/dev/full": ("--verbose", 1, False),
}


@pytest.mark.parametrize("streams", STREAMS)
def test_streams_that_take_nothing(tmp_path: Path, streams: str) -> None:
    option, code, writes = STREAMS[streams]
    (tmp_path / "t.j2").write_text(ONE_FILE.replace("x", "x" * 200000))
    command = f"{sys.executable} -m orv generate t.j2 --out out {option} {streams}"
    shell = ["bash", "-c", f"{command}; exit ${{PIPESTATUS[0]}}"]
    done = subprocess.run(shell, cwd=tmp_path, capture_output=True, text=True, check=False)
    full = "full" in streams and streams[0] == ">"
    message = "error: the results cannot be written: No space left on device\n" if full else ""
    assert (done.returncode, done.stderr) == (code, message)
    assert (tmp_path / "out/a.c").exists() is writes


def test_depfile_is_understood_by_make_and_ninja(orv: Command, tmp_path: Path) -> None:
    model = tmp_path / "m $x#y z.json"
    model.write_text('{"name": "a b"}')
    template = '{% include "p q.j2" %}'
    part = '{% file name ~ ".c" %}{% section "Banner" %}x{% endsection %}{% endfile %}'
    run = ("generate", "t.j2", "--model", model.name, "--out", "out", "--depfile", "d",
           "--stamp", "out/a b.s")  # fmt: skip
    assert orv(*run, t__j2=template, **{"p q__j2": part}).returncode == 0
    text = (tmp_path / "d").read_text()
    assert text == "out/a\\ b.s: \\\n  m\\ $$x\\#y\\ z.json \\\n  p\\ q.j2 \\\n  t.j2\n"
    (tmp_path / "d").unlink()
    refused = orv(*run, "--model", "\n.json", **{"\n__json": "{}"})
    assert refused.returncode == 1 and "holds a control character" in refused.stderr
    assert not (tmp_path / "d").exists() and not (tmp_path / "out/a b.s").stat().st_size
    orv(*run, "--depfile-target", f"{tmp_path}/t")
    whole = text.replace("out/a\\ b.s", "t").replace("  ", f"  {tmp_path}/")
    assert (tmp_path / "d").read_text() == f"{tmp_path}/{whole}"
    orv(*run)
    assert (tmp_path / "d").read_text() == text
    rule = "touch 'out/a b.s' && echo ran >> log"
    (tmp_path / "Makefile").write_text(f"all: out/a\\ b.s\nout/a\\ b.s:\n\t{rule}\ninclude d\n")
    (tmp_path / "build.ninja").write_text(
        f"rule r\n command = {rule}\n depfile = d\nbuild out/a$ b.s: r\n"
    )
    for builder in ("make", "ninja"):
        subprocess.run([builder], cwd=tmp_path, check=True, capture_output=True)
        for source in ("m $x#y z.json", "p q.j2"):
            (tmp_path / "log").unlink(missing_ok=True)
            for newer in (False, True):
                os.utime(tmp_path / source, (4e9, 4e9) if newer else (1, 1))
                subprocess.run([builder], cwd=tmp_path, check=True, capture_output=True)
                assert (tmp_path / "log").exists() is newer, (builder, source)
            os.utime(tmp_path / source, (1, 1))


UNKNOWN_KIND = 's.j2:1: there is no kind of file "texts"; did you mean "text"?'

# Arguments after the command's name, the exit code and the message.
MISTAKES = {
    "template": (["t.j2", "--out", "o"], 1, "t.j2:2: 'nope' is undefined"),
    "syntax": (["s.j2", "--out", "o"], 1, UNKNOWN_KIND),
    "no template": (
        ["no.j2", "--out", "o"],
        1,
        'there is no template "no.j2" in "."; did you mean "t.j2"?',
    ),
    "no model": (
        ["t.j2", "--out", "o", "--model", "no.json"],
        1,
        "no.json: No such file or directory",
    ),
    "set": (
        ["t.j2", "--out", "o", "--set", "x"],
        2,
        "argument --set: expected KEY=VALUE with a name for KEY, not 'x'",
    ),
    "set JSON": (
        ["t.j2", "--out", "o", "--set", "x=[1"],
        2,
        "argument --set: x: missing a comma or ']' after an array element;"
        " put a text that begins like JSON in double quotes",
    ),
    "unknown": (["--ot=o", "t.j2"], 2, 'unrecognized argument --ot=o; did you mean "--out"?'),
    "no value": (["--out", "--quiet", "t.j2"], 2, "argument --out: expected one argument"),
    "last": (["t.j2", "--out"], 2, "argument --out: expected one argument"),
    "flag": (["--quiet=1", "t.j2"], 2, "argument --quiet: ignored explicit argument '1'"),
    "choice": (
        ["t.j2", "--stale=k"],
        2,
        "argument --stale: invalid choice: 'k' (choose from 'remove', 'keep')",
    ),
    "number": (["--jobs", "-1"], 2, "argument --jobs: expected a whole number from 1, got '-1'"),
    "no out": (["t.j2"], 2, "--out is missing"),
    "modes": (
        ["t.j2", "--check", "--dry-run"],
        2,
        "argument --dry-run: not allowed with argument --check",
    ),
}


@pytest.mark.parametrize("name", MISTAKES)
def test_mistakes_write_nothing(orv: Command, tmp_path: Path, name: str) -> None:
    arguments, code, message = MISTAKES[name]
    text = '{% file "a" %}{% section "Banner" %}x{% endsection %}{% endfile %}\n{{ nope }}'
    done = orv("generate", *arguments, t__j2=text, s__j2='{% file "a" as texts %}{% endfile %}')
    misuse = f"orv generate: error: {message}\nTry 'orv generate --help'.\n"
    assert (done.returncode, done.stdout) == (code, "")
    assert done.stderr == (misuse if code == 2 else stderr_of(message))
    assert not (tmp_path / "o").exists()


def test_strict_and_quiet(orv: Command, tmp_path: Path) -> None:
    text = (
        '{% file "a.c" %}{% section "Banner" %}x{% endsection %}{% endfile %}\n'
        '{% file "A.c" %}{% section "Banner" %}x{% endsection %}{% endfile %}'
    )
    clash = (
        'the file "A.c" differs only in letter case from "a.c", declared at t.j2:1;'
        " some file systems cannot hold both\n"
    )
    strict = orv("generate", "t.j2", "--out", "o", "--strict", t__j2=text)
    assert (strict.returncode, strict.stderr) == (1, f"t.j2:2: {clash}")
    quiet = orv("generate", "t.j2", "--out", "o", "--quiet", "--dry-run")
    assert (quiet.returncode, quiet.stdout, quiet.stderr) == (0, "", "")
    loud = orv("generate", "t.j2", "--out", "o")
    assert (loud.returncode, loud.stderr) == (0, f"t.j2:2: warning: {clash}")


def test_strict_runs_refuse_settings_that_nothing_reads(orv: Command) -> None:
    template = (
        "{% macro size(x) %}{{ x.width }}{{ x['depth'] }}{% endmacro %}"
        '{% include "p.j2" %}{% set c = colour | default("") %}'
    )
    run = ("generate", "t.j2", "--model", "m.json", "--extend", "e.py", "--script", "s.py",
           "--out", "o", "--strict")  # fmt: skip
    known = (
        "colour",
        "m.a",
        "m.width",
        "m.depth",
        "l.width",
        "part",
        "prepared",
        "scripted",
        "helped",
    )
    settings = [word for name in known for word in ("--set", f"{name}=1")]
    done = orv(
        *run, *settings, t__j2=template, p__j2="{% if part is defined %}{% endif %}",
        m__json='{"m": {"a": 1}, "l": []}', s__py='model.get("scripted")\n',
        e__py="import h\nimport orv\n\n@orv.prepare\ndef f(model):\n    model.get('prepared')\n"
        "    return model\n",
        h__py="NAMES = [\"helped\"]\n",
    )  # fmt: skip
    assert (done.returncode, done.stderr) == (0, "")
    wrong = ("--set", "color=1", "--set", "m.wdith=1", "--set", "a=1", "--set", "m.b.c=1")
    done = orv(*run, *wrong)
    says = '--set {}: no model has "{}", and no template, extension or script reads it'
    assert (done.returncode, done.stderr.splitlines()) == (1, [
        f"error: {says.format('color', 'color')}; did you mean \"colour\"?",
        f"{says.format('m.wdith', 'wdith')}; did you mean \"width\"?",
        says.format("a", "a"),
        says.format("m.b.c", "b"),
    ])  # fmt: skip
    assert orv(*run[:-1], *wrong).returncode == 0


def test_paths_that_differ_only_in_case(orv: Command) -> None:
    text = "\n".join(
        '{% file "' + name + '" %}{% section "Banner" %}x{% endsection %}{% endfile %}'
        for name in ('é.c" OutputDirectory="x', 'É.c" OutputDirectory="X')
    )
    done = orv("generate", "t.j2", "--out", "o", "--strict", t__j2=text)
    assert (done.returncode, done.stderr) == (
        1,
        't.j2:2: the path "X/É.c" differs only in letter case from "x/é.c", declared at'
        " t.j2:1; some file systems cannot hold both\n",
    )


# The end of a script, and what is said about it.
SCRIPT_FAILURES = {
    "raise ValueError('no')": "s.py:3: ValueError: no",
    "from orv.errors import OrvError; raise OrvError('no')": "s.py:3: no",
    "raise GeneratorExit": "s.py:3: GeneratorExit: ",
    "sys.path.clear(); 1 / 0": "s.py:3: ZeroDivisionError: division by zero",
    "sys.stdout.close()": "error: s.py: the script closed the standard output or error",
}


def test_scripts(orv: Command, tmp_path: Path) -> None:
    if not hasattr(pytest.importorskip("orbel"), "load"):
        pytest.skip("the host's Python package is not built")
    script = (
        "for file in list(repo.FileList):\n"
        '    file.getFileSection("BANNER_SECTION").addContent("/* " + model["name"] + " */\\n")\n'
        'made = repo.createGenericFile("more.c")\n'
        'made.getFunctionsSection().addFunction("f", "void f(void) {}\\n")\n'
        "print(len(repo.FileList))\n"
        'import os; os.chdir("/")\n'
    )
    run = ("generate", "t.j2", "--model", "m.json", "--out", "out", "--script", "s.py")
    done = orv(*run, t__j2=TEMPLATE, m__json=MODEL, s__py=script)
    assert (done.returncode, done.stderr) == (0, "")
    assert done.stdout.startswith("4\nnew     out/count.h\n")
    assert (tmp_path / "out/more.c").read_text() == "void f(void) {}\n"
    assert (tmp_path / "out/count.h").read_text().startswith("/* count */\n#ifndef")
    for end, message in SCRIPT_FAILURES.items():
        failing = orv(*run, "--set", "start=9", s__py=f"import sys\n\n{end}\n")
        assert (failing.returncode, failing.stdout) == (1, "")
        assert failing.stderr == f"{message}\n"
    unloading = orv(*run, "--script", "s.py", s__py="import orbel\norbel.unload(Varn)\n")
    assert unloading.stderr.startswith("error: scripts cannot reach the files: The module ")
    assert "return 1;" in (tmp_path / "out/src/count.c").read_text()


def test_compiled_templates_are_kept(orv: Command, tmp_path: Path) -> None:
    cache = tmp_path / "cache" / "orv" / "templates"

    def made(text: str) -> str:
        template = (
            f"{{% file 'a.h' %}}{{% section 'Enums' %}}{text}{{% endsection %}}{{% endfile %}}"
        )
        env = {"XDG_CACHE_HOME": str(tmp_path / "cache")}
        done = orv("generate", "t.j2", "--out", "out", "--always", env=env, t__j2=template)
        assert done.returncode == 0, done.stderr
        return (tmp_path / "out" / "a.h").read_text().strip()

    assert made("1") == made("1") == "1"
    (first,) = cache.iterdir()
    assert made("2") == "2"
    (second,) = set(cache.iterdir()) - {first}
    first.write_bytes(second.read_bytes())
    assert made("1") == "2"
    cache.chmod(0o777)
    assert made("1") == "1"
    cache.chmod(0o700)
    first.write_bytes(second.read_bytes()[:-1])
    assert made("1") == "1"


def test_formatter(orv: Command, tmp_path: Path) -> None:
    script = (
        'echo "$1" >> calls; text=$(cat); case $text in'
        " *bad*) echo odd >&2; exit 3;; *none*) exit 0;; esac; cat style; echo $text"
    )
    text = (
        "{% set names = {'a.h': true, 'b.c': false} %}{% for name, on in names.items() %}"
        '{% file name Indent=on %}{% section "Enums" %}x   {{ text }}{% endsection %}'
        "{% endfile %}{% endfor %}"
    )
    env = {"XDG_CACHE_HOME": str(tmp_path / "cache")}
    run = ("generate", "t.j2", "--out", "out", "--no-state", "--format", "sh f.sh {path} style")

    def made(*arguments: str, **texts: str) -> tuple[list[str], int]:
        done = orv(*run, *arguments, env=env, t__j2=text, f__sh=script, **texts)
        assert done.returncode == 0, done.stderr
        calls = (tmp_path / "calls").read_text().split()
        return [(tmp_path / "out" / name).read_text() for name in ("a.h", "b.c")], len(calls)

    assert made("--set", "text=1", style="s\n") == (["s\nx 1\n", "x   1\n"], 1)
    assert made("--set", "text=1") == (["s\nx 1\n", "x   1\n"], 1)
    assert made("--set", "text=1", "--format-all") == (["s\nx 1\n", "s\nx 1\n"], 2)
    assert made("--set", "text=1", style="t\n") == (["t\nx 1\n", "x   1\n"], 3)
    (tmp_path / "out" / ".clang-format").write_text("c")
    depfile = ("--depfile", "d", "--depfile-target", "t")
    assert made("--set", "text=1", *depfile) == (["t\nx 1\n", "x   1\n"], 4)
    assert "/out/.clang-format" in (tmp_path / "d").read_text()
    for value, complaint in (("bad", "ended with 3: odd"), ("none", "printed nothing; expected")):
        failed = orv(*run, "--set", f"text={value}", env=env)
        assert (
            failed.returncode,
            f'the file "a.h": the formatter sh {complaint}' in failed.stderr,
        ) == (
            1,
            True,
        )
        assert (tmp_path / "out" / "a.h").read_text() == "t\nx 1\n"
    missing = orv(*run[:-1], "no-formatter", "--set", "text=1", env=env)
    assert missing.stderr.endswith(
        "the formatter no-formatter cannot be run: No such file or directory\n"
    )
    assert orv(*run[:-2], "--format-all").returncode == 2
