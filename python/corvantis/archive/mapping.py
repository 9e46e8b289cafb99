"""A function over all files of a catalogue."""
from __future__ import annotations

import os
import tempfile
from collections.abc import Callable, Iterator, Mapping, Sequence
from pathlib import Path
from typing import Any

import numpy as np
import pyarrow as pa
import pyarrow.parquet as pq

from ..recording import Recording
from .catalogue import PLACE, Catalogue, open_catalogue, open_known, quoted_names
from .locations import Root
from .needs import require
from .terminal import Progress
from .transport import from_bytes, to_bytes
from .work import Failure, Task, run

Function = Callable[[Recording, "pa.Table"], Any]

TOGETHER = 16_384       # epochs whose rows are looked up at once, of whole files
GROUP = 1 << 16         # rows of a row group of the result
FIRST = pa.field("file", pa.string()), pa.field("problem", pa.string())


def _as_table(returned: Any) -> pa.Table:
    """What a function returned, as an Arrow table.

    Raises:
        TypeError: if it is none of what it may be.
    """
    if isinstance(returned, pa.Table):
        return returned.replace_schema_metadata()
    if isinstance(returned, pa.RecordBatch):
        return pa.Table.from_batches([returned]).replace_schema_metadata()
    if isinstance(returned, list):
        return pa.Table.from_pylist(returned)
    if hasattr(returned, "to_dict") and hasattr(returned, "columns"):
        return pa.Table.from_pandas(returned, preserve_index=False).replace_schema_metadata()
    raise TypeError(f"a function returns a table or a list of rows, not {type(returned).__name__}")


def _with_file(table: pa.Table, file: str, problem: str | None = None) -> pa.Table:
    """The table with the first columns of a result."""
    problems = table["problem"] if "problem" in table.column_names else \
        pa.array([problem] * len(table), pa.string())
    rest = [name for name in table.column_names if name not in ("file", "problem")]
    return pa.table([pa.array([file] * len(table), pa.string()), problems,
                     *(table[name] for name in rest)], names=["file", "problem", *rest])


def call_for_file(function: Function, root: str, row: Mapping[str, Any], rows: bytes) -> bytes:
    """A task: the function's result for one file.

    Args:
        row: of the file, as `open_known` wants it.
        rows: of its epochs: their places, and the columns for the function.
    """
    places, chosen = from_bytes(rows, 2)
    with open_known(Root(root), row, places) as recording:
        return to_bytes(_with_file(_as_table(function(recording, chosen)), str(row["file"])))


class _Tasks:
    """What is to be done, in the order of the files' names."""

    def __init__(self, function: Function, catalogue: Catalogue, where: str | None,
                 columns: Sequence[str] | None) -> None:
        self._function, self._catalogue = function, catalogue
        self._where = "true" if where is None else where
        self._columns = [] if columns is None else \
            list(dict.fromkeys(["file", "epoch", *columns]))
        counts = dict(catalogue.query(
            f"SELECT file, count(*) FROM epochs WHERE ({self._where}) GROUP BY file").fetchall())
        self.rows = [row for row in catalogue.file_rows()
                     if row["file"] in counts or (where is None and row["problem"] is not None)]
        self._counts = counts

    def _batches(self) -> Iterator[list[dict[str, Any]]]:
        """Files whose epochs are few enough to be looked up at once."""
        batch: list[dict[str, Any]] = []
        epochs = 0
        for row in self.rows:
            count = self._counts.get(row["file"], 0)
            if batch and epochs + count > TOGETHER:
                yield batch
                batch, epochs = [], 0
            batch.append(row)
            epochs += count
        if batch:
            yield batch

    def __iter__(self) -> Iterator[Task]:
        number = 0
        names = dict.fromkeys(["file", *PLACE, *self._columns])
        wanted = ", ".join(quoted_names(names)) if self._columns else "*"
        for batch in self._batches():
            rows = self._catalogue.table(
                f"SELECT {wanted} FROM epochs WHERE ({self._where}) AND file BETWEEN ? AND ? "
                "ORDER BY file, epoch", [batch[0]["file"], batch[-1]["file"]])
            files: Any = rows["file"].to_numpy()
            for row in batch:
                first = int(np.searchsorted(files, row["file"]))
                end = int(np.searchsorted(files, row["file"], "right"))
                mine = rows.slice(first, end - first)
                chosen = mine.select(self._columns) if self._columns else mine
                yield Task(number, (self._function, self._catalogue.root, row,
                                    to_bytes(mine.select(list(PLACE)), chosen)))
                number += 1


def _gather(pieces: Sequence[Path], output: Path) -> None:
    """One Parquet file of what all tasks returned, in their order."""
    schemas = []
    for piece in pieces:
        with pa.memory_map(str(piece)) as source, pa.ipc.open_stream(source) as stream:
            schemas.append(stream.schema)
    schema = pa.unify_schemas([pa.schema(FIRST), *schemas], promote_options="permissive")
    with pq.ParquetWriter(output, schema, compression="zstd") as writer:
        waiting, rows = [schema.empty_table()], 0
        for piece in pieces:
            table = pa.concat_tables([schema.empty_table(), *from_bytes(piece.read_bytes())],
                                     promote_options="permissive")
            waiting.append(table.select(schema.names).cast(schema))
            rows += len(table)
            if rows >= GROUP:
                writer.write_table(pa.concat_tables(waiting).combine_chunks(), GROUP)
                waiting, rows = [schema.empty_table()], 0
        writer.write_table(pa.concat_tables(waiting).combine_chunks(), GROUP)


def map_to(output: str | os.PathLike[str], function: Function,
           catalogue: Catalogue | str | os.PathLike[str], *, where: str | None = None,
           columns: Sequence[str] | None = None, scheduler: str | None = None,
           processes: int | None = None, retries: int = 2, progress: bool = False) -> int:
    """As `map`, but into a Parquet file, so that results need not fit into memory.

    Returns:
        How many files could not be worked on.
    """
    require("archive")
    opened = catalogue if isinstance(catalogue, Catalogue) else open_catalogue(catalogue)
    tasks, failures = _Tasks(function, opened, where, columns), 0
    say = Progress("map", len(tasks.rows), progress)
    target = Path(output)
    with tempfile.TemporaryDirectory(dir=target.parent, prefix=f".{target.name}-") as folder:
        pieces = [Path(folder) / f"{number}.arrow" for number in range(len(tasks.rows))]
        for number, result in run(call_for_file, tasks, scheduler=scheduler, processes=processes,
                                  retries=retries):
            if isinstance(result, Failure):
                failures += 1
                one = pa.table({"problem": pa.array([result.problem], pa.string())})
                result = to_bytes(_with_file(one, tasks.rows[number]["file"]))
            pieces[number].write_bytes(result)
            say.one_more()
        say.end()
        _gather(pieces, Path(folder) / "result")
        os.replace(Path(folder) / "result", target)
    return failures


def map(function: Function, catalogue: Catalogue | str | os.PathLike[str],
        **options: Any) -> pa.Table:
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
        A table whose first columns are `file` and `problem`. A file that could not be worked on has
        one row: `problem` says why, and all other columns are null.
    """
    with tempfile.TemporaryDirectory(prefix="corvantis-") as folder:
        output = Path(folder) / "result.parquet"
        map_to(output, function, catalogue, **options)
        return pq.read_table(output)
