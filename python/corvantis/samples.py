"""Arrays of samples, filled by the library in place."""
from __future__ import annotations

import ctypes
from collections.abc import Sequence
from typing import TYPE_CHECKING, Any

import numpy as np

from .handle import Function, Handle
from .interface import ALL_ENTRIES

if TYPE_CHECKING:
    from .epoch import Epoch


def room(shape: tuple[int, int], first: int, count: int | None, entry: int | None,
         raw: bool) -> Any:
    """An array for a range of an epoch's points, of one entry or all.

    Raises:
        IndexError: for points or entries that the epoch has not.
    """
    points, entries = shape
    count = points - first if count is None else count
    if not 0 <= first <= first + count <= points:
        raise IndexError(f"no points {first} to {first + count}: the epoch has {points}")
    if entry is not None and not 0 <= entry < entries:
        raise IndexError(f"no entry {entry}: the epoch has {entries}")
    return np.empty((count, entries) if entry is None else (count,),
                    np.int16 if raw else np.float64)


def fill(handle: Handle, function: Function, epoch: int, values: Any, entry: int | None = None,
         first: int = 0, *doubt: int) -> None:
    """Have one of the library's functions fill an array with an epoch's points."""
    if values.size:
        handle.call(function, epoch, ALL_ENTRIES if entry is None else entry, first, len(values),
                    ctypes.addressof(ctypes.c_char.from_buffer(values)), 0, *doubt)


def stacked(epochs: Sequence[Epoch], function: Function, entry: int | None, raw: bool) -> Any:
    """The samples of several epochs as one array, shape (epochs, points, entries).

    Raises:
        ValueError: if they have not the same numbers of points and entries.
    """
    shapes = {epoch._shape for epoch in epochs}
    if len(shapes) > 1:
        raise ValueError(f"epochs of different shapes: {', '.join(map(str, sorted(shapes)))}")
    shape = shapes.pop() if shapes else (0, 0)
    one = room(shape, 0, None, entry, raw)
    values = np.empty((len(epochs), *one.shape), one.dtype)
    for number, epoch in enumerate(epochs):
        fill(epoch.recording.handle, function, epoch.number, values[number], entry)
    return values
