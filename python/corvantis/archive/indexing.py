"""Making a catalogue of the recordings below a folder, and keeping it up to date."""
from __future__ import annotations

import hashlib
import os
from collections.abc import Iterator
from dataclasses import dataclass
from typing import Any

import pyarrow as pa

from ..errors import CorvantisError
from ..interface import NOT_A_RECORDING
from ..recording import Recording
from .columns import epochs_schema
from .epoch_rows import epoch_rows
from .file_rows import file_row, unreadable
from .locations import FoundFile, Root
from .needs import require
from .store import Store
from .terminal import Progress
from .transport import to_bytes
from .work import Failure, Task, run

PIECE = 1 << 20         # of a file that is digested [bytes]
FOLD = 1000             # files after which pieces become parts


@dataclass(frozen=True)
class IndexSummary:
    """What a run has found.

    Attributes:
        files, epochs: in the catalogue now.
        read: files that were new or changed.
        unchanged: files of an earlier run.
        gone: files that the catalogue had and that are no longer there.
        damaged: files in the catalogue with faults or doubts, or that could not be read.
        others: files that are no recordings.
    """

    files: int
    epochs: int
    read: int
    unchanged: int
    gone: int
    damaged: int
    others: int


def _digest(source: Any) -> str:
    digest = hashlib.sha256()
    if isinstance(source, str):
        with open(source, "rb", buffering=0) as file:
            while piece := file.read(PIECE):
                digest.update(piece)
    else:
        source.seek(0)
        while piece := source.read(PIECE):
            digest.update(piece)
    return digest.hexdigest()


def _cause(error: BaseException) -> str:
    return f"{error} ({error.__cause__})" if error.__cause__ else str(error)


def read_file(name: str, found: FoundFile, digest: bool) -> bytes | None:
    """The rows of a file and its epochs, or None if it is no recording."""
    try:
        source = Root(name).source(found)
        with Recording(source) as recording:
            epochs = epoch_rows(recording, found.file)
            files = file_row(recording, found, _digest(source) if digest else None,
                             len(epochs) - epochs["problem"].null_count)
    except CorvantisError as error:
        if error.code == NOT_A_RECORDING:
            return None
        files, epochs = unreadable(found, _cause(error)), epochs_schema().empty_table()
    except OSError as error:
        files, epochs = unreadable(found, str(error)), epochs_schema().empty_table()
    return to_bytes(files, epochs)


def _key(found: FoundFile) -> str:
    return hashlib.sha256(repr(tuple(found)).encode("utf-8", "surrogatepass")).hexdigest()[:40]


def _known(store: Store, digest: bool) -> dict[str, tuple[Any, ...]]:
    """By what the files that need not be read again are known."""
    table = store.read_files(["file", "size", "modified", "tag", "sha256", "problem"])
    modified = table["modified"].cast(pa.int64())
    rows = zip(*(column.to_pylist() for column in table.set_column(2, "modified", modified)))
    return {file: (size, when, tag) if problem is None and (sha or not digest) else ()
            for file, size, when, tag, sha, problem in rows}


class _Indexing:
    """A run."""

    def __init__(self, root: Root, store: Store, digest: bool) -> None:
        found = list(root.files())      # before anything is written
        store.create(root.name)
        store.fold()
        known = _known(store, digest)
        self.changed = [each for each in found if known.get(each.file) != tuple(each)[1:]]
        self.gone = set(known) - {each.file for each in found}
        self.unchanged = len(found) - len(self.changed)
        self.read, self.others = 0, set[str]()
        self._root, self._store, self._digest = root, store, digest

    def tasks(self) -> Iterator[Task]:
        """Reading what is new or changed."""
        return (Task(found, (self._root.name, found, self._digest)) for found in self.changed)

    def take(self, found: FoundFile, result: Any) -> None:
        """Keep what was read of a file."""
        if result is None:
            self.others.add(found.file)
            return
        if isinstance(result, Failure):
            result = to_bytes(unreadable(found, result.problem), epochs_schema().empty_table())
        self._store.add(_key(found), result)
        self.read += 1
        if self.read % FOLD == 0:
            self._store.fold()

    def finish(self) -> IndexSummary:
        """Bring the catalogue into its final form."""
        self._store.fold(self.gone | self.others)
        files = self._store.read_files(["epochs", "isClean"])
        clean = files["isClean"].to_pylist()
        return IndexSummary(len(files), sum(filter(None, files["epochs"].to_pylist())), self.read,
                            self.unchanged, len(self.gone), len(clean) - clean.count(True),
                            len(self.others))


def index(root: str | os.PathLike[str], catalogue: str | os.PathLike[str], *,
          scheduler: str | None = None, processes: int | None = None, digest: bool = True,
          moved: bool = False, progress: bool = False) -> IndexSummary:
    """Make a catalogue of all recordings below a folder, or bring it up to date.

    Only files that are new or changed are read. What is done stays done if the run is ended.

    Args:
        root: a folder, or a URL that fsspec knows (`s3://...`, `http://...`).
        catalogue: the folder of the catalogue.
        scheduler: address of a Dask scheduler, whose workers see the same files.
        processes: on this machine; as many as processors without it.
        digest: with a SHA-256 of each file, for which it is read whole.
        moved: the catalogue's recordings were moved to this root as they were.
        progress: say on the terminal how far it is.

    Raises:
        ValueError: if the catalogue is of another root.
        OSError: if the root is not there, or the catalogue cannot be written.
    """
    require("archive")
    place, store = Root(os.fspath(root)), Store(catalogue)
    store.settle(place.name, moved)
    work = _Indexing(place, store, digest)
    say = Progress("index", len(work.changed), progress)
    for found, result in run(read_file, work.tasks(), scheduler=scheduler, processes=processes):
        work.take(found, result)
        say.one_more()
    say.end()
    return work.finish()
