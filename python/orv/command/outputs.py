"""From a rendered run to the output folder and the reports beside it."""

from __future__ import annotations

import os
import sys
from collections.abc import Sequence
from typing import NamedTuple

from orv.command.console import say, warn
from orv.command.options import GenerateOptions
from orv.command.progress import progress
from orv.errors import OutputError
from orv.files.run import Run
from orv.output import reports
from orv.output.depfile import depfile
from orv.output.folder import lock, make_folder, open_folder, shown
from orv.output.plan import PlannedFile, compare, plan, real_path
from orv.output.writer import Writer


class Outcome(NamedTuple):
    """What a run came to: whether a file differed from the disk, and the files without text."""

    differs: bool
    empty: list[str]


class Outputs:
    """The files and reports of one run.

    Making this object locks the output folder and plans; it stays locked while the object lives.
    `sources` are the paths of what the run has read.
    """

    def __init__(self, run: Run, sources: Sequence[str], options: GenerateOptions) -> None:
        self._run = run
        self._sources = sources
        self._options = options
        self._folder = open_folder(options.out, options.fsync)
        if self._folder.exists:
            self._lock()
        self._files = plan(run, self._folder)

    def finish(self) -> Outcome:
        """Write or compare, and write the reports."""
        options = self._options
        wanted = self._reports()
        reports.prepare(wanted, self._taken(), options.fsync)
        if options.writes:
            self._write()
        elif options.diff:
            self._show_differences()
        else:
            self._list()
        for report in wanted:
            reports.write(report)
        empty = [self._empty_label(file) for file in self._files if file.is_empty]
        return Outcome(any(file.differs for file in self._files), empty)

    def _lock(self) -> None:
        """Keep other runs out of the folder; a run that only reads keeps out those that write."""
        text = f"waiting for another run that is using {self._folder.path}"
        timeout = self._options.lock_timeout
        lock(self._folder, not self._options.writes, timeout, lambda: warn(text, self._options))

    def _reports(self) -> list[reports.Report]:
        options = self._options
        wanted: list[reports.Report] = []
        if options.manifest is not None:
            from orv.output.manifest import manifest

            data = manifest(self._run, self._files)
            wanted.append(reports.Report("manifest", options.manifest, data))
        if options.depfile is not None:
            made = [self._shown(file) for file in self._files if not file.is_empty]
            rule = depfile(made, self._sources)
            wanted.append(reports.Report("depfile", options.depfile, rule))
        return wanted

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
        return taken

    def _write(self) -> None:
        if not self._folder.exists:
            make_folder(self._folder)
            self._lock()
            # Another run may have made and filled the folder meanwhile.
            compare(self._files, self._run)
        total = sum(file.differs for file in self._files)
        with progress("writing", total, self._options.quiet) as step:

            def wrote(_: PlannedFile) -> None:
                if step is not None:
                    step()

            Writer(self._folder, self._run, self._options.file_mode).write(self._files, wrote)
        self._list()

    def _show_differences(self) -> None:
        from orv.output.differences import difference

        for file in self._files:
            if file.differs:
                sys.stdout.write(difference(file, self._folder))

    def _list(self) -> None:
        for file in self._files:
            name = file.path if file.is_empty else self._shown(file)
            line = f"{file.state.value:8}{name}"
            if file.differs and not self._options.quiet:
                print(line)
            elif not file.differs:
                say(line, self._options)

    def _empty_label(self, file: PlannedFile) -> str:
        names = ("RequiredIncludes", "UtilityIncludes")
        includes = [self._run.repository.get_attribute(file.index, name) for name in names]
        return f"{file.path} (only includes)" if any(includes) else file.path

    def _shown(self, file: PlannedFile) -> str:
        return shown(self._folder, file.path)
