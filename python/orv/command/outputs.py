"""From a rendered run to the output folder and the reports beside it."""

from __future__ import annotations

import os
import sys
from collections.abc import Callable, Iterable, Sequence
from typing import TYPE_CHECKING, NamedTuple

from orv import inputs
from orv.command.console import say, warn
from orv.command.options import GenerateOptions, LayoutOptions
from orv.command.progress import progress
from orv.errors import OrvError, OutputError, unexpected
from orv.files.run import Run
from orv.output import reports
from orv.output.depfile import depfile
from orv.output.expected import require_expected
from orv.output.folder import lock, make_folder, open_folder, shown
from orv.output.guards import check_guards
from orv.output.layout import Layout
from orv.output.orphans import Unclaimed
from orv.output.ownership import Policy, Settlement, require_writable, settle, settle_without_state
from orv.output.plan import PlannedFile, State, compare, plan, real_path, shown_paths
from orv.output.state import FolderState, StateFile
from orv.output.writer import Writer
from orv.unchanged import digest_of

if TYPE_CHECKING:
    from orv.output.snapshot import Composed


class Outcome(NamedTuple):
    """What a run came to: whether a file differed from the disk, and the files without text.

    Of a run that reports together with others: the paths of its files, and what it depends on.
    """

    differs: bool
    empty: list[str]
    paths: Sequence[str] = ()
    dependencies: Sequence[str] = ()


