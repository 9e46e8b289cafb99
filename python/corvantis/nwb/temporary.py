"""Files that appear whole or not at all."""
from __future__ import annotations

import os
import platform
import tempfile
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path

SUFFIX = ".part"


def _prefix() -> str:
    """What the names of this machine begin with; a process's number follows."""
    machine = "".join(each if each.isalnum() else "-" for each in platform.node())
    return f".corvantis-{machine}-"


@contextmanager
def replacing(path: str | Path) -> Iterator[str]:
    """A name beside the path, for a file that takes its place when the block ends well.

    A process that is killed leaves the file behind, until `remove_left` comes there.
    """
    folder = Path(path).absolute().parent
    descriptor, name = tempfile.mkstemp(SUFFIX, f"{_prefix()}{os.getpid()}-", folder)
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
    """Whether there is such a process, and not only its number that nobody has asked for yet."""
    if os.name == "nt":     # where the question would end it
        return True
    try:
        os.kill(process, 0)
        state = Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0]
    except ProcessLookupError:
        return False
    except OSError:
        return True
    return state not in "ZX"


def remove_left(folder: str | Path) -> None:
    """Remove what killed processes of this machine have left in a folder."""
    for left in Path(folder).glob(f"{_prefix()}*{SUFFIX}"):
        process = left.name.removeprefix(_prefix()).split("-")[0]
        if process.isdecimal() and not _is_running(int(process)):
            left.unlink(missing_ok=True)
