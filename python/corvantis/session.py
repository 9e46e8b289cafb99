"""The library's one open file, shared by all recordings of the process.

A recording that is read while another one is open takes the library over: the other file is closed
and this one opened again, which costs about as much as reading a few epochs' headers.
"""
from __future__ import annotations

import os
import re
from collections.abc import Iterator
from contextlib import contextmanager
from typing import NamedTuple

from .errors import FILE_ERROR, CorvantisError
from .library import Library, exchange, guarded, lock

FILE_HEADER_SIZE = 580
SMALLEST_BUFFER = 1 << 16
LARGEST_BUFFER = (1 << 31) - 1


class Content(NamedTuple):
    """By what a file is known again, also in another process."""

    size: int
    modified: int
    header: bytes


class OpenFile:
    """A data file that a recording has open, whether the library holds it right now or not."""

    def __init__(self, path: str) -> None:
        self.path = path
        self.header = b""
        self._status = self._look()

    def _look(self) -> tuple[int, ...]:
        try:
            status = os.stat(self.path)
        except OSError as error:
            raise CorvantisError(FILE_ERROR, self.path, error.strerror or "") from error
        except ValueError as error:
            raise CorvantisError(FILE_ERROR, self.path, str(error)) from error
        return (status.st_size, status.st_mtime_ns, status.st_ctime_ns, status.st_dev,
                status.st_ino)

    @property
    def content(self) -> Content:
        """What a pickled recording must find again."""
        size, modified, *_ = self._status
        return Content(size, modified, self.header)

    def check(self, lib: Library) -> None:
        """Another file of the same name, or other content, is not to be read at these positions."""
        header = os.pread(lib.descriptor(), FILE_HEADER_SIZE, 0)
        self.header = self.header or header
        if self._look() != self._status or header != self.header:
            raise self.changed()

    def changed(self) -> CorvantisError:
        """The error for a file that is not what it was."""
        return CorvantisError(FILE_ERROR, self.path, "replaced or changed since it was opened")


class _State:
    """What the library holds: whose file, and buffers of which capacity (0: not started).

    An interruption can come between any two lines. So what is about to be undone is forgotten
    before, and what has been done is noted behind: what is lost by that is a little memory.
    """

    owner: OpenFile | None = None
    capacity: int = 0


def _quoted(path: str) -> bytes:
    """The library expands patterns as a shell does; a path stands for itself."""
    return re.sub(rb"([*?\[\]{}~\\])", rb"\\\1", os.fsencode(os.path.abspath(path)))


def _leave(lib: Library) -> None:
    """Close the open file, if there is one."""
    _State.owner = None
    lib.ITCCloseOpenFile()


def _stop(lib: Library) -> None:
    _leave(lib)
    if _State.capacity:
        free_slots(lib)
        _State.capacity = 0
        lib.ITCFinishAnalysis()


def _start(lib: Library, samples: int) -> None:
    """Start with buffers that hold so many samples; the library cannot enlarge its buffers."""
    if _State.capacity >= max(samples, 1):
        return
    capacity = min(max(SMALLEST_BUFFER, 2 * _State.capacity, samples), LARGEST_BUFFER)
    _stop(lib)
    lib.check(lib.ITCInitializeAnalysis(capacity), None, f"buffers of {capacity} samples")
    _State.capacity = capacity


def _take(lib: Library, file: OpenFile) -> None:
    if _State.owner is file:
        return
    _leave(lib)
    result = lib.ITCOpenFileForInput(_quoted(file.path))
    if result != 0:
        lib.ITCCloseOpenFile()
        lib.check(result, file.path)
    _State.owner = file


@contextmanager
def reading(file: OpenFile, samples: int = 0) -> Iterator[Library]:
    """The library with this file open and room for so many samples in its buffers."""
    with guarded() as lib:
        _start(lib, samples)
        _take(lib, file)
        file.check(lib)
        yield lib
        file.check(lib)


def release(file: OpenFile, end: bool) -> None:
    """Let go of a file; `end` also gives back the library's buffers.

    A recording that is found to be garbage must not end the library, for it may be found at any
    moment, even while this thread is reading another one.
    """
    with guarded() as lib:
        if _State.owner is file:
            _leave(lib)
            if end:
                _stop(lib)


def load_anew() -> None:
    """Exchange the library for a new one: no call takes its generators back to their beginning."""
    with guarded() as lib:
        _stop(lib)
        exchange()


def free_slots(lib: Library) -> None:
    """Empty the stimulus slots: reading over a sum would leave its components behind."""
    for slot in range(4):
        lib.ITCFreeParams(slot)


def _leave_to_parent() -> None:
    """In a forked child: give up the file that the parent has open, and open one's own later.

    Both share one file position, which even closing the stream would move. So the child's stream
    is turned to the null device before it is closed.
    """
    with guarded() as lib:
        if _State.owner is not None:
            null = os.open(os.devnull, os.O_RDONLY)
            os.dup2(null, lib.descriptor())
            os.close(null)
            _leave(lib)


def _after_fork() -> None:
    if _State.owner is not None:
        _leave_to_parent()
    lock.release()


os.register_at_fork(before=lock.acquire, after_in_parent=lock.release,
                    after_in_child=_after_fork)
