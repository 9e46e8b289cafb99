"""A catalogue that is open for questions, and for the epochs that are the answers."""
from __future__ import annotations

import os
from collections.abc import Iterable, Iterator, Mapping
from functools import cached_property
from itertools import groupby
from typing import Any

import duckdb
import numpy as np
import pyarrow as pa

from ..epoch import Epoch
from ..errors import CorvantisError
from ..handle import Known
from ..interface import CHANGED, Place, RecordingInfo
from ..recording import Recording
from .columns import epochs_schema, files_schema
from .file_rows import FOUND
from .locations import FoundFile, Root
from .store import Store

PLACE = "epoch", "start", "end", "digest"
OF_FILE = ("file", "size", "modified", "tag", "epochs", "found", "tablePosition", "digest",
           "version", "problem")


def quoted(text: str) -> str:
    """A text as SQL has it."""
    return "'" + text.replace("'", "''") + "'"


def _info(row: Mapping[str, Any]) -> RecordingInfo:
    return RecordingInfo(row["size"], row["epochs"], row["tablePosition"], row["version"],
                         FOUND.index(row["found"]), row["digest"])


def _places(rows: pa.Table) -> Any:
    """Of the epochs that are whole, by number."""
    rows = rows.select(PLACE).filter(rows["start"].is_valid())
    numbers, first = np.unique(rows["epoch"].to_numpy(), return_index=True)
    whole = np.empty(len(numbers), np.dtype(Place))
    for name in PLACE:
        whole[name] = rows[name].to_numpy()[first]
    return (Place * len(whole)).from_buffer(whole.data)


def open_known(root: Root, row: Mapping[str, Any], rows: pa.Table) -> Recording:
    """Open a recording by what the catalogue knows of it.

    Args:
        row: of the file, with the columns `OF_FILE`.
        rows: of epochs, with the columns `PLACE`.

    Raises:
        CorvantisError: with code 12 if the file is not what it was, 7 if it cannot be read.
    """
    now = root.find(row["file"])
    if row["problem"] is not None:
        return Recording(root.source(now))      # says it again, unless it has passed
    known = FoundFile(row["file"], row["size"], row["modified"], row["tag"])
    if not now.may_be(known):
        path = f"{root.name}/{now.file}"
        raise CorvantisError(CHANGED, path, f"{path}: not the file that was indexed: {now.size} "
                             f"bytes instead of {known.size}, or modified since; index it again")
    return Recording(root.source(now), Known(_info(row), _places(rows)))


