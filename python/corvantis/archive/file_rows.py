"""A recording's file as a row of the catalogue."""
from __future__ import annotations

import ctypes
from typing import Any

import pyarrow as pa

from ..interface import FILE_HEADER, RecordingInfo, Weight
from ..recording import Finding, Recording
from ..records import fields_of
from .columns import files_schema
from .locations import FoundFile

FOUND = "table", "walk"


def _finding(finding: Finding) -> dict[str, Any]:
    return {**vars(finding), "weight": finding.weight.name.lower()}


def recording_info(recording: Recording) -> RecordingInfo:
    """What the library knows of a recording as a whole."""
    info, handle = RecordingInfo(), recording.handle
    handle.ask(handle.library.CorvantisInfo, ctypes.addressof(info))
    return info


def _row(found: FoundFile, /, **others: Any) -> pa.Table:
    row = dict.fromkeys(files_schema().names)
    row |= {"file": found.file, "size": found.size, "modified": found.modified, "tag": found.tag}
    return pa.Table.from_pylist([row | others], files_schema())


def unreadable(found: FoundFile, problem: str) -> pa.Table:
    """The row of a file that cannot be read, and why."""
    return _row(found, isClean=False, problem=problem)


def file_row(recording: Recording, found: FoundFile, digest: str | None,
             damaged: int) -> pa.Table:
    """The row of a recording, which is checked for it.

    Args:
        digest: SHA-256 of its bytes, or None.
        damaged: how many of its epochs are.

    Raises:
        CorvantisError: if the file cannot be read to its end.
    """
    info, findings = recording_info(recording), recording.findings
    header = {name: getattr(recording.header, name) for name in fields_of(FILE_HEADER)}
    return _row(found, **header, sha256=digest, epochs=info.epochs, damagedEpochs=damaged,
                found=FOUND[info.found], tablePosition=info.tablePosition, digest=info.digest,
                isClean=all(each.weight == Weight.NOTE for each in findings),
                findings=[_finding(each) for each in findings])
