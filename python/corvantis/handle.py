"""A recording as the library has it open: calls from any number of threads, closed behind the last.
"""
from __future__ import annotations

import ctypes
import os
import threading
import time
from collections.abc import Callable
from typing import Any, BinaryIO, NamedTuple

from .errors import CorvantisError
from .interface import FILE_ERROR, EpochInfo, Problem, RecordingInfo
from .library import library
from .source import Source

Function = Callable[..., int]


class Known(NamedTuple):
    """What an earlier opening found: of the recording, and of epochs by ascending numbers, with the
    places of the C interface's `CorvantisPlace`."""

    info: RecordingInfo
    places: Any     # ctypes array of Place


class _Problems(threading.local):
    """A thread's room for what went wrong."""

    def __init__(self) -> None:
        self.problem = Problem()
        self.address = ctypes.addressof(self.problem)


_problems = _Problems()


class Handle:
    """The library's recording.

    Whoever calls it holds this object, so that it is closed when the last call has ended, in
    whatever thread that is. `refresh` must have it alone: it waits for those inside, and those who
    come wait for it.

    Attributes:
        name: what messages call the file.
        library: the library's functions.
    """

    def __init__(self, name: str, file: BinaryIO | None = None,
                 known: Known | None = None) -> None:
        self._pointer = ctypes.c_void_p()
        self.library = library()
        self._close = self.library.CorvantisClose
        self.name = name
        self._inside: set[object] = set()
        self._refreshing = False
        self._refreshes = threading.Lock()
        self.source = Source(file) if file is not None else None
        self._open(known)

    def _open(self, known: Known | None) -> None:
        end = ctypes.addressof(self._pointer), _problems.address
        source = ctypes.addressof(self.source.functions) if self.source is not None else None
        if known is not None:
            code = self.library.CorvantisOpenKnown(
                self._encoded(), source, ctypes.addressof(known.info),
                ctypes.addressof(known.places), len(known.places), *end)
        elif source is None:
            code = self.library.CorvantisOpen(self._encoded(), *end)
        else:
            code = self.library.CorvantisOpenSource(source, self._encoded(), *end)
        if code:
            raise self._failure(code)

    def _encoded(self) -> bytes:
        try:
            name = os.fsencode(self.name)
        except UnicodeEncodeError as error:
            raise CorvantisError(FILE_ERROR, self.name, f"{self.name}: {error.reason}") from error
        if b"\0" in name:
            raise CorvantisError(FILE_ERROR, self.name, f"{self.name}: a name without a NUL is "
                                 "needed")
        return name

    def __del__(self) -> None:
        if self._pointer:
            self._close(self._pointer)

    def _failure(self, code: int) -> CorvantisError:
        """The error of the call that this thread has just made."""
        problem = _problems.problem
        error = CorvantisError(code, self.name, problem.text.decode("utf-8", "replace"),
                               problem.offset if problem.offset >= 0 else None)
        error.__cause__ = self._source_failure()
        return error

    def _source_failure(self) -> BaseException | None:
        """What the file object raised in the call that this thread has just made; it is raised here
        if it asks for the program's end."""
        failure = self.source.failure() if self.source is not None else None
        if failure is not None and not isinstance(failure, Exception):
            raise failure
        return failure

    def ask(self, function: Function, *arguments: Any) -> int:
        """What one of the library's functions returns for this recording."""
        token = object()
        try:
            self._inside.add(token)
            if self._refreshing:
                self._wait(token)
            return function(self._pointer, *arguments)
        finally:
            self._inside.discard(token)

    def _wait(self, token: object) -> None:
        while self._refreshing:
            self._inside.discard(token)
            with self._refreshes:
                pass
            self._inside.add(token)

    def call(self, function: Function, *arguments: Any) -> None:
        """Call one of the library's functions whose last parameter is a problem."""
        code = self.ask(function, *arguments, _problems.address)
        if code:
            raise self._failure(code)
        if self.source is not None:
            self._source_failure()

    def refresh(self) -> None:
        """Take in what has been saved meanwhile."""
        with self._refreshes:
            try:
                self._refreshing = True
                while self._inside:
                    time.sleep(0.0005)
                code = self.library.CorvantisRefresh(self._pointer, _problems.address)
            finally:
                self._refreshing = False
        if code:
            raise self._failure(code)

    def epochs(self) -> int:
        """How many epochs there are."""
        return self.ask(self.library.CorvantisEpochs)

    def epoch(self, epoch: int) -> EpochInfo:
        """Where an epoch lies, and what there is to be had of it."""
        info = EpochInfo()
        self.call(self.library.CorvantisEpoch, epoch, ctypes.addressof(info))
        return info
