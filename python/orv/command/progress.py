"""A progress bar on a terminal, and nothing anywhere else."""

from __future__ import annotations

import sys
from collections.abc import Callable, Iterator
from contextlib import contextmanager

# A bar appears only after this many seconds: a short run shows none.
_DELAY = 1.0


@contextmanager
def progress(what: str, total: int | None, quiet: bool) -> Iterator[Callable[[], None] | None]:
    """What to call at each step; None when stderr is not a terminal."""
    if quiet or not sys.stderr.isatty():
        yield None
        return
    from tqdm import tqdm

    with tqdm(desc=what, total=total, unit="", leave=False, delay=_DELAY, file=sys.stderr) as bar:

        def step() -> None:
            bar.update()

        yield step
