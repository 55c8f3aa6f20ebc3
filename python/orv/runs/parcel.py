"""Files that travel to another machine, and the private folder there that has them."""

from __future__ import annotations

import hashlib
import os
import pickle
from collections.abc import Iterable
from contextlib import suppress
from typing import NamedTuple


class Parcel(NamedTuple):
    """The bytes of files by their absolute paths, and folders that have to be there."""

    files: dict[str, bytes]
    folders: tuple[str, ...] = ()

    @property
    def packed(self) -> bytes:
        """The parcel as bytes, the same for the same files."""
        return pickle.dumps((sorted(self.files.items()), self.folders))


def parcel_of(paths: Iterable[str], folders: Iterable[str] = ()) -> Parcel:
    """The files of these paths that can be read: others are missed where they are opened."""
    files: dict[str, bytes] = {}
    for path in paths:
        with suppress(OSError), open(path, "rb") as file:
            files[os.path.abspath(path)] = file.read()
    return Parcel(files, tuple(sorted({os.path.abspath(folder) for folder in folders})))


def unpacked(packed: bytes) -> Parcel:
    """The parcel of these bytes."""
    files, folders = pickle.loads(packed)
    return Parcel(dict(files), folders)


def digest(packed: bytes) -> str:
    """A name for a packed parcel."""
    return hashlib.blake2b(packed, digest_size=20).hexdigest()


class Mirror:
    """A folder that has files of another machine, each at its path there below this folder."""

    def __init__(self, root: str) -> None:
        self.root = root

    def put(self, parcel: Parcel) -> None:
        """Write the files of a parcel."""
        for folder in parcel.folders:
            os.makedirs(self.path(folder), exist_ok=True)
        for path, data in parcel.files.items():
            os.makedirs(os.path.dirname(self.path(path)), exist_ok=True)
            with open(self.path(path), "wb") as file:
                file.write(data)

    def remove(self, parcel: Parcel) -> None:
        """Remove the files of a parcel."""
        for path in parcel.files:
            with suppress(OSError):
                os.unlink(self.path(path))

    def path(self, path: str) -> str:
        """Where an absolute path is; a relative one stays as it is."""
        return self.root + path if os.path.isabs(path) else path

    def original(self, path: str) -> str:
        """What a path is called on the other machine."""
        return path.removeprefix(self.root)

    def originals(self, text: bytes) -> bytes:
        """A text with the names of the other machine in it."""
        return text.replace(self.root.encode(), b"")
