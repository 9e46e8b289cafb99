"""Tables of measurements as files: Parquet with units and definitions, and CSV."""
from __future__ import annotations

import csv
from collections.abc import Iterable, Iterator
from contextlib import ExitStack
from pathlib import Path
from typing import Any

import pyarrow as pa
import pyarrow.compute as pc
import pyarrow.parquet as pq

from ..writing import replacing
from .columns import COLUMNS, EPOCHS, NUMBER, REASONS, TEXT, TRUTH, WHOLE
from .missing import Row
from .recordings import Measurements

TYPES = {TEXT: pa.string(), WHOLE: pa.int64(), NUMBER: pa.float64(), TRUTH: pa.bool_()}
TABLE = "table"         # column that parts the rows of several tables
PROBLEM = "problem"     # column that says why a file could not be measured
DIGITS = 9              # of numbers in CSV
GROUP = 1 << 16         # rows that are written at once


def schema(table: str) -> pa.Schema:
    """Headings and types; units and definitions are the fields' metadata."""
    return pa.schema([pa.field(each.heading, TYPES[each.kind],
                               metadata={"unit": each.unit, "definition": each.definition})
                      for each in COLUMNS[table]])


def _of_all() -> pa.Schema:
    fields = {each.name: each.remove_metadata() for table in COLUMNS for each in schema(table)}
    return pa.schema([pa.field(TABLE, pa.string()), *fields.values()])


def together(measurements: Measurements) -> pa.Table:
    """All tables as one that has the columns of all, as a function over an archive returns it."""
    rows = [{TABLE: name, **row} for name, some in measurements.tables.items() for row in some]
    return pa.Table.from_pylist(rows, schema=_of_all())


def _column(rows: pa.Table, field: pa.Field) -> pa.ChunkedArray:
    if field.name not in rows.column_names:     # no file could be measured
        return pa.chunked_array([pa.nulls(len(rows), field.type)])
    return rows[field.name].cast(field.type)


def apart(pieces: Iterable[pa.RecordBatch], table: str) -> Iterator[pa.Table]:
    """The rows of one table among those of all; a file that could not be measured has one in
    the table of epochs."""
    wanted = schema(table)
    for piece in pieces:
        rows = pa.Table.from_batches([piece])
        rows = rows.filter(pc.equal(pc.fill_null(rows[TABLE], EPOCHS), table)) \
            if TABLE in rows.column_names else rows.slice(0, len(rows) if table == EPOCHS else 0)
        columns = {field.name: _column(rows, field) for field in wanted}
        if PROBLEM in rows.column_names:
            why = pc.binary_join_element_wise("all", rows[PROBLEM].cast(pa.string()), ": ")
            columns[REASONS] = pc.coalesce(columns[REASONS], why)
        if len(rows):
            yield pa.table(list(columns.values()), schema=wanted)


def _cell(value: Any) -> str:
    if value is None:
        return ""
    if isinstance(value, bool):
        return str(value).lower()
    return f"{value:.{DIGITS}g}" if isinstance(value, float) else str(value)


def _lines(rows: Iterable[Row]) -> Iterator[list[str]]:
    for row in rows:
        yield [_cell(value) for value in row.values()]


def write(folder: Path, table: str, pieces: Iterable[pa.Table]) -> int:
    """Write a table as Parquet and as CSV, which have their names only when they are complete;
    returns how many rows it has."""
    count = 0
    with ExitStack() as whole:
        parquet, text = (whole.enter_context(replacing(folder / f"{table}.{ending}"))
                         for ending in ("parquet", "csv"))
        with pq.ParquetWriter(parquet, schema(table), compression="zstd") as columns, \
                open(text, "w", encoding="utf-8", newline="") as stream:
            lines = csv.writer(stream, lineterminator="\n")
            lines.writerow(schema(table).names)
            for piece in pieces:
                columns.write_table(piece, GROUP)
                lines.writerows(_lines(piece.to_pylist()))
                count += len(piece)
    return count


def write_definitions(folder: Path) -> None:
    """Units, groups and definitions of all columns, as CSV."""
    with replacing(folder / "columns.csv") as name, \
            open(name, "w", encoding="utf-8", newline="") as stream:
        lines = csv.writer(stream, lineterminator="\n")
        lines.writerow(["table", "column", "unit", "group", "definition"])
        lines.writerows([table, each.heading, each.unit, each.group, each.definition]
                        for table, columns in COLUMNS.items() for each in columns)
