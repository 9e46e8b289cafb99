"""Where an archive's files are: a folder, or what a URL names, by way of fsspec."""
from __future__ import annotations

import io
import os
import time
from collections import OrderedDict
from collections.abc import Iterator
from datetime import datetime, timezone
from pathlib import Path
from typing import Any, BinaryIO, NamedTuple, cast

import fsspec

BLOCK, BLOCKS = 1 << 14, 16     # small reads take whole blocks, of which so many are kept [bytes]
ATTEMPTS, PAUSE = 4, 0.25       # a lost connection: tries, and the first pause, then doubled [s]
SECOND = 10 ** 9


class FoundFile(NamedTuple):
    """A file below the root.

    Attributes:
        file: from the root, with "/".
        size: [bytes].
        modified: time of modification [ns], or None where nobody tells it.
        tag: what a server calls this version, or empty.
    """

    file: str
    size: int
    modified: int | None
    tag: str

    def may_be(self, other: FoundFile) -> bool:
        """Whether nothing that is known of both speaks against their being the same; they may be
        reached in different ways, which tell different things."""
        return (self.size == other.size
                and (None in (self.modified, other.modified) or self.modified == other.modified)
                and ("" in (self.tag, other.tag) or self.tag == other.tag))


class Ranges(io.RawIOBase):
    """A remote file of which only what is read is fetched.

    A connection that fails is tried again a few times; then an OSError names the file, the bytes
    and what happened.
    """

    def __init__(self, system: Any, path: str, size: int) -> None:
        super().__init__()
        self.name = system.unstrip_protocol(path)
        self.fetched = 0
        self._system, self._path, self._size = system, path, size
        self._place = 0
        self._blocks: OrderedDict[int, bytes] = OrderedDict()

    def readable(self) -> bool:
        return True

    def seekable(self) -> bool:
        return True

    def seek(self, offset: int, whence: int = os.SEEK_SET) -> int:
        self._place = offset + {os.SEEK_SET: 0, os.SEEK_CUR: self._place,
                                os.SEEK_END: self._size}[whence]
        return self._place

    def read(self, size: int = -1) -> bytes:
        begin = min(self._place, self._size)
        end = self._size if size < 0 else min(begin + size, self._size)
        self._place = end
        if end - begin > BLOCK:
            return self._fetch(begin, end)
        blocks = range(begin // BLOCK, -(-end // BLOCK))
        return b"".join(map(self._block, blocks))[begin % BLOCK:begin % BLOCK + end - begin]

    def _block(self, number: int) -> bytes:
        if number not in self._blocks:
            start = number * BLOCK
            self._blocks[number] = self._fetch(start, min(start + BLOCK, self._size))
            if len(self._blocks) > BLOCKS:
                self._blocks.popitem(last=False)
        self._blocks.move_to_end(number)
        return self._blocks[number]

    def _fetch(self, start: int, end: int) -> bytes:
        return cast(bytes, _persistently(lambda: self._attempt(start, end),
                                         f"{self.name}: bytes {start} to {end}"))

    def _attempt(self, start: int, end: int) -> bytes:
        data: bytes = self._system.cat_file(self._path, start=start, end=end)
        self.fetched += len(data)
        if len(data) != end - start:
            raise OSError(f"{len(data)} bytes came instead of {end - start}: the server does not "
                          "give ranges, or the file was changed")
        return data


def _persistently(attempt: Any, what: str) -> Any:
    """The attempt's result; a lost connection is tried again.

    Raises:
        OSError: after the last attempt; FileNotFoundError and PermissionError at once.
    """
    for number in range(ATTEMPTS):
        try:
            return attempt()
        except (FileNotFoundError, PermissionError):
            raise
        except Exception as error:      # each file system has its own kinds
            last = error
        if number + 1 < ATTEMPTS:
            time.sleep(PAUSE * 2 ** number)
    reason = f"{type(last).__name__} {last}".strip()
    raise OSError(f"{what}: tried {ATTEMPTS} times: {reason}") from last


def _modified(info: dict[str, Any]) -> int | None:
    when = info.get("LastModified") or info.get("mtime")
    if isinstance(when, datetime):
        return int(when.astimezone(timezone.utc).timestamp()) * SECOND
    return int(when * SECOND) if isinstance(when, (int, float)) else None


class Root:
    """The folder or URL that an archive's files are below.

    Attributes:
        name: as it was given; a folder's whole path.
    """

    def __init__(self, name: str) -> None:
        self._system: Any
        self._system, self._path = fsspec.core.url_to_fs(name)
        self.is_local = "file" in (self._system.protocol if isinstance(self._system.protocol, tuple)
                                   else (self._system.protocol,))
        self.name = self._path if self.is_local else name.rstrip("/")

    def files(self) -> Iterator[FoundFile]:
        """All files, by name; hidden ones and folders behind links are left out.

        Raises:
            OSError: if there is no such folder, or its connection is lost.
        """
        return iter(sorted(self._local() if self.is_local else self._remote()))

    def _local(self) -> Iterator[FoundFile]:
        if not os.path.isdir(self._path):
            raise FileNotFoundError(f"{self._path}: no such folder")

        def refuse(error: OSError) -> None:
            raise error
        for folder, folders, names in os.walk(self._path, onerror=refuse):
            folders[:] = [each for each in folders if not each.startswith(".")]
            for name in names:
                path = os.path.join(folder, name)
                if name.startswith(".") or not os.path.isfile(path):
                    continue
                state = os.stat(path)
                yield FoundFile(Path(path).relative_to(self._path).as_posix(), state.st_size,
                                state.st_mtime_ns, "")

    def _remote(self) -> Iterator[FoundFile]:
        self._system.invalidate_cache()
        found = _persistently(lambda: self._system.find(self._path), self.name)
        base = self._path.rstrip("/") + "/"
        for path in found:
            file = path[len(base):] if path.startswith(base) else path.rsplit("/", 1)[-1]
            if not any(part.startswith(".") for part in file.split("/")):
                yield self.find(file)

    def _where(self, file: str) -> str:
        if file.startswith("/") or ".." in file.split("/"):
            raise ValueError(f"{file}: not below the root")
        return f"{self._path.rstrip('/')}/{file}"

    def find(self, file: str) -> FoundFile:
        """A file as it is now.

        Raises:
            OSError: if it is not there.
        """
        path = self._where(file)
        if self.is_local:
            state = os.stat(path)
            return FoundFile(file, state.st_size, state.st_mtime_ns, "")
        info = _persistently(lambda: self._system.info(path), self._system.unstrip_protocol(path))
        tag = str(info.get("ETag") or "").strip('"')
        return FoundFile(file, int(info["size"] or 0), _modified(info), tag)

    def source(self, found: FoundFile) -> str | BinaryIO:
        """What a recording is opened from: a path, or what reads a remote file by ranges."""
        path = self._where(found.file)
        return path if self.is_local else cast(BinaryIO, Ranges(self._system, path, found.size))


def open_ranges(url: str) -> str | BinaryIO:
    """What a recording is opened from that a path or URL names."""
    folder, _, file = url.rpartition("/")
    if "://" not in url:
        return url
    root = Root(folder)
    return root.source(root.find(file))
