"""`corvantis measure`: tables of measurements of files, a folder or a catalogue."""
from __future__ import annotations

import argparse
import importlib.util
import os
import sys
from collections.abc import Sequence
from pathlib import Path
from typing import TYPE_CHECKING

from .archive_options import add_options
from .commands import DAMAGED, UNUSABLE

if TYPE_CHECKING:
    from .measure.archives import Summary

NEEDS = "efel", "scipy", "pyarrow", "duckdb", "fsspec", "loky"
TABLES = ("epochs", "families", "spikes")


def _arguments() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="corvantis measure",
        description="Measure recordings: of each epoch and family of steps rest, input resistance, "
        "time constant, sag, rheobase, f-I slope; spikes; access resistance and capacitance of "
        "test pulses; noise, drift, clipping. Writes epochs, families and spikes as .parquet and "
        ".csv, and columns.csv, which says what each column is. What cannot be measured is empty, "
        "and the column `reasons` says why. Exit status: 0 all was read, 1 some files could not "
        "be, 2 there are no tables.")
    parser.add_argument("source", nargs="+", metavar="FILE|FOLDER|CATALOGUE",
                        help="data files, a folder of them, or a catalogue of corvantis index")
    parser.add_argument("-o", "--output", metavar="FOLDER", required=True,
                        help="folder of the tables")
    parser.add_argument("--where", metavar="SQL",
                        help="of a catalogue those epochs alone, such as \"temperature > 30\"")
    parser.add_argument("--force", action="store_true", help="replace existing tables")
    add_options(parser)
    parser.add_argument("--quiet", action="store_true", help="no progress, no summary")
    return parser


def _check(options: argparse.Namespace) -> None:
    folders = [name for name in options.source if os.path.isdir(name)]
    if folders and len(options.source) > 1:
        raise ValueError(f"{folders[0]} is a folder: name one folder or catalogue, or files")
    there = [name for name in TABLES if Path(options.output, f"{name}.parquet").exists()]
    if there and not options.force:
        raise ValueError(f"{options.output} has {there[0]}.parquet already; --force replaces it")


def _measure(options: argparse.Namespace) -> Summary:
    _check(options)
    if missing := [name for name in NEEDS if importlib.util.find_spec(name) is None]:
        raise ImportError(f"{missing[0]} is missing; pip install corvantis[measure]")
    from .measure import archives
    first: str = options.source[0]
    told = {"scheduler": options.scheduler, "processes": options.processes}
    if os.path.isdir(first) and archives.is_catalogue(first):
        return archives.measure_catalogue(first, options.output, where=options.where,
                                          progress=not options.quiet, **told)
    if options.where is not None:
        raise ValueError(f"--where is for catalogues; corvantis index makes one of {first}")
    if os.path.isdir(first):
        return archives.measure_folder(first, options.output, progress=not options.quiet, **told)
    return archives.measure_files(options.source, options.output)


def measure(arguments: Sequence[str] | None = None) -> int:
    """Run the command."""
    options = _arguments().parse_args(arguments)
    try:
        summary = _measure(options)
    except (ImportError, OSError, ValueError) as error:
        print(f"corvantis measure: {error}", file=sys.stderr)
        return UNUSABLE
    except KeyboardInterrupt:
        print("corvantis measure: ended; there are no new tables", file=sys.stderr)
        return 130
    if not options.quiet:
        counts = ", ".join(f"{summary.rows[name]} {name}" for name in TABLES)
        print(f"{counts} in {options.output}")
    if summary.failures:
        print(f"corvantis measure: {summary.failures} files could not be measured; the column "
              "reasons of epochs.csv says why", file=sys.stderr)
    return DAMAGED if summary.failures else 0
