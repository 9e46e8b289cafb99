"""The shared library: found, loaded, guarded by one lock, and kept from printing.

The library holds a single file and a single current epoch, so whoever calls it does so within
`guarded()`. Its progress lines go to C's standard output; within `guarded()` that name stands for
the null device, which leaves file descriptor 1, and with it all that Python prints, alone.
"""
from __future__ import annotations

import ctypes
import os
import shutil
import sysconfig
import tempfile
import threading
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path
from typing import Any

from .errors import CorvantisError

SONAME = "libCorvantis.so.1"
DRIVER = "libITC18.so.1"
VARIABLE = "CORVANTIS_LIBRARY"

lock = threading.RLock()
_loaded: Library | None = None


def _open_shared(folder: Path) -> ctypes.CDLL:
    """The library in a folder. Its driver is loaded first, so that the loader need not look."""
    driver = folder / DRIVER
    if driver.exists():
        ctypes.CDLL(str(driver))
    return ctypes.CDLL(str(folder / SONAME))


def _folders() -> list[Path]:
    """Where the package's own library may be: a wheel has it inside, an installation above, for
    instance in lib/ of lib/python3/dist-packages/corvantis."""
    package = Path(__file__).resolve().parent
    multiarch = sysconfig.get_config_var("MULTIARCH") or ""
    return [package] + [above / name for above in package.parents[1:4]
                        for name in ("lib", "lib64", f"lib/{multiarch}")]


def find_library() -> ctypes.CDLL:
    """Load what CORVANTIS_LIBRARY names, else the package's own library, else the system's."""
    named = os.environ.get(VARIABLE)
    try:
        if named:
            return ctypes.CDLL(named)
        own = next((folder for folder in _folders() if (folder / SONAME).exists()), None)
        return _open_shared(own) if own else ctypes.CDLL(SONAME)
    except OSError as error:
        raise CorvantisError(1, named, f"no library: {error}; set {VARIABLE} to its path") \
            from error


def _standard_output(libc: ctypes.CDLL) -> ctypes.c_void_p:
    """C's variable of that name, which has another one on the Mac."""
    try:
        return ctypes.c_void_p.in_dll(libc, "stdout")
    except ValueError:
        return ctypes.c_void_p.in_dll(libc, "__stdoutp")


class Place(ctypes.Structure):
    """Where a function is loaded: the dynamic loader's answer."""

    _fields_ = [("file", ctypes.c_char_p), ("base", ctypes.c_void_p),
                ("name", ctypes.c_char_p), ("address", ctypes.c_void_p)]


class Library:
    """The library's functions (`functions`), the variables that we use, and its streams."""

    def __init__(self, functions: ctypes.CDLL, copied: Library | None = None) -> None:
        self.functions = functions
        self._libc = libc = ctypes.CDLL(None)
        self._file = ctypes.c_void_p.in_dll(self.functions, "ITCOpenFilePtr")
        self._stdout = _standard_output(libc)
        self._tell = getattr(libc, "ftello64", libc.ftello)
        self._tell.restype = ctypes.c_int64
        self._seek = getattr(libc, "fseeko64", libc.fseeko)
        self._read_floats = self.functions.ReadArray_float
        self._read_header = self.functions.Read_ITCEpochHeader
        self._read_floats.restype = self._read_header.restype = ctypes.c_bool
        libc.fopen.restype = ctypes.c_void_p
        self._null: ctypes.c_void_p = copied._null if copied else \
            ctypes.c_void_p(libc.fopen(os.fsencode(os.devnull), b"w"))
        self.is_copy = copied is not None
        self.path: str = copied.path if copied else self._find_path()
        self.random, self.seed_random = libc.rand, libc.srand

    def _find_path(self) -> str:
        """The file that the loader took the library from."""
        place = Place()
        self._libc.dladdr(ctypes.cast(self.functions.ITCCloseFile, ctypes.c_void_p),
                          ctypes.byref(place))
        return os.path.abspath(os.fsdecode(place.file))

    def unload(self) -> None:
        """Take the library out of memory; nothing of it may be called any more."""
        self._libc.dlclose(ctypes.c_void_p(self.functions._handle))

    def pointer(self, name: str) -> int:
        """The value of one of the library's exported pointers."""
        return ctypes.c_void_p.in_dll(self.functions, name).value or 0

    def tell(self) -> int:
        """Position in the open data file [bytes]."""
        return int(self._tell(self._file))

    def seek(self, position: int) -> None:
        """Go to a position of the open data file [bytes]."""
        self._seek(self._file, ctypes.c_int64(position), os.SEEK_SET)

    def descriptor(self) -> int:
        """Descriptor of the open data file."""
        return int(self._libc.fileno(self._file))

    def read_floats(self, values: ctypes.c_void_p, count: int) -> bool:
        """Read an array from the open data file's position."""
        return bool(self._read_floats(self._file, values, count))

    def read_epoch_header(self, version: int) -> bool:
        """Read the current epoch header from the open data file's position."""
        header = ctypes.c_void_p(self.pointer("epochhdr"))
        return bool(self._read_header(self._file, header, version))

    def output(self) -> int | None:
        """What C's standard output is."""
        return self._stdout.value

    def silence(self) -> None:
        """Point C's standard output at the null device."""
        self._stdout.value = self._null.value

    def restore(self, before: int | None) -> None:
        """Undo `silence`, but for one within another, which an interruption can leave to be undone
        behind that."""
        if before != self._null.value:
            self._stdout.value = before

    @staticmethod
    def check(result: int, filename: str | None, detail: str = "") -> None:
        """Raise what stands for a result code other than success."""
        if result != 0:
            raise CorvantisError(result, filename, detail)

    def __getattr__(self, name: str) -> Any:
        """An exported function that returns a result code."""
        return getattr(self.functions, name)


@contextmanager
def guarded() -> Iterator[Library]:
    """The library, for this thread alone and silent."""
    global _loaded
    with lock:
        library = _loaded = _loaded or Library(find_library())
        before = library.output()
        try:
            library.silence()
            yield library
        finally:
            library.restore(before)


def exchange() -> None:
    """From now on use another copy of the library, in the state in which it is loaded.

    The loader takes another file for another library. What the used one holds must have been given
    back.
    """
    global _loaded
    with guarded() as used:
        descriptor, copy = tempfile.mkstemp()
        try:
            os.close(descriptor)
            shutil.copyfile(used.path, copy)
            _loaded = Library(ctypes.CDLL(copy), used)
        finally:
            os.unlink(copy)
        if used.is_copy:
            used.unload()
