"""The OpenGL loader: the same names and values as glad's, and commands that can be called."""

from __future__ import annotations

from pathlib import Path

import pytest
from loaders import (
    EXAMPLE,
    GLAD_REGISTRY,
    REGISTRY,
    Choice,
    command_names,
    compile_c,
    constant_values,
    generate,
    make,
    make_with_glad,
    output,
    run,
)

CORE = Choice("gl", "core", "4.6")
SOME = "GL_ARB_bindless_texture,GL_ARB_imaging,GL_KHR_debug,GL_NV_transform_feedback"


@pytest.mark.parametrize(
    "choice",
    [
        CORE,
        CORE._replace(extensions="all"),
        CORE._replace(version="3.1", extensions=SOME),
        Choice("gl", "compatibility", "3.3", SOME),
        Choice("gl", "compatibility", "4.6", "all"),
        Choice("gles1", "common", "1.0", "all"),
        Choice("gles2", "", "3.2", "all"),
        Choice("glsc2", "", "2.0"),
    ],
    ids="-".join,
)
def test_names_and_values_are_those_of_glad(tmp_path: Path, choice: Choice) -> None:
    ours = make(tmp_path / "ours", choice, GLAD_REGISTRY)
    theirs = make_with_glad(tmp_path / "theirs", choice)
    assert len(command_names(theirs)) > 100
    assert command_names(ours) == command_names(theirs)
    assert constant_values(ours) == constant_values(theirs)
    compile_c(tmp_path / "loader.o", ours.with_suffix(".c"), "-c", include=ours.parent)


def test_registries_differ_in_what_only_one_of_them_has(tmp_path: Path) -> None:
    choice = CORE._replace(extensions="all")
    headers = [make(tmp_path / r.parent.name, choice, r) for r in (REGISTRY, GLAD_REGISTRY)]
    names = [command_names(header) | constant_values(header).keys() for header in headers]
    texts = [registry.read_text() for registry in (REGISTRY, GLAD_REGISTRY)]
    in_one = {name for name in names[0] ^ names[1] if (name in texts[0]) != (name in texts[1])}
    assert names[0] ^ names[1] == in_one


def test_every_command_is_looked_up_by_its_name(tmp_path: Path) -> None:
    header = make(tmp_path, CORE._replace(extensions="all"))
    program = tmp_path / "program.c"
    checks = "".join(
        f'  if ((glloader_command){name} != get("{name}")) puts("{name}");\n'
        for name in sorted(command_names(header))
    )
    # Each name has an address of its own, which nobody calls but for the few that loading needs.
    program.write_text(
        '#include <stdio.h>\n#include "fake.h"\n'
        f"int main(void) {{ glloader_load(get);\n{checks}  return 0; }}\n"
    )
    extensions = sorted(
        n
        for n in header.with_name("gl_extensions.h").read_text().split()
        if n.startswith("glloader_has_")
    )
    listed = ", ".join(f'"{n.removeprefix("glloader_has_").rstrip(";")}"' for n in extensions)
    (tmp_path / "fake.h").write_text(FAKE.replace("EXTENSIONS", listed))
    loader = header.with_suffix(".c")
    assert output(compile_c(tmp_path / "program", program, loader, include=tmp_path)) == ""


FAKE = """\
#include <stdint.h>
#include <string.h>
#include "gl_loader.h"
static const char *const extensions[] = {EXTENSIONS};
static char names[4096][64];
static const GLubyte *GLLOADER_CALL text(GLenum name) { (void)name; return (GLubyte *)"4.6"; }
static const GLubyte *GLLOADER_CALL at(GLenum name, GLuint i) {
  (void)name; return (const GLubyte *)extensions[i];
}
static void GLLOADER_CALL count(GLenum name, GLint *value) {
  (void)name; *value = (GLint)(sizeof extensions / sizeof *extensions);
}
static glloader_command get(const char *name) {
  uintptr_t i = 0;
  if (strcmp(name, "glGetString") == 0) return (glloader_command)text;
  if (strcmp(name, "glGetStringi") == 0) return (glloader_command)at;
  if (strcmp(name, "glGetIntegerv") == 0) return (glloader_command)count;
  while (names[i][0] != 0 && strcmp(names[i], name) != 0) i++;
  strcpy(names[i], name);
  return (glloader_command)(i + 1);
}
"""


def test_a_context_gives_what_it_has(tmp_path: Path) -> None:
    header = make(tmp_path, CORE._replace(extensions=SOME))
    program = compile_c(
        tmp_path / "fake_context",
        EXAMPLE / "fake_context.c",
        header.with_suffix(".c"),
        include=tmp_path,
    )
    called = (
        "glClear reached the context with 0x4100\n"
        "glIsEnabled gave 1 for GL_BLEND, 0 for GL_DITHER\n"
    )

    def found(*arguments: str) -> list[str]:
        first, *lines = output(program, *arguments).splitlines(keepends=True)
        assert "".join(lines[:2]) == called
        return [first.split(",")[0], *(line.split()[-1] for line in lines[2:])]

    assert found() == ["version 4.6", "found", "missing"]
    assert found("3.1 fake 9.9", "GL_KHR_debug", "GL_ARB_bindless_texture") == [
        "version 3.1",
        "found",
        "found",
    ]
    # A name that begins like that of an extension is not that extension.
    assert found("3.0", "GL_ARB_bindless", "GL_ARB_bindless_texture2") == [
        "version 3.0",
        "missing",
        "missing",
    ]
    refused = run(program, "no version")
    assert (refused.returncode, refused.stderr) == (1, "the fake context was not recognised\n")


def test_banners_name_the_functions(tmp_path: Path) -> None:
    done = generate(tmp_path, "version=1.0", script=EXAMPLE / "banner.py")
    assert (done.returncode, done.stderr) == (0, "")
    assert done.stdout == "gl_loader.c has 3 functions\n"
    line = "{}: made from the Khronos registry. Do not edit; make it again.\n"
    functions = " *\n * Functions:\n * look_up_GL_VERSION_1_0, find_versions, glloader_load\n"
    source = (tmp_path / "gl_loader.c").read_text()
    assert source.startswith("/*\n * " + line.format("gl_loader.c") + functions + " */\n")
    header = (tmp_path / "gl_version_1_0.h").read_text()
    assert " * " + line.format("gl_version_1_0.h") in header


@pytest.mark.parametrize(
    "setting, message",
    [
        ("api=gl4", "the registry has no API gl4"),
        ("version=4.7", "gl has no version 4.7"),
        ("profile=compat", "gl has no profile compat"),
        ("extensions=GL_KHR_debug,GL_KHR_debugger", "gl has no extension GL_KHR_debugger"),
        ('extensions=["GL_OES_texture_3D"]', "gl has no extension GL_OES_texture_3D"),
    ],
)
def test_choices_that_the_registry_does_not_offer(
    tmp_path: Path, setting: str, message: str
) -> None:
    done = generate(tmp_path / "out", setting)
    assert done.returncode == 1
    place, _, text = done.stderr.removeprefix("error: ").partition(": ")
    assert (Path(place.split(":")[0]).absolute(), text) == (
        EXAMPLE / "selection.py",
        message + "\n",
    )
    assert not (tmp_path / "out").exists()
