"""Where the epochs of a file lie, found by going from the end of each to the next.

The file's own table of positions is too high behind stimuli that have no bytes on file. It serves
only to get beyond a damaged epoch: from there on it is off by as much as it was before.
"""
from __future__ import annotations

import ctypes
from typing import NamedTuple

from .layout import structure_of
from .library import Library
from .records import FILE_HEADER_BYTES, EpochHeader, FileHeader
from .session import free_slots

FILE_HEADER = structure_of(FileHeader)
EPOCH_HEADER = structure_of(EpochHeader)


class Place(NamedTuple):
    """Offset of an epoch in the file, and its header as it lies in memory; None if damaged."""

    offset: int
    header: bytes | None


def current_file_header(lib: Library) -> ctypes.Structure:
    """The library's file header, in place."""
    return FILE_HEADER.from_address(lib.pointer("filehdr"))


def position_table(lib: Library) -> ctypes.Array[ctypes.c_uint32]:
    """The library's table of positions, in place."""
    entries = max(current_file_header(lib).numEpochs, 0)
    table: ctypes.Array[ctypes.c_uint32]
    table = (ctypes.c_uint32 * entries).from_address(lib.pointer("EpochPosition"))
    return table


def current_epoch_header(lib: Library) -> bytes:
    """The library's epoch header, as it lies in memory."""
    return ctypes.string_at(lib.pointer("epochhdr"), ctypes.sizeof(EPOCH_HEADER))


def point_at(lib: Library, epoch: int, offset: int) -> None:
    """Have the library look for an epoch at an offset, with empty slots for its records."""
    free_slots(lib)
    position_table(lib)[epoch] = offset


def _read(lib: Library, epoch: int, offset: int, limit: int) -> tuple[Place, int]:
    """An epoch and where it ends, which is at 0 for one that cannot be read or ends too late."""
    point_at(lib, epoch, offset)
    if lib.ITCEpochParameters(epoch) == 0:
        block = current_epoch_header(lib)
        header = EPOCH_HEADER.from_buffer_copy(block)
        points, entries = header.epochPoints, header.sequenceLength
        end = lib.tell() + 2 * points * entries
        if points >= 0 and 0 <= entries <= 4 and end <= limit:
            return Place(offset, block), end
    return Place(offset, None), 0


def find_epochs(lib: Library) -> list[Place]:
    """Every epoch of the open file, up to its table of positions."""
    recorded = list(position_table(lib))
    try:
        return _walk(lib, recorded)
    finally:
        # Or a walk that was interrupted would lead the next one astray.
        position_table(lib)[:] = recorded


def _walk(lib: Library, recorded: list[int]) -> list[Place]:
    limit = current_file_header(lib).epochTablePosition % (1 << 32)
    offset = FILE_HEADER_BYTES
    places: list[Place] = []
    while offset < limit and (epoch := len(places)) < len(recorded):
        place, end = _read(lib, epoch, offset, limit)
        places.append(place)
        if place.header is None and epoch + 1 < len(recorded):
            end = recorded[epoch + 1] - recorded[epoch] + offset
        if end <= offset:
            break
        offset = end
    return places
