"""A catalogue on disk, which any number of programs may add to at once.

    catalogue/
      manifest.json     the root, and the parts that count; replaced as a whole
      parts/            NAME-files.parquet and NAME-epochs.parquet; never changed once written
      pieces/           a file for each recording that was read but is in no part yet
      lock              held by whoever replaces the manifest

A piece is there whole or not at all, so a program that is killed loses the recording that it was
reading; whoever comes next folds the pieces into parts. Parts that were replaced stay until the
manifest is replaced again, for those who are still reading them.
"""
from __future__ import annotations

import contextlib
import json
import os
import uuid
from collections.abc import Collection, Iterator
from pathlib import Path
from typing import Any, NamedTuple

import pyarrow as pa
import pyarrow.compute as pc
import pyarrow.parquet as pq

from ..writing import remove_left, write_whole
from .columns import epochs_schema, files_schema
from .transport import from_bytes

FORMAT = 1
FULL = 250_000          # epochs of a part that is not added to any more
GROUP = 1 << 15         # rows of a row group
TABLES = "files", "epochs"


class Manifest(NamedTuple):
    """What counts of a catalogue."""

    root: str
    parts: dict[str, int]       # epochs of each
    retired: list[str]


class _Writer:
    """Writes tables into parts, file after file."""

    def __init__(self, folder: Path) -> None:
        self.parts: dict[str, int] = {}
        self._folder = folder
        self._waiting: dict[str, list[pa.Table]] = {name: [] for name in TABLES}
        self._open: dict[str, pq.ParquetWriter] = {}
        self._name = ""

    def add(self, tables: dict[str, pa.Table]) -> None:
        for name, table in tables.items():
            self._waiting[name].append(table)
        if sum(map(len, self._waiting["epochs"])) >= GROUP:
            self._flush()

    def end_of_file(self) -> None:
        """What follows is of other recordings: those of one must be in one part."""
        if self._open and self.parts[self._name] >= FULL:
            self.close()

    def _flush(self) -> None:
        if not self._open:
            self._name = uuid.uuid4().hex
            self.parts[self._name] = 0
            self._open = {name: pq.ParquetWriter(self._folder / f"{self._name}-{name}.parquet",
                                                 schema, compression="zstd", compression_level=1)
                          for name, schema in zip(TABLES, (files_schema(), epochs_schema()))}
        for name, waiting in self._waiting.items():
            rows = sum(map(len, waiting))
            if rows:
                self._open[name].write_table(pa.concat_tables(waiting), row_group_size=GROUP)
            waiting.clear()
            self.parts[self._name] += rows if name == "epochs" else 0

    def close(self) -> None:
        if any(map(len, self._waiting["files"])) or any(map(len, self._waiting["epochs"])):
            self._flush()
        for writer in self._open.values():
            writer.close()
        self._open = {}


def _lock(file: Any) -> None:
    try:
        import fcntl
    except ImportError:         # Windows has another way
        import msvcrt
        msvcrt.locking(file.fileno(), msvcrt.LK_LOCK, 1)    # type: ignore[attr-defined]
    else:
        fcntl.flock(file, fcntl.LOCK_EX)


