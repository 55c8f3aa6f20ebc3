"""User regions that no template asks for where they are: they move, or are orphans."""

from __future__ import annotations

import os
from collections import defaultdict
from collections.abc import Iterable, Sequence
from typing import NamedTuple

from orv import _native
from orv.errors import OutputError
from orv.files.run import Run
from orv.output.folder import reason, shown
from orv.output.plan import PlannedFile, State

_ENDING = ".orphans"


class Unclaimed(NamedTuple):
    """A region that someone has written and the new text of its file does not have.

    `may_move` says that the run made the file, by the state, and `is_lost` that the text will no
    longer be there.
    """

    location: str
    region: _native.KeptRegion
    markers: str
    may_move: bool
    is_lost: bool


class Move(NamedTuple):
    """A text that goes to a region of another file."""

    source: Unclaimed
    target: PlannedFile


class Rehomed(NamedTuple):
    """What becomes of unclaimed regions."""

    moves: Sequence[Move] = ()
    orphans: Sequence[Unclaimed] = ()


class _Claim(NamedTuple):
    file: PlannedFile
    id: str


def rehome(files: Sequence[PlannedFile], unclaimed: Sequence[Unclaimed]) -> Rehomed:
    """Move texts to files where a region of the same name is new; what remains are orphans.

    A text moves if there is no doubt where to. One that another file has under the same name is no
    orphan.
    """
    if not unclaimed:
        return Rehomed()
    moves = _moves(files, unclaimed)
    for move in moves:
        move.target.take({move.source.region.id: move.source.region.text})
    moved = {id(move.source) for move in moves}
    safe: set[tuple[str, bytes]] = set()
    for file in files:
        if file.is_written or file.state is State.SAME:
            safe |= file.region_texts().items()
        else:
            safe |= {(region.id, region.text) for region in file.kept}
    orphans = [
        entry
        for entry in unclaimed
        if entry.is_lost
        and id(entry) not in moved
        and (entry.region.id, entry.region.text) not in safe
    ]
    return Rehomed(moves, orphans)


def _moves(files: Sequence[PlannedFile], unclaimed: Sequence[Unclaimed]) -> list[Move]:
    claims: dict[str, list[_Claim]] = defaultdict(list)
    for file in files:
        for id in file.regions.ids if file.is_written else ():
            if not file.keeps(id):
                claims[id].append(_Claim(file, id))
    sources: dict[str, list[Unclaimed]] = defaultdict(list)
    for entry in unclaimed:
        if entry.may_move and entry.region.id in claims:
            sources[entry.region.id].append(entry)
    pairs = [pair for id, found in sources.items() for pair in _paired(found, claims[id])]
    # A file that is rewritten gives text only if it takes none: then those that take are written
    # first, and at any moment the text is on the disk.
    takers = {move.target.location for move in pairs}
    return [move for move in pairs if move.source.location not in takers]


def _paired(sources: list[Unclaimed], claims: list[_Claim]) -> list[Move]:
    """Pair what is alike, from names that are the same to any names, where it is the only pair."""
    pairs: list[Move] = []
    for key in (_name, _ending_and_folder, _ending, _any):
        by_key: dict[str, tuple[list[Unclaimed], list[_Claim]]] = defaultdict(lambda: ([], []))
        for source in sources:
            by_key[key(source.location)][0].append(source)
        for claim in claims:
            by_key[key(claim.file.location)][1].append(claim)
        for alike, asking in by_key.values():
            if len(alike) == len(asking) == 1:
                pairs.append(Move(alike[0], asking[0].file))
                sources = [source for source in sources if source is not alike[0]]
                claims = [claim for claim in claims if claim is not asking[0]]
    return pairs


def _name(location: str) -> str:
    return os.path.basename(location).casefold()


def _ending(location: str) -> str:
    return os.path.splitext(location)[1].casefold()


def _ending_and_folder(location: str) -> str:
    return f"{os.path.dirname(location)}/{_ending(location)}"


def _any(_: str) -> str:
    return ""


def complaint(
    orphan: Unclaimed, files: Sequence[PlannedFile], run: Run, folder: _native.OutputFolder
) -> str:
    """What is wrong with an orphan, and the ways out."""
    name = shown(folder, orphan.location)
    return (
        f'{name}:{orphan.region.line}: no template has the user region "{orphan.region.id}" any'
        f" more{_nearest(orphan, files, run)}; --orphans=keep moves its text to {name}{_ENDING},"
        " --orphans=drop discards it"
    )


def saved(orphan: Unclaimed, folder: _native.OutputFolder) -> str:
    """The warning about an orphan whose text is kept."""
    name = shown(folder, orphan.location)
    return (
        f'{name}:{orphan.region.line}: no template has the user region "{orphan.region.id}" any'
        f" more; its text goes to {name}{_ENDING}"
    )


def _nearest(orphan: Unclaimed, files: Sequence[PlannedFile], run: Run) -> str:
    """The region without a text whose name is most like that of the orphan."""
    found = [(file, id) for file in files for id in file.regions.ids if not file.keeps(id)]
    own = [entry for entry in found if entry[0].location == orphan.location]
    if not found:
        return ""
    from difflib import SequenceMatcher

    def likeness(entry: tuple[PlannedFile, str]) -> float:
        return SequenceMatcher(None, orphan.region.id, entry[1]).ratio()

    file, id = max(own or found, key=likeness)
    position = run.regions.position(file.index, id)
    where = f", at {position}" if position is not None else ""
    return f'; the nearest new one is "{id}" of {file.path}{where}'


def rescued(
    orphans: Iterable[Unclaimed], taken: set[str], folder: _native.OutputFolder
) -> dict[str, bytes]:
    """The files beside those of the orphans that keep their texts, whole, by location.

    A text is added to those that are there unless it is among them. Raises OutputError when such a
    file cannot be read or is a file of the run; `taken` has these.
    """
    texts: dict[str, bytes] = {}
    for orphan in orphans:
        path = orphan.location + _ENDING
        try:
            location = folder.locate(path)
            if location in taken:
                raise OutputError(f"{shown(folder, path)} is a file of the run")
            if location not in texts:
                texts[location] = folder.read(location) or b""
        except OSError as error:
            raise OutputError(f"{shown(folder, path)} cannot be read: {reason(error)}") from error
        entry = _entry(orphan)
        if entry not in texts[location]:
            before = texts[location]
            texts[location] = before + (b"\n" if before and before[-1:] != b"\n" else b"") + entry
    return texts


def _entry(orphan: Unclaimed) -> bytes:
    begin, end = _native.Markers(orphan.markers).lines(orphan.region.id)
    return b"".join(
        (
            begin.encode("utf-8", "surrogateescape"), b"\n",
            orphan.region.text,
            end.encode("utf-8", "surrogateescape"), b"\n",
        )
    )  # fmt: skip
