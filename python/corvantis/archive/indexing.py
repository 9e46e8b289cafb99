"""Making a catalogue of the recordings below a folder, and keeping it up to date."""
from __future__ import annotations

import os
from dataclasses import dataclass


@dataclass(frozen=True)
class IndexSummary:
    """What a run has found.

    Attributes:
        files, epochs: in the catalogue now.
        read: files that were new or changed.
        unchanged: files of an earlier run.
        gone: files that the catalogue had and that are no longer there.
        damaged: files with faults, and those that could not be read.
        others: files that are no recordings.
    """

    files: int
    epochs: int
    read: int
    unchanged: int
    gone: int
    damaged: int
    others: int


def index(root: str | os.PathLike[str], catalogue: str | os.PathLike[str], *,
          scheduler: str | None = None, processes: int | None = None, digest: bool = True,
          progress: bool = False) -> IndexSummary:
    """Make a catalogue of all recordings below a folder, or bring it up to date.

    Only files that are new or changed are read. What is done stays done if the run is ended.

    Args:
        root: a folder, or a URL that fsspec knows (`s3://...`, `http://...`).
        catalogue: the folder of the catalogue.
        scheduler: address of a Dask scheduler, whose workers see the same files.
        processes: on this machine; as many as processors without it.
        digest: with a SHA-256 of each file, for which it is read whole.
        progress: say on the terminal how far it is.
    """
    raise NotImplementedError
