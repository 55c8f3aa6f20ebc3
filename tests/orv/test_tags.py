"""What templates say and which files come out, and what they are told when it cannot be."""

from __future__ import annotations

import pytest
from conftest import files_of

from orv.errors import OrvError
from orv.output.layout import Layout

# What the documentation's examples leave out: (templates, model, files).
RESULTS: dict[str, tuple[str | dict[str, str], dict[str, str]]] = {
    "file inside a section": (
        '{% file "a.c" %}{% section "Functions" %}x\n'
        '{% file "b.c" %}{% section "Functions" %}b\n{% endsection %}{% endfile %}'
        "y\n{% endsection %}{% endfile %}",
        {"a.c": "x\ny\n", "b.c": "b\n"},
    ),
    "included, imported and called templates fill the current file": (
        {
            "main.j2": '{% import "m.j2" as m %}{% file "a.c" %}{% include "i.j2" %}'
            '{% include "i.j2" without context %}{{ m.add() }}{% call m.wrap() %}'
            '{% section "Enums" %}c\n{% endsection %}{% endcall %}{% endfile %}',
            "i.j2": '{% section "Defines" %}i\n{% endsection %}',
            "m.j2": '{% macro add() %}{% section "Typedefs" %}t\n{% endsection %}{% endmacro %}'
            '{% macro wrap() %}{% file "b.c" %}{{ caller() }}{% endfile %}{% endmacro %}',
        },
        {"a.c": "i\ni\nt\n", "b.c": "c\n"},
    ),
    "text of an included template, of set and of filter blocks inside a section": (
        {
            "main.j2": '{% file "a.c" %}{% set s %}{% include "i.j2" %}{% endset %}'
            '{% section "Functions" %}{% include "i.j2" %}{{ s }}'
            "{% filter upper %}f{% endfilter %}{% endsection %}{% endfile %}",
            "i.j2": "i",
        },
        {"a.c": "iif\n".replace("f", "F")},
    ),
    "macro of an included template, kept, that runs a block": (
        {
            "main.j2": '{% set n = namespace(m=none) %}{% include "i.j2" %}'
            '{% file "a.c" %}{% section "Functions" %}{{ n.m() }}{% endsection %}{% endfile %}',
            "i.j2": '{% set x = "x" %}{% macro m() %}{{ self.b() }}{% endmacro %}{% set n.m = m %}'
            "{% if false %}{% block b %}{{ x }}{% endblock %}{% endif %}",
        },
        {"a.c": "x\n"},
    ),
    "block inside a section, overridden, with super": (
        {
            "main.j2": '{% extends "b.j2" %}{% block b %}<{{ super() }}>{% endblock %}',
            "b.j2": '{% file "a.c" %}{% section "Functions" %}{% block b %}x{% endblock %}'
            "{% endsection %}{% endfile %}",
        },
        {"a.c": "<x>\n"},
    ),
    "blocks that a file in a section and a middle template leave open": (
        {
            "main.j2": '{% extends "c.j2" %}{% block b %}{% block d %}x{% endblock %}'
            "{{ self.e() }}{% endblock %}{% block e %}y{% endblock %}",
            "c.j2": '{% extends "b.j2" %}{% block a %}{% section "Enums" %}{% block b %}'
            "{% endblock %}{% endsection %}{% endblock %}",
            "b.j2": '{% file "a.c" %}{% section "Functions" %}{% file "b.c" %}{% for n in [1] %}'
            "{% block a scoped %}{% endblock %}{% endfor %}{% endfile %}{% endsection %}"
            "{% endfile %}",
        },
        {"b.c": "xy\n"},
    ),
    "custom section placed in another file": (
        '{% file "a.c" %}{% endfile %}{% file "b.h" %}{% endfile %}'
        '{% custom "c" on "Types" of "a.c" %}{% fill "c" of file("a.c") %}1\n{% endfill %}'
        '{% section "Enums" of "b.h" %}{% place "c" of "a.c" %}{% endsection %}'
        '{% fill "c" of "a.c" %}2\n{% endfill %}',
        {"b.h": "1\n2\n"},
    ),
    "text file as it is, added to from elsewhere, without C": (
        '{% file "b.c" %}{% endfile %}{% file "a.h" as text DefinedMacro="A" %}\n# T\n'
        '{% section "Enums" of "b.c" %}{% file "a.h" %}more{% endfile %}int x;{% endsection %}'
        "{% for name in file().sections %}{{ name }}{% endfor %}{% endfile %}"
        '{% section "Text" of "a.h" %} end{% endsection %}'
        '{% section "Functions" of "b.c" %}{{ file("a.h").Text }}{% endsection %}',
        {"b.c": "int x;\nmore# T\nText end\n", "a.h": "more# T\nText end"},
    ),
    "custom section on the forward declarations": (
        '{% file "a.h" %}{% custom "c" on "ForwardDecls" %}{% fill "c" %}struct s;{% endfill %}'
        '{% section "ForwardDecls" %}struct t;\n{% endsection %}{% endfile %}',
        {"a.h": "struct t;\nstruct s;\n"},
    ),
    "empty files and empty text are not written": (
        '{% file "a.c" %}{% section "Defines" %}{% endsection %}{% endfile %}'
        '{% file "b.c" %}{% include_required "x.h" %}{% endfile %}'
        '{% file "c.c" IsEmpty=false %}{% endfile %}{% file "d.c" %}{% function "f" %}'
        '{% endfunction %}{% custom "c" on "Enums" %}{% fill "c" %}{% endfill %}{% endfile %}',
        {"c.c": ""},
    ),
    "attributes, flags and lists read back": (
        '{% file "a.c" Group="g" Shared=true, SystemsInFile=["<Root>", "<Root>/A"] %}{% endfile %}'
        '{% section "Banner" of "a.c" %}{{ file("a.c").Group }} {{ file("a.c").Shared | c_bool }}'
        ' {{ file("a.c").SystemsInFile|join(",") }} {{ files()|join }}{% endsection %}',
        {"a.c": "g true <Root>,<Root>/A a.c\n"},
    ),
    "entries of a model go before methods": (
        '{% file "a.c" %}{% section "Banner" %}{{ m.items }}{% endsection %}{% endfile %}',
        {"a.c": "7\n"},
    ),
    "what prints itself and what becomes a value": (
        {
            "main.j2": '{% extends "b.j2" %}{% from "m.j2" import m, k, w %}'
            "{% block b %}a{{ m(m(1)) }}{{ m(2)|upper }}{{ m(x=3) ~ 4 }}{{ k() }}{{ super() }}"
            '{{ super()|replace("<", "(") }}{% call w() %}c{% endcall %}{{ "x".upper() }}'
            "{% set s %}{{ m(5) }}{% endset %}{% filter upper %}{{ m(s) }}{% endfilter %}"
            "{% for n in [[[], []], []] recursive %}{{ loop.index }}{% if n %}({{ loop(n) }})"
            "{% endif %}{% endfor %}{% endblock %}",
            "b.j2": '{% import "m.j2" as i %}{% file "a.c" %}{% section "Enums" %}'
            "{% block b %}{{ i.m(0) }}{% endblock %}{% endsection %}{% endfile %}",
            "m.j2": "{% macro m(x) %}<{{ x }}>{% endmacro %}{% macro w() %}[{{ caller() }}"
            "{{ caller()|upper }}]{% endmacro %}{% macro k(x=m(9)) %}{{ x }}{% endmacro %}",
        },
        {"a.c": "a<<1>><2><3>4<9><0>(0>[cC]X<<5>>1(12)2\n"},
    ),
    "custom section placed by what prints itself": (
        {
            "main.j2": '{% extends "b.j2" %}{% macro m() %}{% place "c" of "a.c" %}{% endmacro %}'
            "{% block b %}1{{ m() }}2{% include 'i.j2' %}{% call w() %}{% endcall %}{% endblock %}"
            "{% macro w() %}{{ caller() }}{% place 'e' of 'a.c' %}{% endmacro %}",
            "b.j2": '{% file "a.c" %}{% for c in "cde" %}{% custom c on "Defines" %}{% fill c %}'
            '{{ c }}{% endfill %}{% endfor %}{% section "Enums" %}{% block b %}{% endblock %}'
            '{% endsection %}{% section "Enums" %}3{% endsection %}{% endfile %}',
            "i.j2": '{% place "d" of "a.c" %}',
        },
        {"a.c": "1c2de3\n"},
    ),
    "loop controls end what they leave": (
        '{% file "a.c" %}{% custom "c" on "Banner" %}{% for i in range(9) %}'
        '{% file i ~ ".c" %}{% section "Enums" %}{{ i }}{% set s %}'
        "{% for j in [1] %}{% continue %}{% else %}{% if i == 1 %}{% break %}{% endif %}"
        "{% endfor %}"
        '{% fill "c" of "a.c" %}{{ i }}{% if i == 0 %}{% continue %}{% endif %}{% endfill %}'
        "{% endset %}x{% endsection %}{% endfile %}"
        '{% endfor %}{% set l = [] %}{% do l %}{% section "Enums" %}e{% endsection %}{% endfile %}',
        {"a.c": "0\ne\n", "0.c": "0\n", "1.c": "1\n"},
    ),
    "placed sections and texts with the indentation of their place": (
        # Placed: a directive that is continued, empty lines, a line without its newline.
        '{% file "a.c" %}{% for c in "abcdef" %}{% custom c on "Enums" %}{% fill c %}'
        "{{ c }}\n#if \\\n x\n\n{{ '\\r' }}\n{{ c }}{% endfill %}{% endfor %}"
        '{% file "b.c" %}{% section "Functions" %}\n'
        'f\n\t {% place "a" of "a.c" %}\n;\n  {% place "b" of "a.c" indent=0 %}  \n'
        '  {%- place "c" of "a.c" directives=false %}\n  x {% place "d" of "a.c" %}\n'
        '  {% place "e" of "a.c" directives=false %}\n\n'
        "{% indent 3 %}\ny\n  {% indent directives=false %}\n{{ 1 }}\n#z\n"
        ' {%+ place "f" of "a.c" -%}  \n   g\nh\n\n{% endindent %}i{% endindent %}j\n'
        "{% endsection %}{% endfile %}{% endfile %}",
        {
            "b.c": "f\n\t a\n\t #if \\\n\t  x\n\n\r\n\t a;\nb\n#if \\\n x\n\n\r\nb"
            "c\n#if \\\n x\n\n\r\nc  x d\n#if \\\n x\n\n\r\nd"
            "e\n#if \\\n x\n\n\r\n  e\n   y\n     1\n   #z\n      f\n    #if \\\n     x\n\n\r\n"
            "      fg\n     h\n\n   ij\n"
        },
    ),
    "indented texts wherever they go": (
        '{% macro m() %}a\nb\n{% endmacro %}{% file "a.c" %}{% custom "c" on "Enums" %}'
        '{% indent 2 %}{% section "Enums" %}\nx = {% indent %}{{ m() }}{% endindent %}'
        '{% set s %}{% indent "\t" %}{{ m() }}{% endindent %}{% endset %}{{ s }}'
        "{% for i in [1, 2] %}{% indent i %}{{ i }}\n{% continue %}{% endindent %}{% endfor %}"
        "{% for n in [[[], []], []] recursive %}-\n{% indent 1 %}{{ loop(n) }}{% endindent %}"
        "{% endfor %}{% endsection %}{% endindent %}"
        '{% fill "c" %}{% indent 1 %}{% indent 1 %}{% endindent %}d{% endindent %}{% endfill %}'
        "{% endfile %}",
        {"a.c": "x = a\n    b\n\ta\n\tb\n 1\n  2\n-\n -\n -\n-\n d\n"},
    ),
    "guard that is never opened": (
        '{% file "a.h" DefinedMacro="A_H" order=["Banner"] %}{% section "Banner" %}b'
        "{% endsection %}{% endfile %}",
        {"a.h": "b\n"},
    ),
    "crlf and no newline at the end": (
        '{% file "a.c" %}\r\n{% section "Banner" %}\r\nx{% endsection %}\r\n{% endfile %}',
        {"a.c": "x\n"},
    ),
}

