"""#line directives: compilers and debuggers go to the templates, and the C is the same."""

from __future__ import annotations

import subprocess
from pathlib import Path

import pytest
from conftest import Command

from orv import trace as tracing

# A sanitizer that is preloaded into the tests would keep the debugger waiting.
DEBUGGER = ("env", "--unset=LD_PRELOAD", "gdb", "-batch", "-nx")
COMPILE = ["cc", "-std=c99", "-pedantic", "-Wall", "-Wextra", "-Werror", "-g"]
GENERATE = ["generate", "a.j2", "--out", "o", "--line-directives"]

TEMPLATE = """\
{% file "a.c" DefinedMacro="A" %}
{% include_required "<stdio.h>" %}
{% section "Defines" %}
#define SUM(a, b) \\
    ((a) + \\
     (b))
{% endsection %}
{% section "Functions" %}
/* {{ "(" }}
   a comment */
static int twice(int a,

                 int b)
{
{% for n in [1, 2] %}
    a += {{ n }}; /* once */
{% endfor %}
#if 0
    puts("(",
#else
    puts("\\"(" /* ) */);
#endif
    return SUM(a,
               b);
}

int main(void)
{
    {% user "r" %}
    puts("default");
    {% enduser %}
    puts("between");
    {% user "s" %}
    puts("more");
    {% enduser %}
    return twice(1,
                 2) - 6;
}
{% endsection %}
{% endfile %}
"""

EXPECTED = """\
#line 2 "../a.j2"
#include <stdio.h>
#line 4 "../a.j2"
#define SUM(a, b) \\
    ((a) + \\
     (b))
#line 9 "../a.j2"
/* (
   a comment */
static int twice(int a,

                 int b)
{
#line 16 "../a.j2"
    a += 1; /* once */
#line 16 "../a.j2"
    a += 2; /* once */
#line 18 "../a.j2"
#if 0
    puts("(",
#else
    puts("\\"(" /* ) */);
#endif
    return SUM(a,
               b);
}

int main(void)
{
#line 31 "a.c"
    /* USER CODE BEGIN r */
    puts("default");
    /* USER CODE END r */
#line 32 "../a.j2"
    puts("between");
#line 37 "a.c"
    /* USER CODE BEGIN s */
    puts("more");
    /* USER CODE END s */
#line 36 "../a.j2"
    return twice(1,
                 2) - 6;
}
"""


def test_output(orv: Command, tmp_path: Path) -> None:
    assert orv("generate", "a.j2", "--out", "o", a__j2=TEMPLATE).returncode == 0
    plain = preprocessed(tmp_path / "o" / "a.c")
    assert orv(*GENERATE, "--trace", "t.json", a__j2=TEMPLATE).stderr == ""
    file = tmp_path / "o" / "a.c"
    assert file.read_text() == EXPECTED
    traced = tracing.read(tmp_path / "t.json").files["a.c"].pieces()
    parts = [(piece.site.kind, EXPECTED[piece.begin : piece.end]) for piece in traced]
    assert "".join(text for _, text in parts) == EXPECTED
    assert all((kind == "line directive") == text.startswith("#line") for kind, text in parts)
    assert preprocessed(file) == plain
    # A person writes more lines before another directive that names the file itself.
    edited = file.read_text().replace('    puts("default', '\n\n    puts("mine')
    file.write_text(edited)
    assert [orv(*GENERATE).stdout for _ in range(2)] == ["changed o/a.c\n", "up to date\n"]
    assert file.read_text() == edited.replace('#line 37 "a.c"', '#line 39 "a.c"')
    subprocess.run([*COMPILE, "a.c", "-o", "a"], cwd=file.parent, check=True)
    for place, line in {
        "a.j2:16": "a += {{ n }}",
        "a.c:34": 'puts("mine',
        "a.c:40": 'puts("more',
    }.items():
        said = subprocess.run(
            [*DEBUGGER, "-ex", f"break {place}", "-ex", "run", "a"],
            cwd=file.parent, capture_output=True, text=True, check=True,
        ).stdout  # fmt: skip
        assert line in said


def preprocessed(file: Path) -> str:
    done = subprocess.run(["cc", "-E", "-P", file], capture_output=True, text=True, check=True)
    return done.stdout


@pytest.mark.parametrize(
    ("arguments", "message"),
    [
        (["--format", "cat"], "argument --line-directives: not allowed with argument --format"),
        (["--line-prefix", "x/"], ""),
    ],
)
def test_options(orv: Command, tmp_path: Path, arguments: list[str], message: str) -> None:
    done = orv(*GENERATE, *arguments, a__j2=TEMPLATE)
    assert message in done.stderr and done.returncode == (2 if message else 0)
    assert message or '#line 9 "x/a.j2"\n' in (tmp_path / "o" / "a.c").read_text()
