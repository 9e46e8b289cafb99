"""By what a file is known again, in another process or on another machine."""
from __future__ import annotations

import os
import zlib
from pathlib import Path
from typing import NamedTuple

VARIABLE = "CORVANTIS_ROOT"
SECOND = 10 ** 9    # [ns]
_chosen: list[str] = []


def set_root(folder: str | os.PathLike[str] | None) -> None:
    """Say under which folder this machine has its recordings; None leaves it to the environment
    variable CORVANTIS_ROOT.

    Pickled recordings and epochs below it name their file from there, and find it where another
    machine's root is.
    """
    _chosen[:] = [] if folder is None else [os.path.abspath(folder)]


def _root() -> str | None:
    named = os.environ.get(VARIABLE)
    return _chosen[0] if _chosen else named and os.path.abspath(named)


def portable(path: str) -> str:
    """The path from the root, or the whole path of a file that is not below it."""
    root = _root()
    below = root is not None and Path(path).is_relative_to(root)
    return Path(os.path.relpath(path, root)).as_posix() if below else path


def local(path: str) -> str:
    """Where a file of a portable path is on this machine.

    Raises:
        ValueError: if this needs a root and there is none.
    """
    root = _root()
    if root is None and not os.path.isabs(path):
        raise ValueError(f"{path}: no root to find it from; call corvantis.set_root or set "
                         f"{VARIABLE}")
    return os.path.join(root or "", path)


class Identity(NamedTuple):
    """What a pickled recording must find again.

    A file to which epochs were added since is the same: `last`, a checksum of the header of the
    last of so many epochs, is then what it was.
    """

    size: int
    modified: int
    epochs: int
    last: int

    def same_file(self, other: Identity) -> bool:
        """Whether neither size nor time of modification [ns] differ; a copy may have lost the
        time's fraction of a second."""
        unit = 1 if self.modified % SECOND and other.modified % SECOND else SECOND
        return self.size == other.size and self.modified // unit == other.modified // unit


def checksum(header: bytes) -> int:
    """Of an epoch's header."""
    return zlib.crc32(header)
