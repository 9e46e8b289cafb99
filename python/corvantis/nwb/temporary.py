"""Files that appear whole or not at all."""
from __future__ import annotations

import os
import tempfile
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path

PREFIX, SUFFIX = ".corvantis-", ".part"


@contextmanager
def replacing(path: str | Path) -> Iterator[str]:
    """A name beside the path, for a file that takes its place when the block ends well.

    A process that is killed leaves the name behind, with its number in it; `remove_left` removes
    it.
    """
    folder = Path(path).absolute().parent
    descriptor, name = tempfile.mkstemp(SUFFIX, f"{PREFIX}{os.getpid()}-", folder)
    os.close(descriptor)
    try:
        yield name
        umask = os.umask(0)
        os.umask(umask)
        os.chmod(name, 0o666 & ~umask)
        os.replace(name, path)
    except BaseException:
        os.unlink(name)
        raise


def _is_running(process: int) -> bool:
    try:
        os.kill(process, 0)
    except ProcessLookupError:
        return False
    except OSError:
        return True
    return True


def remove_left(folder: str | Path) -> None:
    """Remove what killed processes of this machine have left in a folder."""
    for name in Path(folder).glob(f"{PREFIX}*-*{SUFFIX}"):
        process = name.name.removeprefix(PREFIX).split("-")[0]
        if process.isdecimal() and not _is_running(int(process)):
            name.unlink(missing_ok=True)
