"""Measurements of many recordings: a catalogue's, a folder's, or files."""
from __future__ import annotations

import os
import tempfile
from collections.abc import Callable, Sequence
from dataclasses import dataclass
from pathlib import Path
from typing import Any

import duckdb
import pyarrow as pa
import pyarrow.parquet as pq

from ..archive import index, map_to
from ..archive import open as open_catalogue
from ..errors import CorvantisError
from ..recording import Recording, open_recording
from .columns import COLUMNS, EPOCHS
from .recordings import measure
from .tables import PROBLEM, TABLE, apart, together, write, write_definitions

TOGETHER = 4096     # rows that are taken apart at once
Batches = Callable[[], Any]


@dataclass(frozen=True)
class Summary:
    """How many rows the tables have, and how many files could not be measured."""

    rows: dict[str, int]
    failures: int


def measure_file(recording: Recording, rows: pa.Table) -> pa.Table:
    """All measurements of a file of a catalogue, for `corvantis.archive.map`."""
    names = rows["file"].to_pylist()
    return together(measure(recording, rows["epoch"].to_pylist(), names[0] if names else None))


def _write_all(folder: Path, batches: Batches, failures: int) -> Summary:
    folder.mkdir(parents=True, exist_ok=True)
    counts = {table: write(folder, table, apart(batches(), table)) for table in COLUMNS}
    write_definitions(folder)
    return Summary(counts, failures)


def measure_catalogue(catalogue: str | os.PathLike[str], output: str | os.PathLike[str],
                      **options: Any) -> Summary:
    """Measure all recordings of a catalogue into a folder of tables.

    Args:
        catalogue: folder of the catalogue.
        output: folder for `epochs`, `families` and `spikes`, as `.parquet` and `.csv`.
        options: as of `corvantis.archive.map`, such as `where`, `scheduler` and `processes`.
    """
    folder = Path(output)
    folder.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(dir=folder, prefix=".measuring-") as work:
        made = Path(work) / "all.parquet"
        try:
            failures = map_to(made, measure_file, catalogue, columns=["file", "epoch"], **options)
        except duckdb.Error as error:
            raise ValueError(f"--where: {error}") from None
        return _write_all(folder, lambda: pq.ParquetFile(made).iter_batches(TOGETHER), failures)


def measure_folder(root: str | os.PathLike[str], output: str | os.PathLike[str],
                   **options: Any) -> Summary:
    """As `measure_catalogue`, of all recordings below a folder."""
    with tempfile.TemporaryDirectory(prefix="corvantis-") as work:
        told = {name: options[name] for name in ("scheduler", "processes") if name in options}
        index(root, work, digest=False, **told)
        return measure_catalogue(work, output, **options)


def _of_file(name: str) -> pa.Table:
    """Measurements of a file, or one row that says why there are none."""
    try:
        with open_recording(name) as recording:
            return together(measure(recording, file=name))
    except Exception as error:      # one bad file is not the end of many
        named = "" if isinstance(error, CorvantisError) else f"{type(error).__name__}: "
        return pa.table({TABLE: [EPOCHS], "file": [name], PROBLEM: [f"{named}{error}"]})


def measure_files(files: Sequence[str], output: str | os.PathLike[str]) -> Summary:
    """As `measure_catalogue`, of files by name, in this process."""
    tables = [_of_file(name) for name in files]
    whole = pa.concat_tables(tables, promote_options="permissive")
    return _write_all(Path(output), whole.to_batches,
                      sum(PROBLEM in table.column_names for table in tables))


def is_catalogue(name: str) -> bool:
    """Whether a folder is a catalogue."""
    try:
        open_catalogue(name)
    except (OSError, ValueError):
        return False
    return True
