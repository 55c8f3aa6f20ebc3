"""Which files of the output folder a run may write and remove."""

from __future__ import annotations

import os
from collections.abc import Iterator, Mapping, Sequence
from contextlib import suppress
from dataclasses import dataclass, field
from typing import NamedTuple

from orv import _native
from orv.errors import Messages, OrvError, OutputError
from orv.files.run import Run
from orv.output.folder import shown
from orv.output.orphans import Rehomed, Unclaimed, complaint, rehome, rescued, saved
from orv.output.plan import Plan, PlannedFile, State, folders_of, real_path
from orv.output.state import Change, FolderState, Record, compare_with_record

# Before the hash of a text that has another place, in a file that stays though no run makes it.
_SETTLED = "settled "


class Policy(NamedTuple):
    """What the user wants. A run without a name is "" and removes nothing.

    `edited` says what happens to files that were edited: "error", "warn" leaves them, "overwrite".
    `stale` says whether files that the run no longer makes are removed: "remove" or "keep".
    `adopt` takes over the files of others. `orphans` says what happens to the texts of user regions
    that no template has any more: "error", "keep" puts them beside the file, "drop".
    """

    run: str = ""
    edited: str = "error"
    stale: str = "remove"
    adopt: bool = False
    orphans: str = "error"


@dataclass
class Settlement:
    """What becomes of the files that the state knows: `removed` are their locations.

    `rehomed` says what becomes of user regions that have lost their place, `rescued` has the texts
    of the files that keep those that have none, by location. `before` is the state while the run
    writes, `after` the one when it has ended.
    """

    before: FolderState = field(default_factory=FolderState)
    after: FolderState = field(default_factory=FolderState)
    removed: list[str] = field(default_factory=list)
    rehomed: Rehomed = field(default_factory=Rehomed)
    rescued: dict[str, bytes] = field(default_factory=dict)


class _Leftover(NamedTuple):
    """A file that the run made before and no longer makes; `found` is None if it cannot be read."""

    location: str
    record: Record
    found: _native.Comparison | None

    @property
    def is_edited(self) -> bool:
        return self.found is None or self.found.hash != self.record.hash


def settle(
    files: Sequence[PlannedFile],
    state: FolderState,
    folder: _native.OutputFolder,
    policy: Policy,
    messages: Messages,
) -> Settlement:
    """Decide about every file. Changes the state of planned files, and nothing on the disk.

    What was edited and is no longer made stays, with a warning.
    """
    after = state.copy()
    for file in files:
        if file.state is State.CHANGED:
            file.state = _judged(file, state, policy)
    leftovers = _leftovers(files, state, folder, policy)
    unclaimed = [*_unclaimed_of_files(files, state, policy)]
    for leftover in leftovers:
        unclaimed += _unclaimed_of_leftover(leftover, policy)
    rehomed = rehome(files, unclaimed)
    own = after.runs[policy.run] = {}
    for file in files:
        if not file.is_empty:
            _own(file, state, after, policy)
    removed = _stale(leftovers, rehomed, folder, policy, messages, own)
    before = state.copy()
    before.intent_run = policy.run
    before.intent = _intent(files, removed, own, state, policy)
    before.folders |= _new_folders(files, folder)
    after.folders = set(before.folders)
    after.keep_folders_of_files()
    after.runs = {name: records for name, records in after.runs.items() if records}
    return Settlement(before, after, removed, rehomed, _rescued(files, rehomed, folder, policy))


def settle_without_state(
    files: Sequence[PlannedFile], folder: _native.OutputFolder, policy: Policy
) -> Settlement:
    """Decide about user regions that have lost their place, where nothing else is known."""
    rehomed = rehome(files, [*_unclaimed_of_files(files, FolderState(), policy)])
    return Settlement(rehomed=rehomed, rescued=_rescued(files, rehomed, folder, policy))


