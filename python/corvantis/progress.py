"""A progress bar on the terminal, for what takes a while."""
from __future__ import annotations

import sys
from collections.abc import Iterable
from typing import TypeVar

Item = TypeVar("Item")


def progress(items: Iterable[Item], what: str, unit: str = "epoch",
             total: int | None = None) -> Iterable[Item]:
    """The items, with a bar from half a second on if there is a terminal and tqdm is installed.

    Args:
        total: how many they are, where they do not say it themselves.
    """
    if not sys.stderr.isatty():
        return items
    try:
        from tqdm import tqdm
    except ImportError:
        return items
    bar: Iterable[Item] = tqdm(items, desc=what, unit=unit, leave=False, delay=0.5,
                               total=total)
    return bar
