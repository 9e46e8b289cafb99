"""A catalogue that is open for questions, and for the epochs that are the answers."""
from __future__ import annotations

import os
from collections.abc import Iterable, Iterator
from typing import TYPE_CHECKING, Any

from ..epoch import Epoch
from ..recording import Recording

if TYPE_CHECKING:
    import duckdb


class Catalogue:
    """Rows of a catalogue.

    Attributes:
        folder: the catalogue.
        root: the folder or URL that its recordings are below.
    """

    folder: str
    root: str

    @property
    def files(self) -> duckdb.DuckDBPyRelation:
        """A row a file, by name: `file` (relative to the root, with "/"), size, time, SHA-256,
        findings; docs/archives.md has all columns. `.df()` makes a pandas frame of it, `.arrow()`
        an Arrow table."""
        raise NotImplementedError

    @property
    def epochs(self) -> duckdb.DuckDBPyRelation:
        """A row an epoch, also a damaged one (`problem` is not null then): `file`, `epoch` (its
        number), place, header fields, stimulus in words and as JSON, doubt."""
        raise NotImplementedError

    def query(self, sql: str, parameters: Any = None) -> duckdb.DuckDBPyRelation:
        """The answer of DuckDB to a question about the tables `epochs` and `files`.

        Raises:
            duckdb.Error: for what DuckDB refuses.
        """
        raise NotImplementedError

    def open(self, file: str) -> Recording:
        """A recording of the catalogue, opened by what the catalogue knows of it: nothing is
        searched.

        Args:
            file: as in the column `file`.

        Raises:
            KeyError: if the catalogue has no such file.
            CorvantisError: with code 12 if the file is not what it was when it was indexed, 7 if
                it cannot be read.
        """
        raise NotImplementedError

    def epoch(self, file: str, number: int) -> Epoch:
        """One epoch, as by `open`; fetches little more than its own bytes."""
        raise NotImplementedError

    def open_epochs(self, rows: Any) -> Iterator[Epoch]:
        """The epochs of rows, in their order, each recording being opened once in a row.

        Args:
            rows: whatever has the columns `file` and `epoch`: a relation as from `query`, a pandas
                frame, an Arrow table; or pairs of both.
        """
        raise NotImplementedError


def open_catalogue(folder: str | os.PathLike[str], root: str | None = None) -> Catalogue:
    """Open a catalogue that `index` made.

    Args:
        folder: the catalogue.
        root: where its recordings are now; without it where they were indexed.

    Raises:
        FileNotFoundError: if there is none.
    """
    raise NotImplementedError


Pairs = Iterable[tuple[str, int]]
