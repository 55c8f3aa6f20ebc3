"""The trace of the OpenGL loader is true: a change where it points to changes those bytes."""

from __future__ import annotations

import random
import re
import shutil
import sys
from pathlib import Path

from loaders import EXAMPLE, REGISTRY, compile_c, output

from orv import trace as tracing

LINES = 200
# A tag or printed expression of a template.
TAG = re.compile(r"(\{\{.*?\}\}|\{[%#].*?[%#]\})")

# The kind of a site, its template and line.
Place = tuple[str, str, int]


class Loader:
    """The example, copied and generated below a folder, with its trace."""

    def __init__(self, folder: Path) -> None:
        self.templates = folder / "gl"
        self.registry = folder / "gl.xml"
        self._folder = folder
        shutil.copytree(EXAMPLE, self.templates)
        shutil.copy(REGISTRY, self.registry)

    def generate(self, *options: str, name: str = "out") -> dict[str, bytes]:
        """The files by path, generated from nothing."""
        out = self._folder / name
        shutil.rmtree(out, ignore_errors=True)
        output(
            sys.executable, "-m", "orv", "generate", self.templates / "loader.c.j2", "--extend",
            self.templates / "selection.py", "--model", self.registry, "--out", out, "--quiet",
            "--set", "version=3.1", "--set", "extensions=GL_KHR_debug,GL_ARB_imaging",
            "--trace", self._folder / "trace.json", "--no-state", *options,
        )  # fmt: skip
        return {str(p.relative_to(out)): p.read_bytes() for p in out.rglob("*") if p.is_file()}

    def trace(self) -> tracing.Trace:
        """The trace of the last run."""
        return tracing.read(self._folder / "trace.json")


def sampled(trace: tracing.Trace, files: dict[str, bytes]) -> list[tracing.Piece]:
    """A piece that a template printed of each of some lines."""
    lines = [(path, n) for path, file in trace.files.items() for n in range(len(file.line_ends))]
    random.seed(len(lines))
    found: list[tracing.Piece] = []
    random.shuffle(lines)
    for path, number in lines:
        data = files[path]
        pieces = [
            piece
            for piece in trace.files[path].on_line(number + 1)
            if piece.site.kind in ("text", "value") and data[piece.begin : piece.end].strip()
        ]
        if pieces:
            found.append(random.choice(pieces))
        if len(found) == LINES:
            break
    return found


def mark(places: set[Place]) -> None:
    """Change the lines of templates: each text, or each printed expression."""
    for kind, name, number in places:
        path = Path(name)
        lines = path.read_text().splitlines(keepends=True)
        parts = TAG.split(lines[number - 1])
        for i, part in enumerate(parts):
            if kind == "value" and part.startswith("{{"):
                parts[i] = f'{{{{ ({part[2:-2]}) ~ "@{number}" }}}}'
            elif kind == "text" and not TAG.match(part):
                parts[i] = marked(part.encode(), kind, number).decode()
        lines[number - 1] = "".join(parts)
        path.write_text("".join(lines))


def marked(printed: bytes, kind: str, line: int) -> bytes:
    """What becomes of a piece when its place is marked."""
    mark = b"@%d" % line
    return printed + mark if kind == "value" else re.sub(rb"(?=\S)", mark, printed, count=1)


def test_changed_templates(tmp_path: Path) -> None:
    loader = Loader(tmp_path)
    files = loader.generate()
    trace = loader.trace()
    sample = sampled(trace, files)
    assert len(sample) == LINES
    changed = {(piece.site.kind, piece.site.file, piece.line) for piece in sample}
    expected = {
        path: b"".join(
            marked(printed, piece.site.kind, piece.line)
            if (piece.site.kind, piece.site.file, piece.line) in changed
            else printed
            for piece in file.pieces()
            for printed in [files[path][piece.begin : piece.end]]
        )
        for path, file in trace.files.items()
    }
    mark(changed)
    assert loader.generate() == expected


def test_line_directives(tmp_path: Path) -> None:
    loader = Loader(tmp_path)
    texts: list[str] = []
    for name, options in {"plain": (), "directed": ("--line-directives",)}.items():
        files = loader.generate(*options, name=name)
        assert (b"#line" in files["gl_loader.c"]) == bool(options)
        source, program = tmp_path / name / "gl_loader.c", tmp_path / name / "context"
        texts.append(output("cc", "-E", "-P", source))
        compile_c(program, EXAMPLE / "fake_context.c", source, "-pedantic", include=source.parent)
        texts.append(output(program, "3.1", "GL_KHR_debug"))
    assert texts[:2] == texts[2:]


def test_changed_model(tmp_path: Path) -> None:
    loader = Loader(tmp_path)
    files = loader.generate()
    trace = loader.trace()
    lines = loader.registry.read_bytes().splitlines(keepends=True)
    expected: dict[str, bytes] = {}
    changed: set[int] = set()
    for path, file in trace.files.items():
        texts: list[bytes] = []
        for piece in file.pieces():
            printed = files[path][piece.begin : piece.end]
            chain = trace.chain(piece.link)
            element = chain[-1].element if chain else None
            if element and re.fullmatch(rb"0x[0-9A-F]{4}", printed) and element.line % 7 == 0:
                # An odd number of hexadecimal digits, which no other constant has.
                value = b'value="' + printed + b'"'
                assert element.line in changed or value in lines[element.line - 1]
                changed.add(element.line)
                lines[element.line - 1] = lines[element.line - 1].replace(value, value[:-1] + b'F"')
                printed += b"F"
            texts.append(printed)
        expected[path] = b"".join(texts)
    assert len(changed) > 50
    loader.registry.write_bytes(b"".join(lines))
    assert loader.generate() == expected
