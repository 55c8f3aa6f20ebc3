"""From parsed templates to Python code that prints by calls instead of yielding pieces.

The code of every template, block and macro has the names `printer` (orv._native.Printer), `write`
(its method) and `statements`. Output becomes `write(a, b, c)`, each argument on a line of its own:
when the printer fails on argument i, its line in the template is that of the i-th line of the call.
What Jinja2 collects in a list, the printer captures: a buffer is the number that `printer.enter()`
gives, and `concat`, which Jinja2 calls with it, is `printer.leave`.
"""

from __future__ import annotations

import re
import warnings
from collections.abc import Iterable, Iterator
from contextlib import contextmanager
from types import CodeType
from typing import Any

from jinja2 import TemplateSyntaxError, nodes
from jinja2.compiler import CodeGenerator, Frame, MacroRef

from orv.delimiters import tag
from orv.templates.sandbox.depth import TOO_DEEP
from orv.templates.printable import outside_text

_NOTHING_OUTSIDE = (
    "a template that extends another prints nothing outside its blocks; put this into a block"
)


class TemplateCode(CodeGenerator):
    """Compiles output, the packaging tags and loop controls for the printer.

    Also refuses the text that a template would drop without a word.
    """

    def __init__(self, *arguments: Any, **named: Any) -> None:
        super().__init__(*arguments, **named)
        # The loops that are being compiled, outermost first.
        self._loops: list[nodes.For] = []
        # By loop or macro, innermost last: the name of the variable that has the printer's depth
        # in the loop's body; None in a macro.
        self._depths: list[str | None] = []
        # The calls whose result is printed as it is.
        self._printed: set[int] = set()

    def visit_Template(self, node: nodes.Template, frame: Frame | None = None) -> None:
        """Compile a template, with an eye to the blocks that it prints by `self.NAME()`."""
        self._called_blocks = {
            access.attr
            for access in node.find_all(nodes.Getattr)
            if isinstance(access.node, nodes.Name) and access.node.name == "self"
        }
        super().visit_Template(node, frame)

    def write_commons(self) -> None:
        """Begin the code of a template or block. It stays a generator, which yields nothing."""
        self.writeline("resolve = context.resolve_or_missing")
        self.writeline("undefined = environment.undefined")
        self.writeline("statements = environment.statements")
        self.writeline("printer = environment.printer")
        self.writeline("write = printer.write")
        self.writeline("entry = environment.entry")
        self.writeline("concatenate = environment.concatenate")
        self.writeline("concat = printer.leave")
        self.writeline("cond_expr_undefined = Undefined")
        self.writeline("if 0: yield None")

    def buffer(self, frame: Frame) -> None:
        """Capture what the frame prints, unless it is printed as it is."""
        frame.buffer = self.temporary_identifier()
        self.writeline(f"{frame.buffer} = printer.enter()")

    def start_write(self, frame: Frame, node: nodes.Node | None = None) -> None:
        """Begin to print a value; what a recursive loop prints is printed as it is."""
        if isinstance(node, nodes.For):
            self.writeline("printer.print_next()", node)
        self.writeline("write(", node)

    def end_write(self, frame: Frame) -> None:
        """End what `start_write` began."""
        self.write(")")

    def simple_write(self, s: str, frame: Frame, node: nodes.Node | None = None) -> None:
        """Called for each piece that a block yields: it has printed and yields none."""
        self.writeline("pass", node)

    # Output

    def visit_Output(self, node: nodes.Output, frame: Frame) -> None:
        """Compile output: as few calls as possible, and one for each call that may print itself."""
        if frame.require_output_check:
            if self.extends_so_far:
                for child in node.nodes:
                    self._refuse_lost(child)
            if self.has_known_extends:
                return
            self.writeline("if parent_template is None:")
            self.indent()
        for group in _groups(node.nodes):
            self._write_group(group, frame)
        if frame.require_output_check:
            self.outdent()

    def _write_group(self, group: list[nodes.Expr], frame: Frame) -> None:
        for position, child in enumerate(group):
            at = nodes.Output([child], lineno=_first_text_line(child))
            if position == 0:
                self.writeline("write(", at)
            else:
                self.write(",")
                self.newline(at)
            self._write_argument(child, frame)
        self._end_group(group)

    def _end_group(self, group: list[nodes.Expr]) -> None:
        """End the call that prints a group."""
        self.write(")")

    def _write_argument(self, child: nodes.Expr, frame: Frame) -> None:
        escapes = frame.eval_ctx.volatile or frame.eval_ctx.autoescape
        if isinstance(child, nodes.TemplateData) or not escapes:
            self._print_as_it_is(child)
            self.visit(child, frame)
            return
        self.write("(escape if context.eval_ctx.autoescape else identity)(environment.finalize(")
        self.visit(child, frame)
        self.write("))")

    def _print_as_it_is(self, node: nodes.Expr) -> None:
        if isinstance(node, nodes.Call):
            self._printed.add(id(node))

    def visit_Concat(self, node: nodes.Concat, frame: Frame) -> None:
        """Compile `~`, whose operands become text as if they were printed."""
        if frame.eval_ctx.volatile or frame.eval_ctx.autoescape:
            super().visit_Concat(node, frame)
            return
        self._call_operation("concatenate", node.nodes, frame)

    def visit_Add(self, node: nodes.BinExpr, frame: Frame) -> None:  # type: ignore[override]
        """Compile `+`, whose result is bounded."""
        self._call_operation("environment.add", [node.left, node.right], frame)

    def visit_Getattr(self, node: nodes.Getattr, frame: Frame) -> None:
        """Compile `a.b`."""
        self.write("entry(")
        self.visit(node.node, frame)
        self.write(f", {node.attr!r})")

    # Calls

    def visit_Call(self, node: nodes.Call, frame: Frame, forward_caller: bool = False) -> None:
        """Compile a call: of an operation behind a tag, of something printed, or any other."""
        if isinstance(node.node, nodes.EnvironmentAttribute):
            self._call_operation(node.node.name, node.args, frame)
        elif forward_caller or id(node) in self._printed:
            self._begin_printed_call(node)
            self.visit(node.node, frame)
            more = {"caller": "caller"} if forward_caller else {}
            if frame.loop_frame:
                more["_loop_vars"] = "_loop_vars"
            if frame.block_frame:
                more["_block_vars"] = "_block_vars"
            self.signature(node, frame, more)
            self.write(")")
        else:
            super().visit_Call(node, frame)

    def _begin_printed_call(self, node: nodes.Call) -> None:
        self.write("environment.call_printed(context, ")

    def _call_operation(
        self, operation: str, arguments: Iterable[nodes.Node], frame: Frame
    ) -> None:
        self.write(f"{operation}(")
        for argument in arguments:
            self.visit(argument, frame)
            self.write(", ")
        self.write(")")

    def visit_CallBlock(self, node: nodes.CallBlock, frame: Frame) -> None:
        """Compile `call`, or a packaging tag with a body."""
        opening = node.call.node
        if not isinstance(opening, nodes.EnvironmentAttribute):
            super().visit_CallBlock(node, frame)
            return
        self.newline(node)
        self._call_operation(opening.name, node.call.args, frame)
        inner = frame.inner()
        inner.require_output_check = False
        inner.symbols.analyze_node(node)
        self.enter_frame(inner)
        self.blockvisit(node.body, inner)
        fills = opening.name == "printer.fill"
        self.writeline("statements.end_fill()" if fills else "printer.close()", node)
        self.leave_frame(inner)

    def visit_FilterBlock(self, node: nodes.FilterBlock, frame: Frame) -> None:
        """Compile `filter`, whose text is captured also in a template that extends another."""
        outer = frame.require_output_check
        frame.require_output_check = False
        super().visit_FilterBlock(node, frame)
        frame.require_output_check = outer

    # Templates and blocks

    def visit_Include(self, node: nodes.Include, frame: Frame) -> None:
        """Compile an include: what the template prints goes where the include is."""
        if node.ignore_missing:
            self.writeline("try:")
            self.indent()
        self.writeline("template = environment.get_or_select_template(", node)
        self.visit(node.template, frame)
        self.write(f", {self.name!r})")
        if node.ignore_missing:
            self.outdent()
            self.writeline("except TemplateNotFound:")
            self.indent()
            self.writeline("pass")
            self.outdent()
            self.writeline("else:")
            self.indent()
        context = f", context, {self.dump_local_context(frame)}" if node.with_context else ""
        self.writeline(f"environment.include(template{context})", node)
        if node.ignore_missing:
            self.outdent()

    def visit_Block(self, node: nodes.Block, frame: Frame) -> None:
        """Compile a block, which must have its place in a template that this one extends."""
        super().visit_Block(node, frame)
        if frame.toplevel and self.extends_so_far and node.name not in self._called_blocks:
            self.writeline("if parent_template is not None:")
            self.indent()
            self.writeline(f"context.require_place({node.name!r}, block_{node.name})", node)
            self.outdent()

    def _refuse_lost(self, node: nodes.Expr) -> None:
        """Refuse what is printed beside an extended template, at run time if only then known."""
        complaint, line = _NOTHING_OUTSIDE, node.lineno
        if isinstance(node, nodes.TemplateData):
            if not node.data or node.data.isspace():
                return
            complaint, line = outside_text(node.data), _first_text_line(node)
        if self.has_known_extends:
            self.fail(complaint, line)
        self.writeline("if parent_template is not None:")
        self.indent()
        piece = nodes.Output([node], lineno=line)
        self.writeline(f"raise TemplateRuntimeError({complaint!r})", piece)
        self.outdent()

    # Loops and macros

    def visit_For(self, node: nodes.For, frame: Frame) -> None:
        """Compile a loop. A recursive one prints like a macro, once its list is known."""
        if node.recursive:
            node = self._with_known_list(node, frame)
        node = nodes.For(
            node.target, self._with_order(node.iter), node.body, node.else_, node.test,
            node.recursive, lineno=node.lineno,
        )  # fmt: skip
        self._loops.append(node)
        super().visit_For(node, frame)
        self._loops.pop()

    def _with_order(self, iterated: nodes.Node) -> nodes.Node:
        """The values that a loop goes over, in an order that is the same in each run."""
        if isinstance(iterated, (nodes.Const, nodes.List, nodes.Tuple, nodes.InternalName)):
            return iterated
        ordered = nodes.EnvironmentAttribute("environment.ordered", lineno=iterated.lineno)
        return nodes.Call(ordered, [iterated], [], None, None, lineno=iterated.lineno)

    def _with_known_list(self, node: nodes.For, frame: Frame) -> nodes.For:
        known: Any = object.__new__(nodes.InternalName)
        nodes.Node.__init__(known, self.temporary_identifier(), lineno=node.lineno)
        self.writeline(f"{known.name} = ", node)
        self.visit(self._with_order(node.iter), frame)
        return nodes.For(
            node.target, known, node.body, node.else_, node.test, node.recursive, lineno=node.lineno
        )

    def blockvisit(self, body: Iterable[nodes.Node], frame: Frame) -> None:
        """Compile statements; the body of a loop notes how deep the printer is, to leave it."""
        if self._loops and body is self._loops[-1].body:
            self._visit_loop_body(body, frame)
        else:
            super().blockvisit(body, frame)

    def _visit_loop_body(self, body: Iterable[nodes.Node], frame: Frame) -> None:
        depth = self.temporary_identifier()
        if _has_controls(body):
            self.writeline(f"{depth} = printer.depth")
        with self._inside(depth):
            super().blockvisit(body, frame)

    def macro_body(
        self, node: nodes.Macro | nodes.CallBlock, frame: Frame
    ) -> tuple[Frame, MacroRef]:
        """Compile the function of a macro, which belongs to no loop."""
        with self._inside(None):
            return super().macro_body(node, frame)

    def visit_Break(self, node: nodes.Break, frame: Frame) -> None:
        """Compile `break`, which ends the sections and files that it leaves."""
        self._leave_bodies("break", node)
        super().visit_Break(node, frame)

    def visit_Continue(self, node: nodes.Continue, frame: Frame) -> None:
        """Compile `continue`, which ends the sections and files that it leaves."""
        self._leave_bodies("continue", node)
        super().visit_Continue(node, frame)

    def _leave_bodies(self, name: str, node: nodes.Stmt) -> None:
        depth = self._depths[-1] if self._depths else None
        if depth is None:
            self.fail(f"{tag(name)} belongs into a loop", node.lineno)
        self.writeline(f"statements.close_to({depth})", node)

    @contextmanager
    def _inside(self, depth: str | None) -> Iterator[None]:
        self._depths.append(depth)
        yield
        self._depths.pop()


