"""`corvantis index`: a catalogue of the recordings below a folder."""
from __future__ import annotations

import argparse
import sys
from collections.abc import Sequence
from typing import TYPE_CHECKING

from .archive_options import add_options
from .commands import DAMAGED, UNUSABLE

if TYPE_CHECKING:
    from .archive import IndexSummary

SHOWN = 20      # files with findings that are named


def _arguments() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="corvantis index",
        description="Make a catalogue of all recordings below a folder, or bring it up to date: "
        "Parquet with a row an epoch and a row a file. Only files that are new or changed are "
        "read; what is done stays done if this is ended. Exit status: 0 all files are clean, 1 "
        "some have findings or cannot be read, 2 there is no catalogue.")
    parser.add_argument("root", metavar="FOLDER", help="folder, or URL that fsspec knows")
    parser.add_argument("-o", "--output", metavar="CATALOGUE", required=True,
                        help="folder of the catalogue")
    parser.add_argument("--no-digest", action="store_true",
                        help="without a SHA-256 of each file, for which it is read whole")
    parser.add_argument("--moved", action="store_true",
                        help="the recordings were moved here as they were")
    add_options(parser)
    parser.add_argument("--quiet", action="store_true", help="no progress, no table")
    return parser


def _say(summary: IndexSummary, catalogue: str) -> None:
    from .archive import open as open_catalogue
    rows = open_catalogue(catalogue).query(
        "SELECT file, epochs, damagedEpochs, len(findings), coalesce(problem, findings[1].place || "
        "': found ' || findings[1].found || ', expected ' || findings[1].expected) FROM files "
        f"WHERE NOT isClean ORDER BY file LIMIT {SHOWN}").fetchall()
    for file, epochs, damaged, findings, text in rows:
        counts = "cannot be read" if findings is None else \
            f"{epochs} epochs, {damaged} damaged, {findings} findings"
        print(f"{file}: {counts}: {text}")
    if summary.damaged > len(rows):
        print(f"and {summary.damaged - len(rows)} more")
    print(f"{summary.files} files with {summary.epochs} epochs: {summary.read} read, "
          f"{summary.unchanged} unchanged, {summary.gone} gone, {summary.damaged} with findings, "
          f"{summary.others} no recordings")


def index(arguments: Sequence[str] | None = None) -> int:
    """Run the command."""
    options = _arguments().parse_args(arguments)
    try:
        from .archive import index as make
        summary = make(options.root, options.output, scheduler=options.scheduler,
                       processes=options.processes, digest=not options.no_digest,
                       moved=options.moved, progress=not options.quiet)
        if not options.quiet:
            _say(summary, options.output)
    except (ImportError, OSError, ValueError) as error:
        print(f"corvantis index: {error}", file=sys.stderr)
        return UNUSABLE
    except KeyboardInterrupt:
        print("corvantis index: ended; what was read is kept", file=sys.stderr)
        return 130
    return DAMAGED if summary.damaged else 0