def require_writable(files: Plan, settled: Settlement, policy: Policy, run: Run) -> None:
    """Raise OutputError when a file may not be written over, naming all of them and the ways out.

    So do user regions that have lost their place. Edited files that are to be left, and regions
    whose text goes to another file, are warned about.
    """
    refused: list[str] = []
    folder, messages = files.folder, run.messages
    for orphan in settled.rehomed.orphans:
        if policy.orphans == "error":
            refused.append(complaint(orphan, files, run, folder))
        elif policy.orphans == "keep":
            messages.warn(saved(orphan, folder))
    for file in files:
        name = shown(folder, file.path)
        if file.state is State.FOREIGN:
            refused.append(f"{name} {_made_by(file.owner)}; --adopt takes it over")
        elif file.state is State.EDITED and policy.edited == "warn":
            messages.warn(f"{name} was edited since it was generated and is left as it is")
        elif file.state is State.EDITED:
            refused.append(
                f"{name} was edited since it was generated; --edited=overwrite discards the edits,"
                " --edited=warn leaves the file"
            )
    if refused:
        raise OutputError("nothing was written\n" + "\n".join(refused))


def _leftovers(
    files: Sequence[PlannedFile], state: FolderState, folder: _native.OutputFolder, policy: Policy
) -> list[_Leftover]:
    """The files on the disk that the run made before and no longer makes, if no other run does."""
    known = state.runs.get(policy.run, {})
    gone = sorted(known.keys() - {file.location for file in files})
    if not gone:
        return []
    folded = {file.location.casefold(): file.location for file in files}
    leftovers: list[_Leftover] = []
    for location in gone:
        if any(owner != policy.run for owner in state.owners(location)):
            continue
        twin = folded.get(location.casefold())
        if twin and _is_same(folder, location, twin):
            continue
        found: _native.Comparison | None = None
        with suppress(OSError, OrvError):
            found = compare_with_record(folder, location, known[location])
        if found is None or found.exists:
            leftovers.append(_Leftover(location, known[location], found))
    return leftovers


def _unclaimed_of_files(
    files: Sequence[PlannedFile], state: FolderState, policy: Policy
) -> Iterator[Unclaimed]:
    """The texts that files lose which are written over."""
    for file in files:
        if file.state is not State.CHANGED or not file.kept or file.old_markers is None:
            continue
        defaults = [record.regions for record in state.records(file.location)]
        may_move = _known(file, state, policy) is not None
        for region in file.kept:
            if not region.is_taken and _is_written(region, defaults):
                markers = file.old_markers.pattern
                yield Unclaimed(file.location, region, markers, may_move, True)


def _unclaimed_of_leftover(leftover: _Leftover, policy: Policy) -> Iterator[Unclaimed]:
    """The texts of a file that is no longer made. The file stays if the run removes none."""
    location, record, found = leftover
    is_lost = bool(policy.run) and policy.stale == "remove"
    for region in found.regions if found is not None else ():
        if _is_written(region, [record.regions]):
            yield Unclaimed(location, region, record.markers, True, is_lost)


def _is_written(region: _native.KeptRegion, defaults: Sequence[Mapping[str, str]]) -> bool:
    """Whether someone has written the text of a region."""
    unwritten = (region.hash, _SETTLED + region.hash)
    return bool(region.text.strip()) and all(
        known.get(region.id) not in unwritten for known in defaults
    )


def _rescued(
    files: Sequence[PlannedFile], rehomed: Rehomed, folder: _native.OutputFolder, policy: Policy
) -> dict[str, bytes]:
    if policy.orphans != "keep" or not rehomed.orphans:
        return {}
    return rescued(rehomed.orphans, {file.location for file in files}, folder)


def _made_by(owner: str | None) -> str:
    if owner is None:
        return "is there, and no run made it"
    return f'was made by the run "{owner}"' if owner else "was made by a run without a name"


def _judged(file: PlannedFile, state: FolderState, policy: Policy) -> State:
    owners = state.owners(file.location)
    others = [owner for owner in owners if owner not in ("", policy.run)]
    if (others or not owners) and not policy.adopt:
        file.owner = others[0] if others else None
        return State.FOREIGN
    known = [record.hash for record in state.records(file.location)]
    if not known or policy.edited == "overwrite" or file.old_hash in known:
        return State.CHANGED
    file.is_regenerated = file.hash not in known
    return State.EDITED


def _known(file: PlannedFile, state: FolderState, policy: Policy) -> Record | None:
    own = state.runs.get(policy.run, {}).get(file.location)
    return own or state.runs.get("", {}).get(file.location)