# Mistakes that no line of text can show; see test_mistakes.py for all others.
ERRORS = {
    "main.j2:2: the template is nested too deeply; put inner tags into a macro or a template of"
    " their own, and parts of a long expression into variables": (
        "\n" + "{% for i in [1] %}" * 25 + "{% endfor %}" * 25
    ),
    "main.j2:2: the text holds a NUL character, which no file of text can hold": (
        '{% file "a" %}\n{% section "Enums" %}\0{% endsection %}{% endfile %}'
    ),
}


@pytest.mark.parametrize("name", RESULTS)
def test_files(name: str) -> None:
    templates, expected = RESULTS[name]
    assert files_of(templates, {"m": {"items": 7}}) == expected


@pytest.mark.parametrize("message", ERRORS)
def test_errors(message: str) -> None:
    with pytest.raises(OrvError) as raised:
        files_of(ERRORS[message])
    assert str(raised.value) == message


ENUM = '{% section "Enums" %}e{% endsection %}'


def test_blank_lines_between_sections() -> None:
    text = (
        '{% file "a.h" DefinedMacro="A" %}{% include_required "r.h" %}{% include_added "x.h" %}'
        '{% for s in ["Banner", "Defines", "Enums"] %}{% section s %}{{ s }}\n{% endsection %}'
        '{% endfor %}{% section "Functions" %}\nf\n\n{% endsection %}'
        '{% section "UserBottom" %}u{% endsection %}{% endfile %}'
        '{% file "b.c" %}{% include_required "r.h" %}{% section "Enums" %}e{% endsection %}'
        "{% endfile %}"
    )
    assert files_of(text, layout=Layout(blank_lines=True)) == {
        "a.h": 'Banner\n\n#ifndef A\n#define A\n\n#include "r.h"\n#include "x.h"\n\nDefines\n\n'
        "Enums\n\nf\n\nu\n\n#endif /* A */\n",
        "b.c": '#include "r.h"\n\ne\n',
    }


