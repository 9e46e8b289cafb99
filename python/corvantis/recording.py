"""A recording: an open data file and its epochs."""
from __future__ import annotations

import os
from collections.abc import Iterator, Sequence
from typing import TYPE_CHECKING, Any, overload

from .epoch import Epoch
from .epochreader import EpochReader
from .errors import FILE_ERROR, CorvantisError, PathLike
from .records import FileHeader
from .session import Content
from .table import row

if TYPE_CHECKING:
    import pandas


class Epochs(Sequence[Epoch]):
    """Epochs of a recording by number, from 0; a slice is such a sequence again.

    Nothing of an epoch is read before it is asked for.
    """

    def __init__(self, recording: Recording, numbers: Sequence[int] | None = None) -> None:
        self._recording = recording
        self._numbers = numbers

    def _all(self) -> Sequence[int]:
        if self._numbers is None:
            self._numbers = range(len(self._recording.reader.places))
        return self._numbers

    def __len__(self) -> int:
        return len(self._all())

    @overload
    def __getitem__(self, index: int) -> Epoch: ...

    @overload
    def __getitem__(self, index: slice) -> Epochs: ...

    def __getitem__(self, index: int | slice) -> Epoch | Epochs:
        if isinstance(index, slice):
            return Epochs(self._recording, self._all()[index])
        return Epoch(self._recording, self._all()[index])

    def __iter__(self) -> Iterator[Epoch]:
        return (Epoch(self._recording, number) for number in self._all())

    def __repr__(self) -> str:
        return f"<{len(self)} epochs of {self._recording.path}>"


class Recording:
    """An open data file.

    Any number of recordings may be open at once. The library holds one file, so the package
    switches between them behind one lock: threads take turns, parallel work needs processes.

    Attributes:
        path: the data file.
        epochs: its epochs, a lazy sequence.
    """

    def __init__(self, path: PathLike) -> None:
        name = os.fsdecode(path)
        if "\0" in name:       # which abspath would cut off, to another file's name
            raise CorvantisError(FILE_ERROR, name, "no file has a name with a NUL")
        self.path = os.path.abspath(name)
        self._reader: EpochReader | None = EpochReader(self.path)
        self.header: FileHeader = self._reader.header
        self._content = self._reader.file.content
        self.epochs = Epochs(self)

    @property
    def reader(self) -> EpochReader:
        """What reads the file."""
        if self._reader is None:
            raise ValueError(f"{self.path}: the recording is closed")
        return self._reader

    @property
    def comment(self) -> str:
        """Comment on the whole experiment."""
        return self.header.fileComment

    def close(self) -> None:
        """Close the file; what has been read stays, anything else raises ValueError."""
        if self._reader is not None:
            self._reader.close(end=True)
            self._reader = None

    def __enter__(self) -> Recording:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __del__(self) -> None:
        reader = getattr(self, "_reader", None)
        if reader is not None:
            reader.close(end=False)

    def __reduce__(self) -> tuple[Any, ...]:
        return _reopened, (self.path, self._content)

    def __repr__(self) -> str:
        state = "closed" if self._reader is None else f"{self.header.numEpochs} epochs"
        return f"<Recording {self.path}: {state}>"

    def table(self) -> list[dict[str, Any]]:
        """One row for each epoch: number, times, channels, stimulus in words, settings."""
        return [row(epoch) for epoch in self.epochs]

    def to_dataframe(self) -> pandas.DataFrame:
        """`table()` as a pandas data frame, indexed by epoch number; needs pandas."""
        import pandas
        frame = pandas.DataFrame(self.table())
        return frame.set_index("epoch") if len(frame) else frame


def _reopened(path: str, content: Content) -> Recording:
    """A recording that was pickled, if its file is still the same."""
    recording = Recording(path)
    if recording.reader.file.content != content:
        raise recording.reader.file.changed()
    return recording


def open_recording(path: PathLike) -> Recording:
    """Open a data file for reading.

    Args:
        path: the file, as text, bytes or a path; wildcards and "~" stand for themselves.

    Returns:
        The recording; use it in a `with` statement, or close it.

    Raises:
        CorvantisError: with code 7 if the file cannot be read, 9 if its format is too new.
    """
    return Recording(path)
