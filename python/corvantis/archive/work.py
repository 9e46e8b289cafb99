"""Tasks on the processes of this machine or on the workers of a Dask scheduler.

Tasks are handed over a few at a time, so that neither this process nor the scheduler holds more.
When a process comes to an end, whatever was under way is tried again, one task at a time: what ends
its process then too is the one to blame, and fails alone.
"""
from __future__ import annotations

import os
import queue
import time
from collections.abc import Callable, Iterable, Iterator
from functools import cache
from itertools import islice
from typing import Any, NamedTuple, Protocol

from .needs import require

AHEAD = 3               # tasks under way for each process
GLANCE = 1.0            # how often to look whether the scheduler is still there [s]
PATIENCE = 300.0        # for a scheduler that was lost [s]


class Task(NamedTuple):
    """Arguments of one call, and by what its result is known."""

    key: Any
    arguments: tuple[Any, ...]


class Failure(NamedTuple):
    """Instead of a result: why there is none."""

    problem: str


class Lost(Exception):
    """The process of a task came to an end before it did."""


class Again(Exception):
    """The task was dropped through no fault of its own."""


class Workers(Protocol):
    """Who does the work.

    Attributes:
        tries_again: whether they hand a lost task to another process by themselves.
    """

    tries_again: bool

    def width(self) -> int:
        """How many tasks are worked on at once."""

    def submit(self, call: bytes, arguments: tuple[Any, ...]) -> Any:
        """Hand over a task; gives something that `wait` gives back."""

    def wait(self, pending: Iterable[Any]) -> list[Any]:
        """Those of the pending ones that are done; at least one."""
        ...

    def result(self, future: Any) -> Any:
        """Its result; raises Lost or Again, or what the task raised."""

    def close(self) -> None:
        """Let go of the processes."""


@cache
def _loaded(call: bytes) -> Callable[..., Any]:
    import cloudpickle
    function: Callable[..., Any] = cloudpickle.loads(call)
    return function


def _call(call: bytes, *arguments: Any) -> Any:
    return _loaded(call)(*arguments)


class Processes:
    """Of this machine."""

    tries_again = False

    def __init__(self, count: int | None) -> None:
        self._count = count or os.cpu_count() or 1
        self._pool: Any = None

    def width(self) -> int:
        return self._count

    def submit(self, call: bytes, arguments: tuple[Any, ...]) -> Any:
        from loky import ProcessPoolExecutor
        if self._pool is None:
            self._pool = ProcessPoolExecutor(self._count)
        return self._pool.submit(_call, call, *arguments)

    def wait(self, pending: Iterable[Any]) -> list[Any]:
        from concurrent.futures import FIRST_COMPLETED, wait
        return list(wait(pending, return_when=FIRST_COMPLETED).done)

    def result(self, future: Any) -> Any:
        from concurrent.futures.process import BrokenProcessPool
        try:
            return future.result()
        except BrokenProcessPool as error:
            if self._pool is not None:
                self._pool.shutdown(wait=False, kill_workers=True)
            self._pool = None
            raise Lost from error

    def close(self) -> None:
        if self._pool is not None:
            self._pool.shutdown(wait=False, kill_workers=True)