class Store:
    """A catalogue's folder."""

    def __init__(self, folder: str | os.PathLike[str]) -> None:
        self.folder = Path(folder)
        self._parts, self._pieces = self.folder / "parts", self.folder / "pieces"
        self._manifest = self.folder / "manifest.json"

    def manifest(self) -> Manifest:
        """What counts now.

        Raises:
            FileNotFoundError: if this is no catalogue.
            ValueError: if it is one of a newer version, or damaged.
        """
        try:
            told = json.loads(self._manifest.read_bytes())
        except (FileNotFoundError, NotADirectoryError):
            raise FileNotFoundError(f"{self.folder}: no catalogue") from None
        if told.get("format") != FORMAT:
            raise ValueError(f"{self.folder}: a catalogue of format {told.get('format')}, "
                             f"expected {FORMAT}")
        return Manifest(told["root"], told["parts"], told["retired"])

    def create(self, root: str) -> None:
        """Make an empty catalogue, unless there is one."""
        for each in (self._parts, self._pieces):
            each.mkdir(parents=True, exist_ok=True)
        with self._locked():
            if not self._manifest.exists():
                self._replace(Manifest(root, {}, []))

    def settle(self, root: str, moved: bool) -> None:
        """Hold a catalogue, if there is one, to its root, or say that its files were moved here.

        Raises:
            ValueError: if it is of another root.
        """
        if not self._manifest.exists():
            return
        with self._locked():
            manifest = self.manifest()
            if manifest.root != root and not moved:
                raise ValueError(f"{self.folder}: a catalogue of {manifest.root}, not of {root}; "
                                 "name another, or say that the files were moved")
            if manifest.root != root:
                self._replace(manifest._replace(root=root))

    def files_of(self, manifest: Manifest, table: str) -> list[str]:
        """The Parquet files of one of the tables."""
        return [str(self._part(name, table)) for name in manifest.parts]

    def read_files(self, columns: list[str] | None = None) -> pa.Table:
        """The table of files."""
        empty = files_schema().empty_table()
        tables = [pq.read_table(path, columns=columns)
                  for path in self.files_of(self.manifest(), "files")]
        return pa.concat_tables([empty.select(columns) if columns else empty, *tables])

    def add(self, key: str, data: bytes) -> None:
        """Keep what was read of a recording: its row and those of its epochs."""
        write_whole(self._pieces / f"{key}.arrow", data)

    def fold(self, gone: Collection[str] = ()) -> None:
        """Take all pieces into parts, and these files out."""
        with self._locked():
            remove_left(self._pieces)
            before = self.manifest()
            pieces = sorted(self._pieces.glob("*.arrow"), key=lambda path: path.stat().st_mtime_ns)
            if pieces or gone:
                self._fold(before, pieces, set(gone))
            self._clean(self.manifest())

    def fold_if_possible(self) -> None:
        """As `fold`, unless there is nothing to be done, or the catalogue cannot be written."""
        with contextlib.suppress(OSError):
            if next(self._pieces.glob("*.arrow"), None) is not None:
                self.fold()

    def _fold(self, before: Manifest, pieces: list[Path], gone: set[str]) -> None:
        newest = {}
        for piece in pieces:
            with contextlib.suppress(pa.ArrowInvalid, OSError):
                newest[_file_of(piece)] = piece
        out = gone | set(newest)
        kept, touched = {}, []
        for name, epochs in before.parts.items():
            if epochs < FULL or not out.isdisjoint(self._names(name)):
                touched.append(name)
            else:
                kept[name] = epochs
        writer = _Writer(self._parts)
        for name in touched:
            for tables in self._without(name, out):
                writer.add(tables)
            writer.end_of_file()
        for _, piece in sorted(newest.items()):
            with contextlib.suppress(pa.ArrowInvalid, OSError):     # read anew the next time
                writer.add(dict(zip(TABLES, _tables(piece))))
            writer.end_of_file()
        writer.close()
        self._replace(Manifest(before.root, {**kept, **writer.parts}, touched))
        for piece in pieces:
            piece.unlink(missing_ok=True)

    def _names(self, part: str) -> list[str]:
        names: list[str] = pq.read_table(self._part(part, "files"),
                                         columns=["file"])["file"].to_pylist()
        return names

    def _without(self, part: str, out: set[str]) -> Iterator[dict[str, pa.Table]]:
        """A part's rows, but for those of some files."""
        leave = pa.array(sorted(out), pa.string())
        schemas = {"files": files_schema(), "epochs": epochs_schema()}
        for name in TABLES:
            file = pq.ParquetFile(self._part(part, name))
            for group in range(file.num_row_groups):
                table = file.read_row_group(group)
                rows = table.filter(pc.invert(pc.is_in(table["file"], leave)))
                yield {each: rows if each == name else schema.empty_table()
                       for each, schema in schemas.items()}

    def _part(self, name: str, table: str) -> Path:
        return self._parts / f"{name}-{table}.parquet"

    def _replace(self, manifest: Manifest) -> None:
        write_whole(self._manifest, json.dumps({"format": FORMAT, **manifest._asdict()},
                                               indent=1).encode())

    def _clean(self, manifest: Manifest) -> None:
        """Remove parts that nobody needs, also those of a program that was killed."""
        needed = {*manifest.parts, *manifest.retired}
        for path in self._parts.glob("*.parquet"):
            if path.name.rsplit("-", 1)[0] not in needed:
                path.unlink(missing_ok=True)

    @contextlib.contextmanager
    def _locked(self) -> Iterator[None]:
        with open(self.folder / "lock", "a+b") as file:
            _lock(file)
            yield


def _tables(piece: Path) -> list[pa.Table]:
    with pa.memory_map(str(piece)) as source:
        return from_bytes(source.read_buffer(), len(TABLES))


def _file_of(piece: Path) -> str:
    """Of which file a piece is."""
    with pa.memory_map(str(piece)) as source:
        return str(from_bytes(source.read_buffer())[0]["file"][0])