def test_warnings_do_not_stop_a_run_that_is_not_strict() -> None:
    warnings: list[str] = []
    files = files_of(
        '{% file "a.c" %}{% custom "c" on "Documentation" %}{% fill "c" %}x{% endfill %}'
        '{% endfile %}\n{% section "Enums" of "a.c" %}e{% endsection %}'
        '{% file "A.c" %}{% endfile %}{% file as packaging("mdl_hdr") %}{% endfile %}'
        '{% file as packaging("mdl_src") %}{% endfile %}',
        warnings=warnings,
    )
    assert (files, [warning[:60] for warning in warnings]) == (
        {"a.c": "e\n"},
        [
            'main.j2:2: the file "A.c" differs only in letter case from "',
            'main.j2:2: the packaging keys "mdl_src" and "mdl_hdr" mean t',
            'main.j2:1: the text of custom section "c" of "a.c" is never ',
        ],
    )


@pytest.mark.parametrize(
    ("tag", "guard"),
    [
        ('"3d/x-y.z.hpp"', "H_3D_X_Y_Z"),
        ('"a.h" OutputDirectory="é/b.c"', "___B_C_A"),
        ('".x.h"', "_X"),
        ('"b" Type="SystemHeader"', "B"),
        ('"a.h" DefinedMacro="own"', "own"),
        ('"a.c" as model', None),
        ('"a.h" guard=false', None),
        ('"a.h" as text', None),
    ],
)
def test_guards_of_paths(tag: str, guard: str | None) -> None:
    text = f"{{% file {tag} %}}{'e' if ' as text' in tag else ENUM}{{% endfile %}}"
    (written,) = files_of(text, layout=Layout(guard="{PATH}")).values()
    expected = f"#ifndef {guard}\n#define {guard}\n\ne\n\n#endif /* {guard} */\n"
    assert written == (expected if guard else "e" if " as text" in tag else "e\n")


