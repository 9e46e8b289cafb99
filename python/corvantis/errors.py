"""The package's one exception and its one warning."""
from __future__ import annotations

MEANINGS = {
    2: "the stimulus cannot be computed",
    5: "out of memory",
    6: "bad argument",
    7: "the file cannot be read",
    9: "the file was made by a newer version of Corvantis",
    10: "the file is no recording",
    11: "the epoch is damaged",
    12: "the file is no longer the one that was opened",
}


class CorvantisError(Exception):
    """A result code of the library other than success.

    Attributes:
        code: the result code, as in the C interface.
        meaning: what the code stands for.
        filename: the data file, or None where no file is concerned.
        detail: the file, the place, what was found there and what was expected, in words.
        offset: the place in the file [bytes], or None where no place is to blame.
    """

    def __init__(self, code: int, filename: str | None = None, detail: str = "",
                 offset: int | None = None) -> None:
        self.code = code
        self.meaning = MEANINGS.get(code, "unknown result")
        self.filename = filename
        self.detail = detail
        self.offset = offset
        super().__init__(code, filename, detail, offset)

    def __str__(self) -> str:
        text = self.detail or ": ".join(filter(None, (self.filename, self.meaning)))
        return "".join(each if each.isprintable() else ascii(each)[1:-1] for each in text)


class CorvantisWarning(UserWarning):
    """A stimulus that may not be what was played, or an epoch that was left out as damaged."""
