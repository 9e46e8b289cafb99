"""Files that have their name only when they are complete."""
from __future__ import annotations

import contextlib
import os


def write_whole(path: str, content: bytes) -> None:
    """Write a file that has its name only when it is complete."""
    unfinished = f"{path}.{os.getpid()}.tmp"
    try:
        with open(unfinished, "xb") as stream:
            stream.write(content)
        os.replace(unfinished, path)
    finally:
        with contextlib.suppress(FileNotFoundError):
            os.unlink(unfinished)
