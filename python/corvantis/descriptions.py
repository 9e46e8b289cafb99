"""What there is to say of many epochs, in one pass over the file."""
from __future__ import annotations

import ctypes
from collections.abc import Sequence
from dataclasses import dataclass
from typing import Any

import numpy as np

from .handle import Handle
from .interface import EpochInfo, Subject, Texts

TYPICAL = 512   # of a text, to begin with [bytes]


@dataclass(frozen=True)
class Description:
    """Of each epoch, one behind the other.

    Attributes:
        infos: structured array with the fields of the C interface's `CorvantisEpochInfo`; zeros
            for a damaged epoch.
        doubts: highest doubt about its stimulus; NOT_COMPUTED where there is none to be had.
        missing: whether the epoch is damaged.
        texts: of each subject the texts in UTF-8 with nothing between them, and where each ends.
    """

    infos: Any
    doubts: Any
    missing: Any
    texts: dict[Subject, tuple[bytes, Any]]


class _Rooms:
    """Rooms for texts that double until all have been said."""

    def __init__(self, subjects: Sequence[Subject], epochs: int) -> None:
        self.ends = {subject: np.zeros(epochs, np.int64) for subject in subjects}
        self.said: dict[Subject, list[bytes]] = {subject: [] for subject in subjects}
        self.rooms = {subject: ctypes.create_string_buffer(TYPICAL) for subject in subjects}
        self.lengths = dict.fromkeys(subjects, 0)

    def records(self, first: int) -> Any:
        return (Texts * len(self.rooms))(*(
            Texts(subject, ctypes.addressof(room), len(room),
                  self.ends[subject].ctypes.data + 8 * first)
            for subject, room in self.rooms.items()))

    def take(self, first: int, count: int) -> None:
        """Take out what was said of so many epochs, and make more room."""
        for subject, room in self.rooms.items():
            ends = self.ends[subject][first:first + count]
            size = int(ends[-1]) if count else 0
            self.said[subject].append(ctypes.string_at(room, size))
            ends += self.lengths[subject]
            self.lengths[subject] += size
            self.rooms[subject] = ctypes.create_string_buffer(max(2 * len(room), TYPICAL))


def describe(handle: Handle, subjects: Sequence[Subject]) -> Description:
    """Describe all epochs of a recording."""
    epochs, done = handle.epochs(), ctypes.c_int64()
    infos = np.zeros(epochs, np.dtype(EpochInfo))
    doubts, missing = np.zeros(epochs, np.int32), np.zeros(epochs, np.uint8)
    rooms, first = _Rooms(subjects, epochs), 0
    while first < epochs:
        records = rooms.records(first)
        handle.call(handle.library.CorvantisDescribe, first, epochs - first,
                    ctypes.addressof(records), len(records), infos[first:].ctypes.data,
                    doubts[first:].ctypes.data, missing[first:].ctypes.data,
                    ctypes.addressof(done))
        rooms.take(first, done.value)
        first += done.value
    return Description(infos, doubts, missing.astype(bool),
                       {subject: (b"".join(said), rooms.ends[subject])
                        for subject, said in rooms.said.items()})