# The line of the template for lines of its code, as Jinja2 writes it at the end of the code.
_LINES = re.compile(r"^debug_info = '(.*)'$", re.MULTILINE)

_TWICE = re.compile(r"keyword argument repeated: (\w+)")


def compiled(source: str, filename: str) -> CodeType:
    """The code of a template.

    Raises TemplateSyntaxError where it is nested too deeply for Python, or names an argument twice.
    """
    try:
        with warnings.catch_warnings():
            # Of what fails when it runs, with the template's line.
            warnings.simplefilter("ignore", SyntaxWarning)
            code: CodeType = compile(source, filename, "exec")
        return code
    except (SyntaxError, RecursionError) as error:
        written = _LINES.findall(source)[-1].split("&")
        pairs = [(int(line), int(at)) for line, at in (pair.split("=") for pair in written if pair)]
        failed = getattr(error, "lineno", None) or 0
        line = max((line for line, at in pairs if at <= failed), default=1)
        twice = _TWICE.match(str(error))
        what = f'the argument "{twice[1]}" is given twice' if twice else TOO_DEEP
        raise TemplateSyntaxError(what, line, filename=filename) from error


def _groups(children: list[nodes.Expr]) -> Iterator[list[nodes.Expr]]:
    """What one call prints each: a call alone, as it may print while it runs."""
    group: list[nodes.Expr] = []
    for child in children:
        if isinstance(child, nodes.TemplateData) and not child.data:
            continue
        if not isinstance(child, nodes.Call):
            group.append(child)
            continue
        if group:
            yield group
        yield [child]
        group = []
    if group:
        yield group


def _has_controls(body: Iterable[nodes.Node]) -> bool:
    wrapped = nodes.Scope(list(body))
    return wrapped.find(nodes.Break) is not None or wrapped.find(nodes.Continue) is not None


def _first_text_line(node: nodes.Expr) -> int:
    """The line on which something printed begins, white space aside."""
    if not isinstance(node, nodes.TemplateData):
        return node.lineno
    white_space = len(node.data) - len(node.data.lstrip())
    return node.lineno + node.data.count("\n", 0, white_space)
