"""A binary file object as the source of a recording's bytes."""
from __future__ import annotations

import ctypes
import os
import threading
from typing import Any, BinaryIO

from .interface import READ, SIZE, SourceFunctions


class Source:
    """Reads a file object for the library, one thread at a time.

    No exception can pass through the library: it is kept for the thread that asked, until `failure`
    gives it back.
    """

    def __init__(self, file: BinaryIO) -> None:
        self.file = file
        self._lock = threading.Lock()
        self._failed = threading.local()
        self.functions = SourceFunctions(None, SIZE(self._size), READ(self._read), None)

    def _size(self, _: object) -> int:
        try:
            with self._lock:
                return self.file.seek(0, os.SEEK_END)
        except BaseException as error:
            self._failed.error = error
            return -1

    def _read(self, _: object, offset: int, address: int, count: int) -> int:
        try:
            room = memoryview((ctypes.c_char * count).from_address(address)).cast("B")
            with self._lock:
                return self._fill(room, offset)
        except BaseException as error:
            self._failed.error = error
            return -1

    def _fill(self, room: memoryview, offset: int) -> int:
        """Fill the room as far as the file goes, which may be piece by piece."""
        self.file.seek(offset)
        filled = 0
        while filled < len(room) and (piece := self.file.read(len(room) - filled)):
            room[filled:filled + len(piece)] = piece
            filled += len(piece)
        return filled

    def failure(self) -> BaseException | None:
        """What the file object raised in this thread since the last time."""
        error: BaseException | None = self._failed.__dict__.pop("error", None)
        return error


def is_file_object(thing: Any) -> bool:
    """Whether it is read from, instead of naming a file."""
    return hasattr(thing, "read") and hasattr(thing, "seek")
