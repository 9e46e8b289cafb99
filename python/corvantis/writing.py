"""Files that appear whole or not at all."""
from __future__ import annotations

import os
import platform
import uuid
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path

SUFFIX = ".part"


def _prefix() -> str:
    """What the names of this machine begin with; a process's number follows."""
    machine = "".join(each if each.isalnum() else "-" for each in platform.node())
    return f".corvantis-{machine}-"


@contextmanager
def replacing(path: str | os.PathLike[str]) -> Iterator[str]:
    """A name beside the path, for a file that takes its place when the block ends well.

    A process that is killed leaves the file behind, until `remove_left` comes there.
    """
    name = Path(path).absolute().with_name(f"{_prefix()}{os.getpid()}-{uuid.uuid4().hex}{SUFFIX}")
    try:
        yield str(name)
        os.replace(name, path)
    finally:
        name.unlink(missing_ok=True)


def write_whole(path: str | os.PathLike[str], content: bytes) -> None:
    """Write a file that has its name only when it is complete."""
    with replacing(path) as name:
        Path(name).write_bytes(content)


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


def remove_left(folder: str | os.PathLike[str]) -> None:
    """Remove what killed processes of this machine have left in a folder."""
    for left in Path(folder).glob(f"{_prefix()}*{SUFFIX}"):
        process = left.name.removeprefix(_prefix()).split("-")[0]
        if process.isdecimal() and not _is_running(int(process)):
            left.unlink(missing_ok=True)
