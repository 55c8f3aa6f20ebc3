"""The D-Bus stubs: what gdbus-codegen says of the same descriptions, and C that compilers take."""

from __future__ import annotations

import os
import re
import subprocess
import sys
from pathlib import Path

import pytest

EXAMPLE = Path(__file__).parents[2] / "examples" / "dbus"
DESCRIPTIONS = sorted(Path("/usr/share/dbus-1/interfaces").glob("org.freedesktop.*portal*.xml"))

# What gdbus-codegen declares for the basic types, in the words of the standard library.
STANDARD = {
    "gboolean": "bool", "guchar": "uint8_t", "gint16": "int16_t", "guint16": "uint16_t",
    "gint": "int32_t", "guint": "uint32_t", "gint64": "int64_t", "guint64": "uint64_t",
    "gdouble": "double", "const gchar *": "const char *", "gchar *": "const char *",
}  # fmt: skip

# Prints what a table of interfaces says, one line for each fact.
PRINTER = """\
static void arguments(const dbus_interface *i, const char *kind, const char *owner,
                      const dbus_argument *a, size_t count) {
    for (size_t n = 0; n < count; n++)
        printf("%s %s %s %s %s\\n", i->name, kind, owner, a[n].name, a[n].signature);
}
int main(void) {
    for (size_t n = 0; n < sizeof all / sizeof *all; n++) {
        const dbus_interface *i = all[n];
        for (size_t m = 0; m < i->method_count; m++) {
            printf("%s method %s\\n", i->name, i->methods[m].name);
            arguments(i, "in", i->methods[m].name, i->methods[m].in, i->methods[m].in_count);
            arguments(i, "out", i->methods[m].name, i->methods[m].out, i->methods[m].out_count);
        }
        for (size_t s = 0; s < i->signal_count; s++) {
            printf("%s signal %s\\n", i->name, i->signals[s].name);
            arguments(i, "signal", i->signals[s].name, i->signals[s].arguments,
                      i->signals[s].argument_count);
        }
        for (size_t p = 0; p < i->property_count; p++)
            printf("%s property %s %s %d%d\\n", i->name, i->properties[p].name,
                   i->properties[p].signature, i->properties[p].is_readable,
                   i->properties[p].is_writable);
    }
    return 0;
}
"""


def run(*command: str | Path) -> subprocess.CompletedProcess[str]:
    return subprocess.run(command, capture_output=True, text=True, check=False)


def generate(out: Path, *more: str | Path) -> subprocess.CompletedProcess[str]:
    return run(
        sys.executable, "-m", "orv", "generate", EXAMPLE / "stubs.j2", "--strict", "--quiet",
        "--extend", EXAMPLE / "interfaces.py", "--schema", EXAMPLE / "stubs.schema.json",
        "--guard", "{PATH}_H", "--out", out, *more,
    )  # fmt: skip


def compiled(*arguments: str | Path) -> None:
    """Compile with every warning an error; what is compiled must not complain."""
    flags = ("-std=c99", "-Wall", "-Wextra", "-Werror", "-pedantic")
    done = run(os.environ.get("CC", "cc"), *flags, *arguments)
    assert (done.returncode, done.stderr) == (0, "")


@pytest.fixture(scope="module", name="stubs")
def generated(tmp_path_factory: pytest.TempPathFactory) -> Path:
    out = tmp_path_factory.mktemp("stubs")
    pattern = "/usr/share/dbus-1/interfaces/org.freedesktop.*portal*.xml"
    done = generate(
        out, "--model", f"descriptions={pattern}", "--model", f"stubs={EXAMPLE / 'stubs.yaml'}"
    )
    assert (done.returncode, done.stderr) == (0, "")
    return out


def told_by_gdbus(option: str, path: Path) -> str:
    done = run("gdbus-codegen", option, "--output", path, *DESCRIPTIONS)
    assert done.returncode == 0, done.stderr
    return path.read_text()


