"""A progress bar on the terminal, for what takes a while."""
from __future__ import annotations

import sys
from collections.abc import Iterable, Sequence
from typing import TypeVar

Item = TypeVar("Item")


def progress(items: Sequence[Item], what: str) -> Iterable[Item]:
    """The items, with a bar from half a second on if there is a terminal and tqdm is installed."""
    if not sys.stderr.isatty():
        return items
    try:
        from tqdm import tqdm
    except ImportError:
        return items
    bar: Iterable[Item] = tqdm(items, desc=what, unit="epoch", leave=False, delay=0.5)
    return bar
