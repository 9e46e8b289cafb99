"""`corvantis nwb`: its arguments, and what it says."""
from __future__ import annotations

import argparse
import os
import shlex
import sys
from collections.abc import Sequence
from pathlib import Path

from ..progress import progress
from .documents import Document
from .folder import EQUAL, FAILED, THERE, WRITTEN, Order, Outcome, Search, jobs_of, run
from .metadata import Metadata, metadata_of
from .template import template

MOST_WARNINGS = 5   # that are shown of a file


def describe(arguments: Sequence[str]) -> argparse.Namespace:
    """The arguments of the command."""
    parser = argparse.ArgumentParser(
        prog="corvantis nwb", description="Write recordings as NWB files, in the folders and with "
        "the names that DANDI wants. Files that are there already are left as they are.",
        epilog="Ends with 0 if all is well, 1 if damaged epochs were left out, 2 if a file failed.")
    parser.add_argument("files", nargs="*", metavar="FILE", help="recording, or a folder of them")
    parser.add_argument("-o", "--output", metavar="FOLDER", help="where the NWB files go")
    parser.add_argument("-m", "--metadata", metavar="LAB.yaml",
                        help="what the recordings do not say, as YAML or JSON")
    parser.add_argument("-e", "--epochs", metavar="0,3-7", help="epochs, counted from 0 (all)")
    parser.add_argument("-j", "--jobs", type=int, default=os.cpu_count() or 1, metavar="N",
                        help="files at a time (as many as there are processors)")
    parser.add_argument("--verify", action="store_true",
                        help="write nothing; hold the files that are there against the recordings")
    parser.add_argument("--no-verify", action="store_true",
                        help="do not hold each new file against its recording")
    parser.add_argument("--force", action="store_true",
                        help="replace files that were made otherwise")
    parser.add_argument("--template", action="store_true",
                        help="print a metadata file to fill in")
    options = parser.parse_args(arguments)
    options.command = f"corvantis nwb {shlex.join(arguments)}"
    if options.jobs < 1:
        parser.error("--jobs needs at least 1")
    if not options.template and not (options.files and options.output):
        parser.error("needs a FILE and -o FOLDER")
    return options


def _metadata(path: str | None) -> Metadata:
    if path is not None:
        return metadata_of(path)
    return Metadata(Document("no metadata (--metadata LAB.yaml; --template writes one)", {}))


def _say(text: str) -> None:
    print(f"corvantis nwb: {text}", file=sys.stderr)


def _show(outcome: Outcome) -> None:
    """Say at once what a person should know of a file."""
    for text in outcome.warnings[:MOST_WARNINGS]:
        _say(f"{outcome.recording}: {text}")
    if (more := len(outcome.warnings) - MOST_WARNINGS) > 0:
        _say(f"{outcome.recording}: and {more} more warnings")


def _row(outcome: Outcome, folder: Path) -> tuple[str, ...]:
    counted = outcome.state in (WRITTEN, EQUAL)
    result = f"{outcome.state}: {outcome.reason}" if outcome.reason else outcome.state
    goal = outcome.goal
    if goal is not None and outcome.state != FAILED:
        result += f": {os.path.relpath(goal, folder)}"
    return (str(outcome.recording), str(outcome.epochs) if counted else "-",
            str(len(outcome.warnings)) if outcome.state == WRITTEN else "-", result)


def table(outcomes: Sequence[Outcome], folder: Path) -> str:
    """A line for each recording, and the sums."""
    rows = [("recording", "epochs", "warnings", "result"),
            *(_row(each, folder) for each in outcomes)]
    width = max(len(row[0]) for row in rows)
    lines = [f"{name:<{width}}  {epochs:>6}  {warnings:>8}  {result}"
             for name, epochs, warnings, result in rows]
    states = [each.state for each in outcomes]
    counts = [f"{states.count(state)} {state}" for state in (WRITTEN, THERE, EQUAL, FAILED)
              if state in states]
    epochs = sum(each.epochs for each in outcomes)
    warned = sum(len(each.warnings) for each in outcomes)
    lines.append(f"files: {len(outcomes)} ({', '.join(counts) or 'none'}), epochs: {epochs}, "
                 f"warnings: {warned}")
    return "\n".join(lines)


def work(options: argparse.Namespace) -> None:
    """What the command does; `options.damaged` and `options.failed` say how it went.

    Raises:
        MetadataError: if the metadata are wrong.
    """
    if options.template:
        print(template(), end="")
        return
    folder = Path(options.output)
    order = Order(folder, _metadata(options.metadata), options.epochs, options.verify,
                  not options.no_verify, options.force, options.command)
    search = Search()
    for each in options.files:
        search.add(Path(each))
    jobs, outcomes = jobs_of(dict.fromkeys(search.found), order)
    for outcome in progress(run(jobs, options.jobs), "nwb", "file", len(jobs)):
        _show(outcome)
        outcomes.append(outcome)
    places = {path: index for index, path in enumerate(search.found)}
    print(table(sorted(outcomes, key=lambda each: places[each.recording]), folder))
    if search.others:
        _say(f"{search.others} files are no recordings")
    options.damaged = any(each.damaged for each in outcomes)
    options.failed = any(each.state == FAILED for each in outcomes)