def facts_of_gdbus(text: str) -> set[str]:
    """The facts in the tables that gdbus-codegen writes, as the printer prints ours."""
    tables = {
        name: (kind, re.findall(r'\(gchar\s?\*\) "(.*)"', body), body)
        for kind, name, body in re.findall(
            r"^const (?:_Extended)?GDBus(\w+)Info (\w+) =\n\{\n(.*?)^\};", text, re.M | re.S
        )
    }
    lists = {
        name: re.findall(r"&(\w+?)(?:\.parent_struct)?,", body)
        for name, body in re.findall(
            r"^const GDBus\w+Info \* const (\w+)\[\] =\n\{\n(.*?)^\};", text, re.M | re.S
        )
    }
    facts: set[str] = set()
    for kind, texts, body in tables.values():
        if kind != "Interface":
            continue
        for entries in re.findall(r"\(GDBus\w+Info \*\*\) (\w+)", body):
            for entry in lists[entries]:
                member, (name, *more), inner = tables[entry]
                if member == "Property":
                    access = "".join(
                        str(int(f"_{word}" in inner)) for word in ("READABLE", "WRITABLE")
                    )
                    facts.add(f"{texts[0]} property {name} {more[0]} {access}")
                    continue
                facts.add(f"{texts[0]} {member.lower()} {name}")
                for list_name in re.findall(r"\(GDBusArgInfo \*\*\) (\w+)", inner):
                    way = re.search(r"_method_(in|out)_args$", list_name)
                    for argument in lists[list_name]:
                        described = " ".join(tables[argument][1])
                        facts.add(f"{texts[0]} {way[1] if way else 'signal'} {name} {described}")
    return facts


def test_tables_say_what_gdbus_codegen_says(stubs: Path, tmp_path: Path) -> None:
    headers = sorted(path.name for path in stubs.glob("*.h"))
    assert len(headers) == len(DESCRIPTIONS) + 1 > 46
    names = [f"&{name[:-2]}_interface" for name in headers if name != "dbus_stubs.h"]
    main = tmp_path / "main.c"
    main.write_text(
        "#include <stdio.h>\n" + "".join(f'#include "{name}"\n' for name in headers)
        + f"static const dbus_interface *const all[] = {{{', '.join(names)}}};\n{PRINTER}"
    )  # fmt: skip
    compiled(f"-I{stubs}", main, *sorted(stubs.glob("*.c")), "-o", tmp_path / "main")
    ours = run(tmp_path / "main").stdout.splitlines()
    theirs = facts_of_gdbus(told_by_gdbus("--interface-info-body", tmp_path / "info.c"))
    assert len(ours) == len(set(ours)) > 500
    assert set(ours) == theirs
    shown = re.search(r"```c\n(.*?)```", (EXAMPLE / "README.md").read_text(), re.S)
    assert shown and shown[1] in re.sub(
        r"(?m)^extern .*\n\n", "", (stubs / "portal_trash.h").read_text()
    )


def test_members_have_the_types_of_gdbus_codegen(stubs: Path, tmp_path: Path) -> None:
    text = told_by_gdbus("--header", tmp_path / "gdbus.h")
    facts = facts_of_gdbus(told_by_gdbus("--interface-info-body", tmp_path / "info.c"))
    # Arrays of bytes are texts there.
    bytes_names = {fact.split()[-2] for fact in facts if fact.endswith(" ay")}
    # Words of a name are told apart otherwise.
    headers = "".join(path.read_text() for path in stubs.glob("*.h"))
    ours = {name.replace("_", ""): name for name in re.findall(r"\w+", headers)}
    checks: list[str] = []
    for owner, parameters in re.findall(
        r"^gboolean org_freedesktop_(\w+)_sync \(\n(.*?)\);", text, re.M | re.S
    ):
        for type, way, name in re.findall(r"^ +(.+?)(arg|out)_(\w+),$", parameters, re.M):
            wanted = STANDARD.get(type.strip() if way == "arg" else type.strip()[:-1].strip())
            if wanted is not None and name not in bytes_names:
                way = way.replace("arg", "in")
                struct = ours[owner.replace("_call_", "").replace("_", "") + way]
                checks.append(
                    f"{wanted} *at{len(checks)}({struct} *x)"
                    f" {{ return &x->{ours[name.replace('_', '')]}; }}"
                )
    for type, getter in re.findall(
        r"^([\w ]+[ *])org_freedesktop_(\w+_get_\w+) \(\w+ \*object\);", text, re.M
    ):
        wanted = STANDARD.get(type.strip())
        if wanted is not None:
            checks.append(
                f"int at{len(checks)}(const dbus_object *o, {wanted} *v)"
                f" {{ return {ours[getter.replace('_', '')]}(o, v); }}"
            )
    assert len(checks) > 300
    source = tmp_path / "types.c"
    includes = "".join(f'#include "{path.name}"\n' for path in stubs.glob("*.h"))
    source.write_text(includes + "\n".join(checks) + "\n")
    compiled(f"-I{stubs}", "-c", source, "-o", tmp_path / "types.o")