class Outputs:
    """The files and reports of one run.

    Making this object locks the output folder and plans; it stays locked while the object lives.
    `sources` are the paths of what the run has read; `composed` is given of a run that another
    process rendered.
    """

    def __init__(
        self,
        run: Run,
        sources: Sequence[str],
        options: GenerateOptions,
        composed: Composed | None = None,
    ) -> None:
        self._run = run
        self._composed = composed
        self._sources = sources
        self._options = options
        # Whether the files are on the disk, and what remains is the state and the reports.
        self._is_written = False
        self._folder = open_folder(options.out, options.fsync)
        if self._folder.exists:
            self._lock()
        self._state = (
            None if options.no_state else StateFile(self._folder, options.state, options.fsync)
        )
        self._policy = Policy(
            options.run_name or "", options.edited, options.stale, options.adopt, options.orphans
        )
        self._load()
        files = None if composed is None else composed.files
        self._files = plan(run, self._folder, layout_of(options), self._known.markers(), files)
        require_expected(self._files, options.expect)
        check_guards(self._files, run)
        self._settle()

    def region_texts(self) -> dict[str, dict[str, bytes]]:
        """The texts that the user regions of each file will have, by the file's label."""
        return {self._run.files.label(file.index): file.region_texts() for file in self._files}

    def finish(self) -> Outcome:
        """Write or compare, and write the reports."""
        try:
            return self._finish()
        except Exception as error:
            if not self._is_written or isinstance(error, (OrvError, OSError)):
                raise
            raise OutputError(
                f"{unexpected(error)}; all files are new, what is written beside them may be old"
            ) from error

    def _finish(self) -> Outcome:
        options = self._options
        taken = self._taken()
        if options.writes:
            require_writable(self._files, self._settled, self._policy, self._run)
        wanted = self._reports()
        reports.prepare(wanted, taken, options.fsync)
        if options.writes:
            self._write()
        elif options.diff:
            self._show_differences()
        else:
            self._list()
        differs = any(file.differs for file in self._files) or bool(
            self._settled.removed or self._orphans()
        )
        for report in wanted:
            if report.kind != "stamp" or options.ends_well(differs):
                reports.write(report)
        self._note(differs)
        empty = [self._empty_label(file) for file in self._files if file.is_empty]
        whole = options.whole
        paths = shown_paths(self._files) if whole is not None and whole.outputs else ()
        sources = self._dependencies() if whole is not None and whole.depfile else ()
        return Outcome(differs, empty, paths, sources)

    def _load(self) -> None:
        self._known = FolderState() if self._state is None else self._state.load(self._folder)

    def _settle(self) -> None:
        messages = self._run.messages
        self._settled: Settlement
        if self._state is None:
            self._settled = settle_without_state(self._files, self._folder, self._policy)
        else:
            self._settled = settle(self._files, self._known, self._folder, self._policy, messages)

    def _orphans(self) -> Sequence[Unclaimed]:
        """The user regions that keep the run from writing."""
        return self._settled.rehomed.orphans if self._policy.orphans == "error" else []

    def _lock(self) -> None:
        """Keep other runs out of the folder; a run that only reads keeps out those that write."""
        text = f"waiting for another run that is using {self._folder.path}"

        def waiting() -> None:
            inputs.current().is_incomplete = True
            warn(text, self._options)

        lock(self._folder, not self._options.writes, self._options.lock_timeout, waiting)

    def _reports(self) -> list[reports.Report]:
        options = self._options
        wanted: list[reports.Report] = []
        if options.manifest is not None:
            from orv.output.manifest import manifest

            described = () if self._composed is None else self._composed.descriptions
            data = manifest(self._run, self._files, described)
            wanted.append(reports.Report("manifest", options.manifest, data))
        if self._composed is None:
            wanted += self._origins()
        elif options.trace is not None:
            wanted.append(reports.Report("trace", options.trace, self._composed.trace))
        return wanted + common_reports(
            options, lambda: shown_paths(self._files), self._dependencies
        )

    def _origins(self) -> list[reports.Report]:
        """The trace and the report, which is made of it."""
        options = self._options
        wanted: list[reports.Report] = []
        if options.trace is None and options.report is None:
            return wanted
        from orv.output.tracefile import encoded, trace_document

        trace = trace_document(self._run, self._files, options.out)
        if options.trace is not None:
            wanted.append(reports.Report("trace", options.trace, encoded(trace)))
        if options.report is not None:
            from orv.report.page import report_page

            page = report_page(self._run, self._files, trace)
            wanted.append(reports.Report("report", options.report, page))
        return wanted

    def _dependencies(self) -> list[str]:
        """What the run read and what it says it depends on, without its own outputs."""
        named = self._run.dependencies
        if named:
            made = {real_path(self._folder, file.location) for file in self._files}
            named = [path for path in named if os.path.realpath(path) not in made]
        # A file that is named in several ways is one dependency.
        paths = {os.path.abspath(path): path for path in [*named, *self._sources]}
        return list(paths.values())

    def _taken(self) -> dict[str, str]:
        """What the run reads and the files it makes, by their real paths."""
        taken = {
            os.path.realpath(path): f'"{path}", which was read'
            for path in self._sources
            if not os.path.isdir(path)
        }
        for file in self._files:
            if file.is_empty:
                continue
            target = real_path(self._folder, file.location)
            if target in taken:
                label = self._run.files.label(file.index)
                raise OutputError(
                    f"{self._run.files.place(file.index)}the file {label} would take the place of"
                    f" {taken[target]}"
                )
            taken[target] = f'the file "{self._shown(file)}"'
        if self._state is not None:
            taken[self._state.real_path] = f'the state file "{self._state.shown}"'
        return taken

    def _write(self) -> None:
        if not self._folder.exists:
            make_folder(self._folder)
            self._lock()
            # Another run may have made and filled the folder meanwhile.
            self._load()
            compare(self._files, self._run)
            self._settle()
            require_writable(self._files, self._settled, self._policy, self._run)
        total = sum(file.is_written for file in self._files)
        with progress("writing", total, self._options.quiet) as step:

            def wrote(_: PlannedFile) -> None:
                if step is not None:
                    step()

            self._carry_out(wrote)
        self._list()

    def _carry_out(self, wrote: Callable[[PlannedFile], None]) -> None:
        """Write the intent, the files, then the state: the next run can tell how far it came."""
        settled = self._settled
        writer = Writer(self._folder, self._run, self._options.file_mode)
        known = [location for files in self._known.runs.values() for location in files]
        # A run may have been killed before its first file in a new folder was there.
        known += [os.path.join(made, "") for made in self._known.folders]
        writer.clean(self._files, known)
        if self._state is not None and settled.before.intent:
            self._state.save(settled.before)
        for location, text in settled.rescued.items():
            writer.rescue(location, text)
        # What takes a text over is written before what loses it.
        takers = {move.target.location for move in settled.rehomed.moves}
        writer.write(sorted(self._files, key=lambda file: file.location not in takers), wrote)
        self._is_written = True
        writer.remove(settled.removed, settled.before.folders - settled.after.folders)
        is_new = settled.after != self._known or self._known.was_interrupted
        if self._state is not None and (settled.before.intent or is_new):
            self._state.save(settled.after)

    def _note(self, differs: bool) -> None:
        """Note what the run made, unless the next one would say or do something else."""
        found, settled = inputs.current(), self._settled
        files = [file for file in self._files if not file.is_empty]
        own = settled.after.runs.get(self._policy.run, {}).keys()
        if (
            (differs and not self._options.writes)
            or any(file.differs and not file.is_written for file in files)
            or settled.rehomed.moves
            or settled.rehomed.orphans
            or own - {file.location for file in files}
        ):
            found.is_incomplete = True
        for file in files:
            found.made[real_path(self._folder, file.path)] = digest_of(file.buffer)
        state = None if self._state is None else self._state.real_path
        is_changed = differs or settled.after != self._known
        found.ended.append(inputs.Ended(self._options.out, state, is_changed))

    def _show_differences(self) -> None:
        from orv.output.differences import difference, removal

        for file in self._files:
            if file.differs:
                sys.stdout.write(difference(file, self._folder))
        for location in self._settled.removed:
            sys.stdout.write(removal(location, self._folder))

    def _list(self) -> None:
        for file in self._files:
            name = file.path if file.is_empty else self._shown(file)
            line = f"{file.state.value:8}{name}"
            if file.differs and not self._options.quiet:
                print(line)
            elif not file.differs:
                say(line, self._options)
        if not self._options.quiet:
            self._list_others()
        if self._options.check:
            self._count()

    def _list_others(self) -> None:
        """List what becomes of files and user regions that are no longer made."""
        settled = self._settled
        for location in settled.removed:
            print(f"{'removed':8}{shown(self._folder, location)}")
        for orphan, target in settled.rehomed.moves:
            source = f"{shown(self._folder, orphan.location)}:{orphan.region.line}"
            print(f'moved   "{orphan.region.id}" of {source} to {self._shown(target)}')
        for location in settled.rescued:
            print(f"{'orphans':8}{shown(self._folder, location)}")
        lost = {"error": "orphan", "drop": "dropped"}.get(self._policy.orphans, "")
        for orphan in settled.rehomed.orphans if lost else ():
            source = f"{shown(self._folder, orphan.location)}:{orphan.region.line}"
            print(f'{lost:8}"{orphan.region.id}" of {source}')

    def _count(self) -> None:
        """How many files are outdated, edited, those of others and to be removed."""
        states = [file.state for file in self._files]
        counts = {
            "outdated": states.count(State.NEW) + states.count(State.CHANGED),
            "edited": states.count(State.EDITED),
            "made by others": states.count(State.FOREIGN),
            "to be removed": len(self._settled.removed),
            "orphaned": len(self._orphans()),
        }
        found = ", ".join(f"{count} {what}" for what, count in counts.items() if count)
        if found and not self._options.quiet:
            print(found)

    def _empty_label(self, file: PlannedFile) -> str:
        names = ("RequiredIncludes", "UtilityIncludes")
        includes = [self._run.repository.get_attribute(file.index, name) for name in names]
        return f"{file.path} (only includes)" if any(includes) else file.path

    def _shown(self, file: PlannedFile) -> str:
        return shown(self._folder, file.path)


def common_reports(
    options: GenerateOptions,
    paths: Callable[[], Iterable[str]],
    dependencies: Callable[[], Iterable[str]],
) -> list[reports.Report]:
    """The reports about one run or several: what they made, what they depend on, and the stamp."""
    wanted: list[reports.Report] = []
    if options.outputs is not None:
        data = "".join(f"{path}\n" for path in paths()).encode("utf-8", "surrogateescape")
        wanted.append(reports.Report("list of outputs", options.outputs, data))
    if options.depfile is not None:
        target = options.depfile_target or options.stamp or ""
        wanted.append(reports.Report("depfile", options.depfile, depfile(target, dependencies())))
    if options.stamp is not None:
        wanted.append(reports.Report("stamp", options.stamp, b""))
    return wanted


def layout_of(options: LayoutOptions) -> Layout:
    """How the run's files are laid out."""
    lines = (options.line_prefix or "") if options.line_directives else None
    return Layout(options.blank_lines, options.format, options.format_all, options.guard, lines)