class Catalogue:
    """Rows of a catalogue as they were when it was opened.

    Attributes:
        folder: the catalogue.
        root: the folder or URL that its recordings are below.
    """

    def __init__(self, store: Store, root: str | None) -> None:
        manifest = store.manifest()
        self.folder = str(store.folder)
        self.root = manifest.root if root is None else Root(root).name
        self._paths = {name: store.files_of(manifest, name) for name in ("files", "epochs")}
        self._connection = duckdb.connect()
        for name, schema in (("files", files_schema()), ("epochs", epochs_schema())):
            if paths := self._paths[name]:
                listed = ", ".join(map(quoted, paths))
                self._connection.execute(
                    f"CREATE VIEW {name} AS SELECT * FROM read_parquet([{listed}])")
            else:
                self._connection.register(name, schema.empty_table())

    def __repr__(self) -> str:
        return f"<Catalogue {self.folder} of {self.root}>"

    def __reduce__(self) -> tuple[Any, ...]:
        return open_catalogue, (self.folder, self.root)

    @cached_property
    def location(self) -> Root:
        """Where the recordings are."""
        return Root(self.root)

    @property
    def files(self) -> duckdb.DuckDBPyRelation:
        """A row a file, by name: `file` (relative to the root, with "/"), size, time, SHA-256,
        findings; docs/archives.md has all columns. `.df()` makes a pandas frame of it, `.arrow()`
        an Arrow table."""
        return self.query("SELECT * FROM files ORDER BY file")

    @property
    def epochs(self) -> duckdb.DuckDBPyRelation:
        """A row an epoch, also a damaged one (`problem` is not null then): `file`, `epoch` (its
        number), place, header fields, stimulus in words and as JSON, doubt. In no order."""
        return self.query("SELECT * FROM epochs")

    def query(self, sql: str, parameters: Any = None) -> duckdb.DuckDBPyRelation:
        """The answer of DuckDB to a question about the tables `epochs` and `files`.

        Raises:
            duckdb.Error: for what DuckDB refuses.
        """
        return self._connection.sql(sql, params=parameters)

    def table(self, sql: str, parameters: Any = None) -> pa.Table:
        """As `query`, as an Arrow table."""
        return self.query(sql, parameters).to_arrow_table()

    def _file_row(self, file: str) -> dict[str, Any]:
        rows = self.file_rows("file = ?", [file])
        if not rows:
            raise KeyError(f"{self.folder} has no file {file!r}")
        return rows[0]

    def file_rows(self, where: str = "true", parameters: Any = None) -> list[dict[str, Any]]:
        """What `open_known` needs of files, by name."""
        columns = ", ".join("epoch_ns(modified) AS modified" if name == "modified" else name
                            for name in OF_FILE)
        rows: list[dict[str, Any]] = self.table(
            f"SELECT {columns} FROM files WHERE {where} ORDER BY file", parameters).to_pylist()
        return rows

    def _rows(self, file: str, numbers: Iterable[int] | None) -> pa.Table:
        chosen = "" if numbers is None else \
            f" AND epoch IN ({', '.join(map(str, map(int, numbers)))})"
        return self.table(f'SELECT {", ".join(quoted_names(PLACE))} FROM epochs '
                          f"WHERE file = ?{chosen}", [file])

    def open(self, file: str, numbers: Iterable[int] | None = None) -> Recording:
        """A recording of the catalogue, opened by what the catalogue knows of it: nothing is
        searched.

        Args:
            file: as in the column `file`.
            numbers: of the epochs that will be asked for; all without it.

        Raises:
            KeyError: if the catalogue has no such file.
            CorvantisError: with code 12 if the file is not what it was when it was indexed, 7 if
                it cannot be read.
            OSError: if it is not there.
        """
        return open_known(self.location, self._file_row(file), self._rows(file, numbers))

    def epoch(self, file: str, number: int) -> Epoch:
        """One epoch, as by `open`; fetches little more than its own bytes."""
        return self.open(file, [number]).epochs[number]

    def open_epochs(self, rows: Any) -> Iterator[Epoch]:
        """The epochs of rows, in their order, each recording being opened once in a row.

        Args:
            rows: whatever has the columns `file` and `epoch`: a relation as from `query`, a pandas
                frame, an Arrow table; or pairs of both.
        """
        for file, group in groupby(_pairs(rows), lambda pair: pair[0]):
            numbers = [int(number) for _, number in group]
            recording = self.open(file, numbers)
            for number in numbers:
                yield recording.epochs[number]


def quoted_names(names: Iterable[str]) -> list[str]:
    """Names of columns as SQL has them, some of which are words of its own."""
    return [f'"{name}"' for name in names]


def _pairs(rows: Any) -> Iterable[tuple[str, int]]:
    if isinstance(rows, duckdb.DuckDBPyRelation):
        return list(rows.select("file", "epoch").fetchall())
    if hasattr(rows, "columns"):        # of an Arrow table or a pandas frame
        return zip(*(getattr(rows[name], "to_pylist", lambda column=rows[name]: list(column))()
                     for name in ("file", "epoch")))
    pairs: Iterable[tuple[str, int]] = rows
    return pairs


def open_catalogue(folder: str | os.PathLike[str], root: str | None = None) -> Catalogue:
    """Open a catalogue that `index` made.

    What a run has read that was ended, or is still going on, is part of it, unless the catalogue
    cannot be written here.

    Args:
        folder: the catalogue.
        root: where its recordings are now; without it where they were indexed.

    Raises:
        FileNotFoundError: if there is none.
    """
    store = Store(folder)
    store.manifest()
    store.fold_if_possible()
    return Catalogue(store, root)
