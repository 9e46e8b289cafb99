"""The reading library: found and loaded when it is first needed.

Through ctypes a call takes 0.8 us, through a compiled binding 0.4 us: not enough to need a compiler
where the package is installed, or a wheel for each version of Python.
"""
from __future__ import annotations

import ctypes
import os
import sys
import sysconfig
from functools import cache
from pathlib import Path

from .errors import CorvantisError
from .interface import FILE_ERROR, FUNCTIONS, OTHER_RESULTS

SONAME = {"win32": "CorvantisReading.dll", "darwin": "libCorvantisReading.1.dylib",
          }.get(sys.platform, "libCorvantisReading.so.1")
VARIABLE = "CORVANTIS_READING_LIBRARY"


def _folders() -> list[Path]:
    """Where the package's own library may be: a wheel has it inside, an installation above, for
    instance in lib/ of lib/python3/dist-packages/corvantis."""
    package = Path(__file__).resolve().parent
    multiarch = sysconfig.get_config_var("MULTIARCH") or ""
    return [package] + [above / name for above in package.parents[1:4]
                        for name in ("lib", "lib64", f"lib/{multiarch}", "bin")]


def _path() -> str:
    """What the environment variable names, else the package's own library, else the system's."""
    own = (folder / SONAME for folder in _folders() if (folder / SONAME).exists())
    return os.environ.get(VARIABLE) or str(next(own, SONAME))


@cache
def library() -> ctypes.CDLL:
    """The library's functions, which let other threads of Python run during each call.

    Raises:
        CorvantisError: if there is no library.
    """
    path = _path()
    try:
        loaded = ctypes.CDLL(path)
        for name, arguments in FUNCTIONS.items():
            function = getattr(loaded, name)
            function.argtypes = arguments
            function.restype = OTHER_RESULTS.get(name, ctypes.c_int32)
    except (OSError, AttributeError) as error:
        raise CorvantisError(FILE_ERROR, path, f"no library: {error}; set {VARIABLE} to its path") \
            from error
    return loaded