def test_c_linkage_holds_declarations_only() -> None:
    sections = "".join(
        f'{{% section "{name}" %}}{name}\n{{% endsection %}}'
        for name in ("UserBottom", "Typedefs", "Defines", "UserTop", "Banner")
    )
    text = (
        f'{{% file "a.h" extern_c=true %}}{{% include_required "r.h" %}}{sections}{{% endfile %}}'
        '{% file "b.h" extern_c=true order=["Enums", "Includes", "Typedefs"] %}'
        f'{{% include_added "b.h" %}}{ENUM}{{% endfile %}}'
        '{% file "c.h" extern_c=true %}{% include_added "b.h" %}{% endfile %}'
    )
    begin = '#ifdef __cplusplus\nextern "C" {\n#endif\n\n'
    end = "\n#ifdef __cplusplus\n}\n#endif\n"
    for blank_lines, blank in ((False, ""), (True, "\n")):
        assert files_of(text, layout=Layout(blank_lines, guard="pragma")) == {
            "a.h": f'Banner\n{blank}#pragma once\n\n{"" if blank else chr(10)}#include "r.h"\n'
            f"{blank}UserTop\n\n{begin}Defines\n{blank}Typedefs\n{end}{blank}UserBottom\n",
            "b.h": f'#pragma once\n\n{begin}e\n{end}{blank}#include "b.h"\n',
            "c.h": '#pragma once\n\n#include "b.h"\n',
        }
