"""Templates compiled for a run that is traced: what they print carries its origin.

Every text and value that a template prints is a *site*, with a number; `write` becomes
`write_traced`, whose last argument is the site of the first one. Around macros, includes, blocks
and the bodies of loops the code enters and leaves a *link*, which the printer keeps for what is
printed.
"""

from __future__ import annotations

from collections.abc import Iterable, Iterator
from contextlib import contextmanager
from typing import Any

from jinja2 import nodes
from jinja2.compiler import Frame
from jinja2.runtime import BlockReference, LoopContext, Macro

from orv._native import Trace
from orv.positions import template_label
from orv.templates.compiler import TemplateCode


class Sites:
    """The sites and labels of the templates of a run, in its trace."""

    def __init__(self, trace: Trace) -> None:
        self.trace = trace
        # By template and the position among its sites. Compiling a template once more gives the
        # same numbers.
        self._sites: dict[tuple[str, int], int] = {}
        self._labels: dict[tuple[str, str], int] = {}

    def site(self, template: str, position: int, kind: str, line: int, lines: int) -> int:
        """The number of a site of so many lines; sites that are asked for in a row have consecutive
        numbers.
        """
        key = (template, position)
        if key not in self._sites:
            self._sites[key] = self.trace.add_site(kind, template, line, lines)
        return self._sites[key]

    def label(self, kind: str, name: str) -> int:
        """The number of a kind and name of links."""
        key = (kind, name)
        if key not in self._labels:
            self._labels[key] = self.trace.add_label(kind, name)
        return self._labels[key]

    def label_of(self, callee: object) -> int | None:
        """The label of what prints by itself when it is called; None for anything else."""
        kind = type(callee)
        if kind is Macro:
            # The macro that a `call` tag makes has no name.
            name = callee.name  # type: ignore[attr-defined]
            return self.label("macro", name) if name else self.label("call", "")
        if kind is BlockReference:
            return self.label("block", callee.name)  # type: ignore[attr-defined]
        return self.label("loop", "") if kind is LoopContext else None


class TracedCode(TemplateCode):
    """Compiles a template as TemplateCode does, with the origins of what it prints."""

    def __init__(self, *arguments: Any, **named: Any) -> None:
        super().__init__(*arguments, **named)
        self._sites: Sites = self.environment.sites  # type: ignore[attr-defined]
        self._label = template_label(self.name, self.filename)
        self._count = 0
        # What start_write() began to print.
        self._printing: list[nodes.Node | None] = []
        # By loop that is being compiled: what it iterates over and the variable with the position
        # of its element, and the variable with the link of its body.
        self._iterated: list[tuple[str, str]] = []
        self._entered: list[str] = []

    def write_commons(self) -> None:
        """Begin the code of a template or block."""
        super().write_commons()
        self.writeline("write = printer.write_traced")

    # Output

    def start_write(self, frame: Frame, node: nodes.Node | None = None) -> None:
        """Begin to print a value."""
        self._printing.append(node)
        super().start_write(frame, node)

    def end_write(self, frame: Frame) -> None:
        """End what `start_write` began."""
        node = self._printing.pop()
        self.write(f", {self._site('value', node.lineno if node is not None else 0)})")

    def _end_group(self, group: list[nodes.Expr]) -> None:
        sites = [self._site_of(child) for child in group]
        self.write(f", {sites[0]})")

    def _site_of(self, child: nodes.Expr) -> int:
        if not isinstance(child, nodes.TemplateData):
            return self._site("value", child.lineno)
        lines = child.data.removesuffix("\n").count("\n") + 1
        return self._site("text", child.lineno, lines)

    def _begin_printed_call(self, node: nodes.Call) -> None:
        self.write(f"environment.call_traced({self._site('tag', node.lineno)}, context, ")

    # Links

    def visit_Include(self, node: nodes.Include, frame: Frame) -> None:
        """Compile an include."""
        with self._linked(node, "include", node.template):
            super().visit_Include(node, frame)

    def visit_Import(self, node: nodes.Import, frame: Frame) -> None:
        """Compile an import, whose template may open files and sections."""
        with self._linked(node, "import", node.template):
            super().visit_Import(node, frame)

    def visit_FromImport(self, node: nodes.FromImport, frame: Frame) -> None:
        """Compile an import, whose template may open files and sections."""
        with self._linked(node, "import", node.template):
            super().visit_FromImport(node, frame)

    def visit_Block(self, node: nodes.Block, frame: Frame) -> None:
        """Compile a block, which is printed here unless the template extends another."""
        if frame.toplevel and self.has_known_extends:
            super().visit_Block(node, frame)
            return
        with self._linked(node, "block", nodes.Const(node.name)):
            super().visit_Block(node, frame)

    def visit_Extends(self, node: nodes.Extends, frame: Frame) -> None:
        """Compile `extends`; the link to what is extended is left with the template."""
        super().visit_Extends(node, frame)
        self.writeline(self._entering(node, "extends", node.template))

    def visit_For(self, node: nodes.For, frame: Frame) -> None:
        """Compile a loop with what it iterates over at hand."""
        if node.recursive:
            self._iterated.append(("reciter", "-1"))
        else:
            node = self._with_known_list(node, frame)
            assert isinstance(node.iter, nodes.InternalName)
            position = self.temporary_identifier()
            self.writeline(f"{position} = -1")
            # A test leaves elements out.
            self._iterated.append((node.iter.name, "-1" if node.test else position))
        super().visit_For(node, frame)
        self._iterated.pop()

    def _visit_loop_body(self, body: Iterable[nodes.Node], frame: Frame) -> None:
        link = self.temporary_identifier()
        iterated, position = self._iterated[-1]
        if position != "-1":
            self.writeline(f"{position} += 1")
        loop = self._loops[-1]
        element = self._element(loop.target, frame)
        site = self._site("tag", loop.lineno)
        self.writeline(f"{link} = printer.enter_loop({site}, {element}, {iterated}, {position})")
        self._entered.append(link)
        super()._visit_loop_body(body, frame)
        self._entered.pop()
        self.writeline(f"printer.leave_link({link})")

    def _element(self, target: nodes.Node, frame: Frame) -> str:
        if isinstance(target, nodes.Name):
            return frame.symbols.ref(target.name)
        names = [frame.symbols.ref(name.name) for name in target.find_all(nodes.Name)]
        return "(" + "".join(f"{name}, " for name in names) + ")"

    def _leave_bodies(self, tag: str, node: nodes.Stmt) -> None:
        super()._leave_bodies(tag, node)
        self.writeline(f"printer.leave_link({self._entered[-1]})", node)

    @contextmanager
    def _linked(self, node: nodes.Node, kind: str, name: nodes.Expr) -> Iterator[None]:
        link = self.temporary_identifier()
        self.writeline(f"{link} = {self._entering(node, kind, name)}", node)
        yield
        self.writeline(f"printer.leave_link({link})", node)

    def _entering(self, node: nodes.Node, kind: str, name: nodes.Expr) -> str:
        known = str(name.value) if isinstance(name, nodes.Const) else ""
        label = self._sites.label(kind, known)
        return f"printer.enter_link({self._site('tag', node.lineno)}, {label})"

    def _site(self, kind: str, line: int, lines: int = 1) -> int:
        self._count += 1
        return self._sites.site(self._label, self._count, kind, line, lines)
