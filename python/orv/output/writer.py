"""Bringing the output folder up to date."""

from __future__ import annotations

import os
from collections.abc import Callable, Iterable, Sequence
from contextlib import suppress

from orv import _native, inputs
from orv.errors import Interrupted, OutputError, unexpected
from orv.files.run import Run
from orv.output.folder import reason, shown
from orv.output.plan import PlannedFile, State


class Writer:
    """Writes the files of a run, each whole or not at all, with the permissions `mode` if any."""

    def __init__(self, folder: _native.OutputFolder, run: Run, mode: int | None = None) -> None:
        self._folder = folder
        self._run = run
        self._mode = mode

    def write(
        self, files: Sequence[PlannedFile], wrote: Callable[[PlannedFile], None] = lambda _: None
    ) -> None:
        """Write the files that differ; `wrote` is called for each.

        Raises OutputError, which says for every file whether it is old or new, when one cannot be
        written.
        """
        waiting = [file for file in files if file.is_written]
        position = 0
        try:
            for position, file in enumerate(waiting):
                self._folder.replace(file.location, file.buffer, self._mode)
                self._run.repository.set_attribute(file.index, "WrittenToDisk", True)
                wrote(file)
            self._set_modes(files)
            self._folder.sync()
        except Exception as error:
            name = shown(self._folder, waiting[position].path) if waiting else self._folder.path
            raise OutputError(
                f"{name} cannot be written: {_words(error)}\n" + self._states(waiting, position)
            ) from error
        except KeyboardInterrupt:
            # The interruption may have come just after the file took its place.
            done = position + any(map(self._is_written, waiting[position : position + 1]))
            raise Interrupted("interrupted while writing\n" + self._states(waiting, done)) from None

    def clean(self, files: Sequence[PlannedFile], more: Iterable[str] = ()) -> None:
        """Remove what runs that were killed left behind, in every folder of a file.

        `more` are the locations of files that were made by earlier runs.
        """
        locations = {*more, *(file.location for file in files if not file.is_empty)}
        for folder in sorted({os.path.dirname(location) for location in locations}):
            with suppress(OSError):
                self._folder.remove_abandoned(folder)
                inputs.current().cleaned.add(os.path.join(self._folder.real, folder))

    def rescue(self, location: str, text: bytes) -> None:
        """Write a file that keeps texts of user regions. Raises OutputError."""
        try:
            self._folder.replace(location, text, None)
        except OSError as error:
            name = shown(self._folder, location)
            raise OutputError(
                f"{name} cannot be written: {reason(error)}; nothing else was written"
            ) from error

    def remove(self, locations: Iterable[str], folders: Iterable[str]) -> None:
        """Remove files, and those of `folders` that are empty then. Raises OutputError."""
        for location in locations:
            try:
                self._folder.remove(location)
            except OSError as error:
                name = shown(self._folder, location)
                raise OutputError(f"{name} cannot be removed: {reason(error)}") from error
        # A folder comes after those below it.
        for folder in sorted(folders, reverse=True):
            self._folder.remove_folder(folder)

    def _set_modes(self, files: Sequence[PlannedFile]) -> None:
        if self._mode is None:
            return
        for file in files:
            if file.state is State.SAME:
                self._folder.set_mode(file.location, self._mode)

    def _is_written(self, file: PlannedFile) -> bool:
        return self._folder.compare(file.location, file.buffer).same

    def _states(self, files: Sequence[PlannedFile], done: int) -> str:
        return "\n".join(
            f"{'new' if position < done else 'old'}  {shown(self._folder, file.path)}"
            for position, file in enumerate(files)
        )


def _words(error: Exception) -> str:
    if isinstance(error, OSError):
        return reason(error)
    return str(error) if isinstance(error, OutputError) else unexpected(error)
