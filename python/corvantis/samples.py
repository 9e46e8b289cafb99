"""Arrays of samples, filled by the library in place."""
from __future__ import annotations

import ctypes
from collections.abc import Iterator, Sequence
from typing import Any

import numpy as np
from numpy.typing import NDArray

from .columns import read_columns
from .handle import Function, Handle
from .interface import ALL_ENTRIES
from .units import Counts

SHAPE = "epochPoints", "sequenceLength"
BLOCK = 1 << 16     # of neighbouring epochs' samples that are read at once [bytes]
Shape = tuple[int, int]


def room(shape: Shape, first: int, count: int | None, entry: int | None, raw: bool) -> Any:
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
                    _address(values), 0, *doubt)


def _address(values: Any) -> int:
    return ctypes.addressof(ctypes.c_char.from_buffer(values))


def _fill_counts(handle: Handle, first: int, values: Any, entry: int | None,
                 missing: NDArray[np.uint8] | None = None) -> None:
    """Fill an array with the counts of as many epochs that follow one another."""
    handle.call(handle.library.CorvantisManyCounts, first, len(values),
                ALL_ENTRIES if entry is None else entry, 0, values.shape[1], _address(values),
                values[0].size, None if missing is None else missing.ctypes.data)


def _common_shape(handle: Handle, numbers: NDArray[np.int64]) -> Shape:
    """Points and entries of epochs that all have the same.

    Raises:
        CorvantisError: if one of them is damaged.
        ValueError: if they are different.
    """
    low, high = int(numbers.min()), int(numbers.max())
    rows = read_columns(handle, SHAPE, low, high - low + 1)[numbers - low]
    for number in numbers[rows["missing"]][:1]:
        handle.epoch(int(number))
    if (rows != rows[0]).any():     # said in full only where it has to be
        shapes = sorted({(points, entries) for points, entries, _ in np.unique(rows).tolist()})
        raise ValueError(f"epochs of different shapes: {', '.join(map(str, shapes))}")
    points, entries, _ = rows[0].tolist()
    return points, entries


def _runs(numbers: NDArray[np.int64]) -> Iterator[tuple[int, slice]]:
    """Neighbours among epochs: the first's number, and where they are."""
    ends = [*(np.flatnonzero(np.diff(numbers) != 1) + 1).tolist(), len(numbers)]
    for start, end in zip([0, *ends], ends):
        yield int(numbers[start]), slice(start, end)


def stacked(handle: Handle, chosen: Sequence[int], entry: int | None, raw: bool) -> Any:
    """Acquired samples of several epochs as one array, shape (epochs, points, entries)."""
    if not len(chosen):
        return room((0, 0), 0, 0, None, raw)[np.newaxis][:0]
    numbers = np.asarray(chosen, np.int64)
    one = room(_common_shape(handle, numbers), 0, None, entry, raw)
    values = np.empty((len(numbers), *one.shape), one.dtype)
    if raw and values.size:
        for first, where in _runs(numbers):
            _fill_counts(handle, first, values[where], entry)
    else:
        for number, part in zip(numbers.tolist(), values):
            fill(handle, handle.library.CorvantisValues, number, part, entry)
    return values


class Neighbours:
    """Small epochs that somebody goes through in their order: as soon as the counts of two in a row
    are asked for, those of the next ones are read as well."""

    def __init__(self, first: int, shapes: Sequence[Shape]) -> None:
        self._first = first
        self._shapes = shapes
        # The epoch behind the last one that was asked for, and what was read from there. Other
        # threads may exchange both, but only together.
        self._read: tuple[int, Any] = -1, ()

    def counts(self, handle: Handle, number: int) -> Counts | None:
        """Counts of an epoch, read-only; None if they are to be read alone."""
        first, block = self._read
        if number == first + len(block):
            first, block = self._read = number, self._block(handle, number)
        if first <= number < first + len(block):
            counts: Counts = block[number - first]
            return counts
        self._read = number + 1, ()
        return None

    def _block(self, handle: Handle, number: int) -> Any:
        """Counts of an epoch and those behind it that have the same shape and are not damaged."""
        shape = self._shapes[number - self._first]
        size = 2 * shape[0] * shape[1]
        near = self._shapes[number - self._first:][:BLOCK // size if size else 0]
        count = next((alike for alike, each in enumerate(near) if each != shape), len(near))
        if count < 2:
            return ()
        block = np.empty((count, *shape), np.int16)
        missing = np.zeros(count, np.uint8)
        _fill_counts(handle, number, block, None, missing)
        block.setflags(write=False)
        return block[:int(np.argmax(missing)) if missing.any() else count]