ALL = """\
<node><interface name="org.x.All">
  <method name="Go"><arg name="list" type="a(ay)"/><arg name="text" type="s" direction="in"/>
    <arg name="int" type="a{s(bynqiuxtdhogv)}" direction="out"/>
    <arg name="pair" type="(qs)" direction="out"/></method>
  <signal name="Gone"/>
  <property name="Size" type="q" access="readwrite"/>
</interface></node>
"""
CALL = """\
#include <stdio.h>
#include <string.h>
#include "all.h"
static int call(const dbus_object *object, const dbus_interface *interface,
                const dbus_method *method, const void *in, void *out) {
    const char *const *text = (const void *)((const char *)in + method->in[1].offset);
    const dbus_rqsz pair = {3, "three"};
    printf("%s %s.%s %s=%s\\n", object->path, interface->name, method->name, method->in[1].name,
           *text);
    memcpy((char *)out + method->out[1].offset, &pair, sizeof pair);
    return 0;
}
static int get(const dbus_object *object, const dbus_interface *interface,
               const dbus_property *property, void *value) {
    (void)object, (void)interface;
    *(uint16_t *)value = 7;
    return strcmp(property->signature, "q");
}
static int set(const dbus_object *object, const dbus_interface *interface,
               const dbus_property *property, const void *value) {
    return printf("%s.%s := %d\\n", interface->name, property->name, *(const uint16_t *)value) < 0
        || object->call != call;
}
static int emit(const dbus_object *object, const dbus_interface *interface,
                const dbus_signal *signal, const void *arguments) {
    return printf("%s %s.%s\\n", object->path, interface->name, signal->name) < 0 || arguments;
}
int main(void) {
    const dbus_object object = {"a.b", "/o", NULL, call, get, set, emit};
    const all_go_in in = {{0, NULL}, "there"};
    all_go_out out;
    uint16_t size;
    const int failed = all_call_go(&object, &in, &out) || all_get_size(&object, &size)
        || all_set_size(&object, 9) || all_emit_gone(&object);
    printf("%d %s %d\\n", out.pair.field0, out.pair.field1, size);
    return failed;
}
"""


def small(folder: Path, description: str, settings: str) -> tuple[str | Path, ...]:
    """The options for one description that is not the distribution's."""
    (folder / "all.xml").write_text(description)
    (folder / "stubs.yaml").write_text(settings)
    model = f"descriptions={folder}/*.xml"
    return "--model", model, "--model", f"stubs={folder / 'stubs.yaml'}"


def test_calls_reach_the_transport(tmp_path: Path) -> None:
    out = tmp_path / "out"
    done = generate(out, *small(tmp_path, ALL, "{strip: org.x., only: [org.x.*]}"))
    assert (done.returncode, done.stderr) == (0, "")
    (tmp_path / "main.c").write_text(CALL)
    compiled(f"-I{out}", tmp_path / "main.c", out / "all.c", "-o", tmp_path / "main")
    called = run(tmp_path / "main")
    said = "/o org.x.All.Go text=there\norg.x.All.Size := 9\n/o org.x.All.Gone\n3 three 7\n"
    assert (called.returncode, called.stdout) == (0, said)


SETTINGS = "strip: org.x.\nonly: [org.x.*]\n"
# What is changed in the description and in the settings, and what is said.
WRONG = {
    'all.xml:3: "a{s(bynqiuxtdhogv}" is not one complete type': ("gv)}", "gv}", "", ""),
    'all.xml:6: "qq" is not one complete type': ('"q"', '"qq"', "", ""),
    "no description has an interface org.y.*": ("", "", "org.x.*", "org.y.*"),
    "stubs.yaml:2: stubs.only: 'all' is not of type 'array'": ("", "", "[org.x.*]", "all"),
}


@pytest.mark.parametrize("message", WRONG)
def test_wrong_descriptions_and_settings(tmp_path: Path, message: str) -> None:
    old, new, setting, other = WRONG[message]
    options = small(tmp_path, ALL.replace(old, new), SETTINGS.replace(setting, other))
    done = generate(tmp_path / "out", *options)
    assert (done.returncode, done.stderr.count("\n")) == (1, 1)
    assert done.stderr.endswith(f"{message}\n") and not (tmp_path / "out").exists()
