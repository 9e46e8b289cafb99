"""A function over all files of a catalogue."""
from __future__ import annotations

import os
from collections.abc import Callable, Sequence
from typing import TYPE_CHECKING, Any

from ..recording import Recording
from .catalogue import Catalogue

if TYPE_CHECKING:
    import pyarrow

Function = Callable[[Recording, "pyarrow.Table"], Any]


def map(function: Function, catalogue: Catalogue | str, *, where: str | None = None,
        columns: Sequence[str] | None = None, scheduler: str | None = None,
        processes: int | None = None, retries: int = 2, progress: bool = False) -> pyarrow.Table:
    """Call a function for each file of a catalogue, and gather what it returns.

    A task is a file. The result is the same to the byte for any number of processes or workers,
    and whatever happened to them: rows are in the order of the files' names, and within a file as
    the function returned them.

    Args:
        function: called as `function(recording, rows)` with the open recording, in which nothing
            is searched, and the catalogue's rows of its epochs as an Arrow table, by number.
            Returns rows: an Arrow table, a pandas frame, or a list of dictionaries. It runs in
            another process, so what it needs is taken along by cloudpickle.
        catalogue: the catalogue, or its folder.
        where: which epochs, as a condition of SQL such as "temperature > 30"; files without any
            are left out.
        columns: of the epochs that `rows` has; all without it. `file` and `epoch` are always there.
        scheduler: address of a Dask scheduler; its workers see the same files.
        processes: on this machine; as many as processors without it.
        retries: how often a file is tried again whose process came to an end.
        progress: say on the terminal how far it is.

    Returns:
        A table whose first columns are `file` and `problem`. `problem` is null but for a file that
        could not be worked on: this has one row, which says why, and null in all other columns.
    """
    raise NotImplementedError


def map_to(output: str | os.PathLike[str], function: Function, catalogue: Catalogue | str,
           **options: Any) -> int:
    """As `map`, but into a Parquet file, so that results need not fit into memory.

    Returns:
        How many files could not be worked on.
    """
    raise NotImplementedError
