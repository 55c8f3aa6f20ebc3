"""Filters that make C: compilers see the text that went in, and comments stay comments."""

from __future__ import annotations

import os
import random
import subprocess
from pathlib import Path

import pytest
from conftest import files_of

from orv.errors import OrvError
from orv.templates import cfilters

FILTERS = cfilters.filters(lambda _: None)

# What is likely to go wrong, and every character of ASCII.
PIECES = [*map(chr, range(128)), "??/", "?", "*/", "/*", "\\", "\n", "\\ \n", "\r\n", "//", "*",
          "/", "7", "é", "\U0001f600", "\u202e", "\u2066", '"', "??'", "\\u00e9", "%d"]  # fmt: skip


def texts(count: int) -> list[str]:
    """Texts that are random, and the same in every run."""
    source = random.Random(5)
    return ["".join(source.choices(PIECES, k=source.randrange(1, 40))) for _ in range(count)]


def compiled(folder: Path, program: str) -> bytes:
    """What a program prints that compilers take without a warning, trigraphs replaced."""
    (folder / "p.c").write_text(program, newline="")
    compiler = os.environ.get("CC", "cc")
    command = [compiler, "-std=c99", "-Wall", "-Wextra", "-Werror", "-trigraphs", "p.c", "-o", "p"]
    done = subprocess.run(command, cwd=folder, capture_output=True, text=True, check=False)
    assert (done.returncode, done.stderr) == (0, "")
    return subprocess.run([folder / "p"], capture_output=True, check=True).stdout


def test_literals_are_the_bytes_that_went_in(tmp_path: Path) -> None:
    wanted = ["".join(map(chr, range(256))), *texts(500)]
    rows = "".join(f"{{sizeof {FILTERS['c_string'](t)} - 1, {FILTERS['c_string'](t)}}},\n"
                   for t in wanted)  # fmt: skip
    letters = [chr(code) for code in range(128)]
    constants = ", ".join(FILTERS["c_char"](letter) for letter in letters)
    printed = compiled(
        tmp_path,
        "#include <stdio.h>\nstatic const struct { size_t size; const char *text; } rows[] = {\n"
        f"{rows}}};\nstatic const char letters[] = {{{constants}}};\n"
        "int main(void) {\n  for (size_t i = 0; i < sizeof rows / sizeof *rows; i++)\n"
        "    fwrite(rows[i].text, 1, rows[i].size, stdout);\n"
        "  fwrite(letters, 1, sizeof letters, stdout);\n  return 0;\n}\n",
    )
    assert printed.decode() == "".join(wanted + letters)


def test_comments_end_where_the_template_ends_them(tmp_path: Path) -> None:
    comments = []
    for text in texts(500):
        text = text.replace("\0", "")
        comments.append(
            f"/* {FILTERS['c_comment'](text)} */\n{FILTERS['wrap_comment'](text, 20)}\n"
        )
        comments += [f"// {line}\n" for line in FILTERS["c_comment"](text).split("\n")]
    # Comments of one line are C99's, but not those that end in a form feed or the like.
    assert compiled(tmp_path, f"{''.join(comments)}int main(void) {{ return 0; }}\n") == b""


# What a template prints, and what comes out.
PRINTED = {
    '"a\\"\\\\\\n" | c_string': '"a\\"\\\\\\n"',
    '"é7??=" | c_string': '"\\303\\2517?\\?="',
    '"\'" | c_char': "'\\''",
    '"int" | c_ident ~ ("2d-é" | c_ident)': "int__2d__",
    '[true, 0, "true"] | map("c_bool") | join': "truefalsetrue",
    "255 | hex ~ (10 | hex(4))": "0xFF0x000A",
    '"HTTPServer2Go-now" | snake': "http_server2_go_now",
    '"HTTPServer2Go-now" | upper_snake': "HTTP_SERVER2_GO_NOW",
    '"HTTPServer2Go-now" | camel ~ ("x1 2" | pascal)': "httpServer2GoNowX1_2",
    '"a1b22" | regex_replace("([0-9]+)", "<\\\\1>")': "a<1>b<22>",
    '"éa" | regex_replace("x*", "-")': "-é-a-",
    '"a=1" | regex_match("(\\\\w)=(\\\\d)(z)?") | list | length': "4",
    '["ab", "b"] | select("regex_match", "^b") | join': "b",
    '"x\\té\\t1\\nlong\\ty\\t2\\nno" | align': "x    é 1\nlong y 2\nno",
    '"x|1\\nlonger|2" | align(4, "|")': "x   1\nlonger 2",
    '"one two three\\n\\nfour" | wrap_comment(12)': "/*\n * one two\n * three\n *\n * four\n */",
    '"short" | wrap_comment': "/* short */",
    "6 | bitand(3) ~ (6 | bitor(1)) ~ (6 | bitxor(3)) ~ (1 | shl(4)) ~ (-8 | shr(1))": "27516-4",
}

# What a template asks for in vain, and what is said.
REFUSED = {
    "5 | c_string": "c_string expects text, got int 5",
    '"é" | c_char': "c_char expects one character of ASCII, got str 'é'",
    '"" | c_ident': "c_ident expects some text to make an identifier of, got an empty one",
    '"yes" | c_bool': 'c_bool expects true, false, 1, 0, "true" or "false", got str \'yes\'',
    "-1 | hex": "hex expects no negative number, got -1; mask it with bitand first",
    "1 | hex(9999)": "hex expects a width of 1 to 4096, got 9999",
    "none | snake": "snake expects text, got none",
    "true | bitand(1)": "bitand expects a whole number, got bool True",
    "1 | shl(99999)": "shl makes numbers of up to 65536 bits; 99999 bits cannot be shifted",
    "1 | shr(-1)": "shr expects a count that is not negative, got -1",
    '"a" | regex_match("(")': "the regular expression is wrong: missing ): (",
    '"a" | regex_replace("a", "\\\\2")': "the replacement has \\2, but the regular expression"
    " has 0 groups",
    '"a" | align("x")': "align expects a column or a list of columns, got str 'x'",
    '("x" * 5000) | c_string': "the string literal has 5,000 characters; C99 compilers need not"
    " take more than 4,095",
}  # fmt: skip


@pytest.mark.parametrize("expression", [*PRINTED, *REFUSED])
def test_filters(expression: str) -> None:
    template = (
        '{% file "a.c" %}{% section "Enums" %}{{ ' + expression + " }}{% endsection %}{% endfile %}"
    )
    try:
        outcome = files_of(template, strict=True)["a.c"]
    except OrvError as error:
        outcome = str(error)
    expected = PRINTED.get(expression, "") + "\n"
    assert outcome == (expected if expression in PRINTED else f"main.j2:1: {REFUSED[expression]}")
