"""Everything about templates that can be known without a model."""

from __future__ import annotations

import re
from collections.abc import Iterator
from typing import Any

from jinja2 import TemplateNotFound, TemplateSyntaxError, nodes

from orv import positions
from orv.errors import OrvError, did_you_mean
from orv.templates.mistakes.diagnosis import not_found, syntax_messages
from orv.templates.parser import TemplateMistakes

# How a template that cannot be parsed is seen to name others.
_REFERENCE = re.compile(r"""\b(?:extends|from|import|include)\s+["']([^"'\n]+)["']""")


class Linter:
    """Reads templates, and those that they name, without running them.

    `messages` has what is wrong, each text with its line, in the order in which it was found.
    """

    def __init__(self, environment: Any) -> None:
        self.messages: list[str] = []
        self._environment = environment
        self._trees: dict[str, nodes.Template | None] = {}
        self._labels: dict[str, str] = {}

    def read(self, name: str, line: str = "") -> None:
        """Read a template and those that it names. `line` is the line that asks for it."""
        if name in self._trees:
            return
        self._trees[name] = None
        try:
            tree = self._parsed(name)
        except TemplateNotFound as error:
            prefix = f"{line}: " if line else ""
            self.messages.append(prefix + not_found(error, self._environment.loader))
        except OrvError as error:
            self.messages.append(str(error))
        else:
            self._trees[name] = tree
            references = self._references(tree, name) if tree is not None else []
            for reference, place in list(references):
                self.read(reference, place)

    def _parsed(self, name: str) -> nodes.Template | None:
        """The tree of a template; when there is none None, and what it names is read."""
        environment = self._environment
        source, filename, _ = environment.loader.get_source(environment, name)
        self._labels[name] = positions.template_label(name, filename)
        tree: nodes.Template | None = None
        try:
            tree = environment._parse(source, name, filename)
            environment.compile(source, name, filename, raw=True)
        except TemplateSyntaxError as error:
            self.messages += syntax_messages(error)
            tree = error.tree if isinstance(error, TemplateMistakes) else tree
            for reference in _REFERENCE.findall(source) if tree is None else ():
                if self._exists(reference, name):
                    self.read(self._joined(reference, name))
        return tree

    def check(self) -> None:
        """Check what the templates that were read ask of each other."""
        for name, tree in self._trees.items():
            if tree is not None:
                self._check_blocks(name, tree)
                self._check_imports(name, tree)
                self._check_calls(name, tree)

    # What a template names

    def _references(self, tree: nodes.Template, parent: str) -> Iterator[tuple[str, str]]:
        for node in _all(tree, nodes.Extends, nodes.FromImport, nodes.Import, nodes.Include):
            names = _constants(node.template)
            if isinstance(node, nodes.Include) and (node.ignore_missing or len(names) > 1):
                names = [name for name in names if self._exists(name, parent)]
            for name in names:
                yield self._joined(name, parent), f"{self._labels[parent]}:{node.lineno}"

    def _joined(self, name: str, parent: str) -> str:
        return str(self._environment.join_path(name, parent))

    def _exists(self, name: str, parent: str) -> bool:
        try:
            self._environment.loader.get_source(self._environment, self._joined(name, parent))
        except TemplateNotFound:
            return False
        return True

    def _tree(self, expression: nodes.Expr, parent: str) -> tuple[str, nodes.Template] | None:
        names = _constants(expression)
        name = self._joined(names[0], parent) if len(names) == 1 else ""
        tree = self._trees.get(name)
        return None if tree is None else (name, tree)

    def _report(self, template: str, line: int, text: str) -> None:
        self.messages.append(f"{self._labels[template]}:{line}: {text}")

    # Blocks without a place

    def _check_blocks(self, name: str, tree: nodes.Template) -> None:
        blocks = self._inherited_blocks(name, tree)
        if blocks is None:
            return
        own = {block.name: block for block in tree.find_all(nodes.Block)}
        inner = {block.name for outer in own.values() for block in outer.find_all(nodes.Block)}
        called = _called_blocks(tree)
        for block in own.values():
            if block.name not in blocks | inner | called:
                hint = did_you_mean(block.name, sorted(blocks)) or "; what it prints would be lost"
                self._report(
                    name,
                    block.lineno,
                    f'no template that this one extends has a block "{block.name}"{hint}',
                )

    def _inherited_blocks(self, name: str, tree: nodes.Template) -> set[str] | None:
        """The blocks of all that a template extends; None when that cannot be known."""
        blocks: set[str] = set()
        seen: set[str] = set()
        while tree.find(nodes.Extends) is not None:
            extends = list(tree.find_all(nodes.Extends))
            parent = self._tree(extends[0].template, name) if len(extends) == 1 else None
            if parent is None or parent[0] in seen:
                return None
            name, tree = parent
            seen.add(name)
            blocks |= {block.name for block in tree.find_all(nodes.Block)} | _called_blocks(tree)
        return blocks if seen else None

    # Imports and calls

    def _check_imports(self, name: str, tree: nodes.Template) -> None:
        for node in tree.find_all(nodes.FromImport):
            found = self._tree(node.template, name)
            if found is None:
                continue
            exported = _exported(found[1])
            for entry in node.names:
                wanted = entry[0] if isinstance(entry, tuple) else entry
                if wanted not in exported:
                    hint = did_you_mean(wanted, sorted(exported))
                    text = f'the template "{found[0]}" has no "{wanted}" to import{hint}'
                    self._report(name, node.lineno, text)

    def _check_calls(self, name: str, tree: nodes.Template) -> None:
        macros = _macros(tree)
        modules: dict[str, tuple[str, nodes.Template]] = {}
        for node in _all(tree, nodes.FromImport, nodes.Import):
            found = self._tree(node.template, name)
            if found is None:
                continue
            if isinstance(node, nodes.Import):
                modules[node.target] = found
                continue
            theirs = _macros(found[1])
            for entry in node.names:
                wanted, alias = entry if isinstance(entry, tuple) else (entry, entry)
                if wanted in theirs:
                    macros[alias] = theirs[wanted]
        rebound = _rebound(tree)
        for call in tree.find_all(nodes.Call):
            self._check_call(name, call, macros, modules, rebound)

    def _check_call(
        self,
        name: str,
        call: nodes.Call,
        macros: dict[str, nodes.Macro | None],
        modules: dict[str, tuple[str, nodes.Template]],
        rebound: set[str],
    ) -> None:
        callee = call.node
        macro: nodes.Macro | None = None
        if isinstance(callee, nodes.Name) and callee.name not in rebound:
            if callee.name in macros:
                macro = macros[callee.name]
            else:
                self._check_function(name, callee, macros)
        elif isinstance(callee, nodes.Getattr) and isinstance(callee.node, nodes.Name):
            module = modules.get(callee.node.name)
            if module is not None and callee.node.name not in rebound:
                exported = _exported(module[1])
                if callee.attr not in exported:
                    hint = did_you_mean(callee.attr, sorted(exported))
                    text = f'the template "{module[0]}" has no macro "{callee.attr}"{hint}'
                    self._report(name, call.lineno, text)
                macro = _macros(module[1]).get(callee.attr)
        if macro is not None:
            for text in _wrong_arguments(call, macro):
                self._report(name, call.lineno, text)

    def _check_function(
        self, name: str, callee: nodes.Name, macros: dict[str, nodes.Macro | None]
    ) -> None:
        """Report a function that nothing defines: a model has none."""
        known = set(macros) | set(self._environment.globals) | {"caller", "loop", "super"}
        for tree in self._trees.values():
            known |= _exported(tree) if tree is not None else set()
        if callee.name not in known and None not in self._trees.values():
            hint = did_you_mean(callee.name, sorted(known))
            self._report(
                name, callee.lineno, f'there is no macro or function "{callee.name}"{hint}'
            )


