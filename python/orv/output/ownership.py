"""Which files of the output folder a run may write and remove."""

from __future__ import annotations

import os
from collections.abc import Sequence
from dataclasses import dataclass, field

from orv import _native
from orv.errors import Messages, OutputError
from orv.output.folder import shown
from orv.output.plan import PlannedFile, State, folders_of, real_path
from orv.output.state import Change, FolderState, Record


@dataclass(frozen=True)
class Policy:
    """What the user wants. A run without a name is "" and removes nothing.

    `edited` says what happens to files that were edited: "error", "warn" leaves them, "overwrite".
    `stale` says whether files that the run no longer makes are removed: "remove" or "keep".
    `adopt` takes over the files of others.
    """

    run: str = ""
    edited: str = "error"
    stale: str = "remove"
    adopt: bool = False


@dataclass
class Settlement:
    """What becomes of the files that the state knows: `removed` are their locations.

    `before` is the state while the run writes, `after` the one when it has ended.
    """

    before: FolderState = field(default_factory=FolderState)
    after: FolderState = field(default_factory=FolderState)
    removed: list[str] = field(default_factory=list)


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
    own = after.runs[policy.run] = {}
    for file in files:
        if not file.is_empty:
            _own(file, state, after, policy)
    removed = _stale(files, state, folder, policy, messages, own)
    before = state.copy()
    before.intent_run = policy.run
    before.intent = _intent(files, removed, own, state, policy)
    before.folders |= _new_folders(files, folder)
    after.folders = set(before.folders)
    after.keep_folders_of_files()
    after.runs = {name: records for name, records in after.runs.items() if records}
    return Settlement(before, after, removed)


def require_writable(
    files: Sequence[PlannedFile], folder: _native.OutputFolder, policy: Policy, messages: Messages
) -> None:
    """Raise OutputError when a file may not be written over, naming all of them and the ways out.

    Edited files that are to be left are warned about.
    """
    refused: list[str] = []
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


def _made_by(owner: str | None) -> str:
    if owner is None:
        return "is there, and no run made it"
    return f'was made by the run "{owner}"' if owner else "was made by a run without a name"


def _judged(file: PlannedFile, state: FolderState, policy: Policy) -> State:
    owners = state.owners(file.location)
    others = [owner for owner in owners if owner not in ("", policy.run)]
    if policy.adopt and (others or not owners):
        return State.CHANGED
    if others or not owners:
        file.owner = others[0] if others else None
        return State.FOREIGN
    record = _known(file, state, policy)
    if policy.edited == "overwrite" or (record is not None and record.hash == file.old_hash):
        return State.CHANGED
    file.is_regenerated = record is None or record.hash != _native.text_hash(file.buffer)
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
    same = file.state is State.SAME
    own[file.location] = Record(file.old_hash if same else _native.text_hash(file.buffer))


def _stale(
    files: Sequence[PlannedFile],
    state: FolderState,
    folder: _native.OutputFolder,
    policy: Policy,
    messages: Messages,
    own: dict[str, Record],
) -> list[str]:
    """The files to remove that the run made before and no longer makes; the others stay its own."""
    made = {file.location for file in files}
    folded = {file.location.casefold(): file.location for file in files}
    removed: list[str] = []
    for location, record in sorted(state.runs.get(policy.run, {}).items()):
        if location in made:
            continue
        others = [owner for owner in state.owners(location) if owner != policy.run]
        current = _hash(folder, location)
        twin = folded.get(location.casefold())
        if others or current is None or (twin and _is_same(folder, location, twin)):
            continue
        if policy.run and policy.stale == "remove" and current == record.hash:
            removed.append(location)
            continue
        own[location] = record
        if policy.run and current != record.hash:
            messages.warn(
                f"{shown(folder, location)} is no longer made and was edited since it was"
                " generated; it is left as it is"
            )
    return removed


def _hash(folder: _native.OutputFolder, location: str) -> str | None:
    """The hash of a file on the disk, or None. What cannot be read counts as edited."""
    try:
        found = folder.compare(location, b"")
    except (OSError, OutputError):
        return ""
    return found.hash if found.exists else None


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
            new = own.get(file.location) or Record(_native.text_hash(file.buffer))
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
