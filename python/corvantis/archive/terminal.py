"""How far work over many files is, in one line of the terminal."""
from __future__ import annotations

import sys
import time

EVERY = 0.2     # [s]


class Progress:
    """Says it on a terminal; elsewhere nothing."""

    def __init__(self, what: str, files: int, wanted: bool) -> None:
        self._what, self._files, self._done = what, files, 0
        self._is_shown = wanted and sys.stderr.isatty()
        self._start = self._last = time.monotonic()

    def one_more(self) -> None:
        """A file is done."""
        self._done += 1
        now = time.monotonic()
        if self._is_shown and now - self._last >= EVERY:
            self._last = now
            left = (now - self._start) / self._done * (self._files - self._done)
            print(f"\r{self._what}: {self._done} of {self._files} files, {left:.0f} s left \033[K",
                  end="", file=sys.stderr, flush=True)

    def end(self) -> None:
        """Clear the line."""
        if self._is_shown:
            print("\r\033[K", end="", file=sys.stderr, flush=True)