def _all(tree: nodes.Template, *kinds: type[nodes.Stmt]) -> Iterator[Any]:
    """The statements of these kinds."""
    return tree.find_all(kinds)


def _constants(expression: nodes.Expr) -> list[str]:
    entries = (
        expression.items if isinstance(expression, (nodes.List, nodes.Tuple)) else [expression]
    )
    return [entry.value for entry in entries
            if isinstance(entry, nodes.Const) and isinstance(entry.value, str)]  # fmt: skip


def _called_blocks(tree: nodes.Template) -> set[str]:
    return {
        access.attr
        for access in tree.find_all(nodes.Getattr)
        if isinstance(access.node, nodes.Name) and access.node.name == "self"
    }


def _macros(tree: nodes.Template) -> dict[str, nodes.Macro | None]:
    """The macros by name; None for a name that several have."""
    macros: dict[str, nodes.Macro | None] = {}
    for macro in tree.find_all(nodes.Macro):
        macros[macro.name] = None if macro.name in macros else macro
    return macros


def _exported(tree: nodes.Template) -> set[str]:
    """The names that a template defines, wherever it does."""
    names = {macro.name for macro in tree.find_all(nodes.Macro)} | _rebound(tree)
    for node in _all(tree, nodes.FromImport, nodes.Import):
        if isinstance(node, nodes.Import):
            names.add(node.target)
        else:
            names |= {entry[1] if isinstance(entry, tuple) else entry for entry in node.names}
    return names


def _rebound(tree: nodes.Template) -> set[str]:
    """The names that are set, looped over or parameters."""
    return {name.name for name in tree.find_all(nodes.Name) if name.ctx != "load"}


def _wrong_arguments(call: nodes.Call, macro: nodes.Macro) -> Iterator[str]:
    """What is wrong with the arguments of a call, if it can be known."""
    named = [keyword.key for keyword in call.kwargs]
    parameters = [parameter.name for parameter in macro.args]
    uses = {name.name for name in macro.find_all(nodes.Name)}
    if len(call.args) > len(parameters) and call.dyn_args is None and "varargs" not in uses:
        yield f'the macro "{macro.name}" takes at most {len(parameters)} arguments'
    for key in named:
        if key not in parameters and key != "caller" and "kwargs" not in uses:
            hint = did_you_mean(key, parameters)
            yield f'the macro "{macro.name}" has no argument "{key}"{hint}'
    if call.dyn_args is not None or call.dyn_kwargs is not None:
        return
    needed = parameters[len(call.args) : len(parameters) - len(macro.defaults)]
    asked = _asked_for(macro)
    for parameter in needed:
        if parameter in uses and parameter not in named and parameter not in asked:
            yield f'the macro "{macro.name}" needs the argument "{parameter}"'


def _asked_for(macro: nodes.Macro) -> set[str]:
    """The parameters of which the macro asks whether they were given."""
    asking = (
        node.node
        for node in macro.find_all((nodes.Filter, nodes.Test))
        if node.name in ("d", "default", "defined", "undefined")
    )
    return {name.name for name in asking if isinstance(name, nodes.Name)}