def _own(file: PlannedFile, state: FolderState, after: FolderState, policy: Policy) -> None:
    """Enter a file of the run. The files of a run without a name are anyone's."""
    own = after.runs[policy.run]
    if file.state is State.EDITED:
        known = _known(file, state, policy)
        if known is not None:
            own[file.location] = known
        return
    if file.state is State.FOREIGN:
        return
    if file.state is State.CHANGED:
        after.disown(file.location, policy.run)
    named = [owner for owner in after.owners(file.location) if owner not in ("", policy.run)]
    if named and not policy.run:
        return
    if policy.run:
        after.runs.get("", {}).pop(file.location, None)
    own[file.location] = _record(file, state, policy)


def _record(file: PlannedFile, state: FolderState, policy: Policy) -> Record:
    """What the state will know of a file. Regions keep the hash of their first default text."""
    hash = file.old_hash if file.state is State.SAME else file.hash
    if not file.regions:
        return Record(hash)
    assert file.markers is not None
    known = _known(file, state, policy)
    # What was settled while no run made the file is not: it may have its only place here again.
    regions = {} if known is None else known.regions
    first = {id: hash for id, hash in regions.items() if not hash.startswith(_SETTLED)}
    ids = file.regions.ids
    if file.state is State.SAME and first.keys() == set(ids):
        return Record(hash, first, file.markers.pattern)
    defaults = _native.region_hashes(file.base, file.regions)
    kept = {id: first[id] for id in ids if id in first and file.keeps(id)}
    return Record(hash, defaults | kept, file.markers.pattern)


def _stale(
    leftovers: Sequence[_Leftover],
    rehomed: Rehomed,
    folder: _native.OutputFolder,
    policy: Policy,
    messages: Messages,
    own: dict[str, Record],
) -> list[str]:
    """The files to remove that the run no longer makes; the others stay its own."""
    stopping = set()
    if policy.orphans == "error":
        stopping = {orphan.location for orphan in rehomed.orphans}
    removed: list[str] = []
    for leftover in leftovers:
        location = leftover.location
        removes = policy.run and policy.stale == "remove"
        if removes and not leftover.is_edited and location not in stopping:
            removed.append(location)
            continue
        own[location] = _settled(leftover, rehomed, bool(removes))
        if policy.run and leftover.is_edited:
            messages.warn(
                f"{shown(folder, location)} is no longer made and was edited since it was"
                " generated; it is left as it is"
            )
    return removed


def _settled(leftover: _Leftover, rehomed: Rehomed, are_all: bool) -> Record:
    """The record of a file that stays. Texts that are cared for count as not written from now on.

    `are_all` says that orphans of the file have been cared for as well as the texts that moved.
    """
    location, record, found = leftover
    moved = {move.source.region.id for move in rehomed.moves if move.source.location == location}
    regions = dict(record.regions)
    for region in found.regions if found is not None else ():
        if are_all or region.id in moved:
            regions[region.id] = _SETTLED + region.hash
    return record._replace(regions=regions)


def _is_same(folder: _native.OutputFolder, location: str, other: str) -> bool:
    """Whether two names that differ in case are one file, as on file systems that ignore it."""
    try:
        left, right = (os.lstat(real_path(folder, name)) for name in (location, other))
    except OSError:
        return False
    return os.path.samestat(left, right)


def _intent(
    files: Sequence[PlannedFile],
    removed: Sequence[str],
    own: dict[str, Record],
    state: FolderState,
    policy: Policy,
) -> dict[str, Change]:
    intent: dict[str, Change] = {}
    for file in files:
        if file.is_written:
            new = own.get(file.location) or _record(file, state, policy)
            intent[file.location] = Change(file.old_hash or None, new)
    for location in removed:
        intent[location] = Change(state.runs[policy.run][location].hash, None)
    return intent


def _new_folders(files: Sequence[PlannedFile], folder: _native.OutputFolder) -> set[str]:
    there: dict[str, bool] = {}
    for file in files:
        if file.state is State.NEW:
            for parent in folders_of(file.location):
                if parent not in there:
                    there[parent] = folder.has_folder(parent)
    return {parent for parent, exists in there.items() if not exists}