class Cluster:
    """Workers of a Dask scheduler."""

    tries_again = True

    def __init__(self, address: str) -> None:
        require("cluster")
        self._address = address
        self._client = self._connected()
        self._done: queue.SimpleQueue[Any] = queue.SimpleQueue()

    def _connected(self) -> Any:
        """A client, as soon as the scheduler answers.

        Raises:
            ConnectionError: if it has not for too long.
        """
        from distributed import Client
        end = time.monotonic() + PATIENCE
        while True:
            try:
                return Client(self._address, timeout=10, set_as_default=False)
            except (OSError, TimeoutError) as error:
                if time.monotonic() > end:
                    raise ConnectionError(f"{self._address}: no scheduler answers: {error}") \
                        from error
                time.sleep(GLANCE)

    def width(self) -> int:
        workers = self._client.scheduler_info(n_workers=-1)["workers"].values()
        return max(sum(int(each["nthreads"]) for each in workers), 1)

    def submit(self, call: bytes, arguments: tuple[Any, ...]) -> Any:
        while True:
            try:
                future = self._client.submit(_call, call, *arguments, pure=False)
            except Exception:       # whatever a client raises that is closing
                if self._client.status == "running":
                    raise
                self._reconnect()
            else:
                future.add_done_callback(self._done.put)
                return future

    def _reconnect(self) -> None:
        self._client.close(timeout=1)
        self._client = self._connected()

    def wait(self, pending: Iterable[Any]) -> list[Any]:
        pending = list(pending)
        while True:
            try:
                done = self._done.get(timeout=GLANCE)
            except queue.Empty:
                if self._client.status != "running":
                    return pending
                if lost := [each for each in pending if each.status in ("lost", "cancelled")]:
                    return lost
            else:
                if done in pending:
                    return [done]

    def result(self, future: Any) -> Any:
        from concurrent.futures import CancelledError

        from distributed.scheduler import KilledWorker
        if self._client.status != "running":
            self._reconnect()
        if future.status not in ("finished", "error"):
            raise Again
        try:
            return future.result(timeout=60)
        except KilledWorker as error:
            raise Lost from error
        except (CancelledError, OSError, TimeoutError) as error:
            if future.status == "error":    # the task's own
                raise
            raise Again from error
        finally:
            future.release()

    def close(self) -> None:
        self._client.close()


class _Run:
    """One run: the tasks under way, and those that are tried again alone."""

    def __init__(self, workers: Workers, function: Callable[..., Any], retries: int) -> None:
        import cloudpickle
        self._workers = workers
        self._call = cloudpickle.dumps(function)
        self._retries = retries
        self._pending: dict[Any, Task] = {}
        self._suspects: list[Task] = []

    def _start(self, task: Task) -> None:
        self._pending[self._workers.submit(self._call, task.arguments)] = task

    def _finished(self) -> Iterator[tuple[Any, Any]]:
        """What is done of the tasks under way."""
        for future in self._workers.wait(self._pending):
            task = self._pending.pop(future)
            try:
                yield task.key, self._workers.result(future)
            except Lost:
                self._suspects.append(task)
            except Again:
                self._start(task)
            except Exception as error:
                yield task.key, Failure(f"{type(error).__name__}: {error}")

    def _alone(self, task: Task) -> Iterator[tuple[Any, Any]]:
        for _ in range(1 if self._workers.tries_again else self._retries + 1):
            self._start(task)
            while self._pending:
                yield from self._finished()
            if not self._suspects:
                return
            self._suspects.clear()
        yield task.key, Failure("the process that worked on it came to an end, each time")

    def results(self, tasks: Iterable[Task]) -> Iterator[tuple[Any, Any]]:
        coming = iter(tasks)
        while True:
            room = AHEAD * self._workers.width() - len(self._pending)
            for task in islice(coming, max(room, 0)):
                self._start(task)
            if not self._pending:
                return
            yield from self._finished()
            if self._suspects:
                while self._pending:
                    yield from self._finished()
                suspects, self._suspects = self._suspects, []
                for task in suspects:
                    yield from self._alone(task)


def run(function: Callable[..., Any], tasks: Iterable[Task], *, scheduler: str | None,
        processes: int | None, retries: int = 2) -> Iterator[tuple[Any, Any]]:
    """Call a function for each task.

    Args:
        function: and whatever it needs goes by cloudpickle.
        tasks: taken a few at a time.
        scheduler: address of a Dask scheduler; without it, processes of this machine.
        processes: how many; as many as processors without it.
        retries: how often a task is tried again, alone, whose process came to an end.

    Yields:
        Key and result of each task, or a Failure, in the order in which they come.
    """
    workers: Workers = Processes(processes)
    if scheduler:
        workers = Cluster(scheduler)
    try:
        yield from _Run(workers, function, retries).results(tasks)
    finally:
        workers.close()
