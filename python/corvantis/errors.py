"""The one exception of the package: a result code, what it means and which file it is about."""
from __future__ import annotations

import os
from typing import Union

PathLike = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]

STIMULUS_ERROR = 2
BAD_ARGUMENT = 6
FILE_ERROR = 7

MEANINGS = {
    1: "the library cannot be started",
    2: "the stimulus is missing, wrong or cannot be computed",
    4: "the epoch is larger than the sample buffers",
    5: "out of memory",
    6: "bad argument",
    7: "the file or the epoch cannot be read",
    9: "the file was written by a newer version of Corvantis",
}


class CorvantisError(Exception):
    """A result code of the library other than success.

    Attributes:
        code: the result code, as in the C interface.
        meaning: what the code stands for.
        filename: the data file, or None where no file is concerned.
    """

    def __init__(self, code: int, filename: str | None = None, detail: str = "") -> None:
        self.code = code
        self.meaning = MEANINGS.get(code, "unknown result")
        self.filename = filename
        self.detail = detail
        super().__init__(code, self.filename, detail)

    def __str__(self) -> str:
        about = [text for text in (self.filename, self.detail) if text]
        text = ": ".join([*about, f"{self.meaning} (result code {self.code})"])
        return "".join(each if each.isprintable() else ascii(each)[1:-1] for each in text)
