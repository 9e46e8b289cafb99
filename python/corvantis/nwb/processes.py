"""A process for each piece of work, some at a time: one that dies takes no other with it."""
from __future__ import annotations

import multiprocessing
import signal
from collections import deque
from collections.abc import Callable, Iterable, Iterator
from multiprocessing.connection import Connection, wait
from multiprocessing.process import BaseProcess
from typing import Any, Generic, TypeVar

Work = TypeVar("Work")
Result = TypeVar("Result")


def _in_child(connection: Connection, work: Callable[[Any], Any], item: Any) -> None:
    connection.send(work(item))
    connection.close()


def _how_it_ended(code: int | None) -> str:
    if code is not None and code < 0:
        return f"its process was ended by {signal.Signals(-code).name}"
    return f"its process ended with status {code}"


class Processes(Generic[Work, Result]):
    """Does work on items in processes of their own.

    Args:
        work: for an item gives its result; both must be fit for pickling.
        died: gives the result for an item whose process died, from that in words.
        count: how many at a time.
    """

    def __init__(self, work: Callable[[Work], Result], died: Callable[[Work, str], Result],
                 count: int) -> None:
        self._work, self._died, self._count = work, died, count
        # Forked, a process has all modules at once; where there is no fork, it loads them.
        kind = "fork" if "fork" in multiprocessing.get_all_start_methods() else "spawn"
        self._context: Any = multiprocessing.get_context(kind)
        self._running: dict[Connection, tuple[Work, BaseProcess]] = {}

    def results(self, items: Iterable[Work]) -> Iterator[Result]:
        """The results as they come; whoever stops asking ends the processes."""
        waiting = deque(items)
        try:
            while waiting or self._running:
                while waiting and len(self._running) < self._count:
                    self._start(waiting.popleft())
                for connection in wait(list(self._running)):
                    yield self._end(connection)     # type: ignore[arg-type]
        finally:
            for _, process in self._running.values():
                process.terminate()
            for _, process in self._running.values():
                process.join()

    def _start(self, item: Work) -> None:
        own, its = self._context.Pipe(duplex=False)
        process = self._context.Process(target=_in_child, args=(its, self._work, item))
        process.start()
        its.close()
        self._running[own] = item, process

    def _end(self, connection: Connection) -> Result:
        item, process = self._running[connection]
        try:
            result: Result = connection.recv()
        except EOFError:
            process.join()
            result = self._died(item, _how_it_ended(process.exitcode))
        process.join()
        del self._running[connection]
        connection.close()
        return result
