"""The runs of a command that would do again what they did the last time, each by itself."""

from __future__ import annotations

import sys
from collections.abc import Sequence
from typing import Any

from orv import inputs, unchanged
from orv.command.options import GenerateOptions
from orv.command.outputs import Outcome
from orv.command.record import Recorder, programs_of
from orv.inputs import Ended, Inputs
from orv.unchanged import Entry, Locks

# What tells a run from the others: two may have the same label.
_Name = tuple[str, str]


class KnownRuns:
    """What the runs of this command did the last time, by their names and model files.

    The command line and the project file must be the same for that. Whether a run would do it again
    is only known when it is its turn: those before it may change what it reads.
    """

    def __init__(self, runs: Sequence[GenerateOptions], recorder: Recorder) -> None:
        self._recorder = recorder
        # The project file: nothing else was read before the runs.
        self._project = {path: digest for path, (_, digest) in inputs.current().read.items()}
        self._old = self._kept()
        # What a run did that fails now may be what it does the next time.
        names = set(map(_name, runs)) & self._old.keys()
        self._new = {name: self._old[name] for name in names}

    def repeat(self, options: GenerateOptions) -> tuple[Outcome, Inputs] | None:
        """Say what a run said if it would do the same again; None if it has to be done."""
        record = self._old.get(_name(options))
        if record is None:
            return None
        try:
            with Locks() as locks:
                seen = unchanged.verified(record, locks)
        except OSError:
            return None
        if seen is None:
            return None
        found = _found(record, record["files"] | seen)
        print(*(f"{line}\n" for line in found.said), sep="", end="", file=sys.stderr)
        return Outcome(False, *record["outcome"]), found

    def note(self, options: GenerateOptions, outcome: Outcome, found: Inputs) -> None:
        """Note a run that went well."""
        record = None if options.always_runs else self._recorder.record(found)
        if record is not None:
            record["made"] = found.made
            record["ended"] = [run[:2] for run in found.ended]
            record["outcome"] = [list(names) for names in outcome[1:]]
            self._new[_name(options)] = record

    def keep(self) -> None:
        """Keep the records of the runs."""
        programs = programs_of(inputs.current())
        if programs is not None:
            kept = {"project": self._project, "programs": programs, "runs": self._new}
            unchanged.keep_runs(kept)

    def _kept(self) -> dict[_Name, dict[str, Any]]:
        """The records of the last command's runs, if it had the same project file and program."""
        try:
            kept = unchanged.kept_runs()
            if kept.get("project") != self._project or not unchanged.are_same(kept["programs"]):
                return {}
        except OSError:
            return {}
        # Modules that only runs use which are not done now.
        inputs.current().loaded.update(kept["programs"])
        runs: dict[_Name, dict[str, Any]] = kept["runs"]
        return runs


def _name(options: GenerateOptions) -> _Name:
    return options.run_name or "", str(options.model_file or "")


def _found(record: dict[str, Any], files: dict[str, Entry]) -> Inputs:
    """What a run looked at and made, from its record."""
    found = Inputs()
    made = found.made = record["made"]
    found.read = {path: entry[:2] for path, entry in files.items() if path not in made}
    found.absent = set(record["absent"])
    found.patterns = record["patterns"]
    found.reports = record["reports"]
    found.cleaned = set(record["cleaned"])
    found.ended = [Ended(folder, state, False) for folder, state in record["ended"]]
    found.said = record["said"].decode("utf-8", "surrogateescape").split("\n")[:-1]
    return found
