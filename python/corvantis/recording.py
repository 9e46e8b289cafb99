"""A recording: a data file that is open for reading."""
from __future__ import annotations

import ctypes
import os
import weakref
from collections.abc import Iterable, Sequence
from dataclasses import dataclass
from html import escape
from typing import TYPE_CHECKING, Any, BinaryIO, Union

from .columns import read_columns
from .epoch import Epoch
from .epochs import Epochs
from .errors import CorvantisError
from .handle import Handle, Known
from .identity import Identity, checksum, local, portable
from .interface import CHANGED, FILE_HEADER_SIZE, FindingRecord, RecordingInfo, Weight
from .notebook import View, recording_html
from .records import Record, header
from .samples import stacked
from .source import is_file_object
from .table import rows

if TYPE_CHECKING:
    import pandas

Source = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]", BinaryIO]

_recordings: weakref.WeakSet[Recording] = weakref.WeakSet()
_parents: list[Handle | None] = []      # kept for ever, since closing them could wait for ever


@dataclass(frozen=True)
class Finding:
    """Something in a file that is not as it should be.

    Attributes:
        offset: in the file [bytes].
        epoch: number of the epoch that it is about, or None.
        weight: how much it matters.
        place: such as "file header, numEpochs".
        found: what stands there.
        expected: what should.
    """

    offset: int
    epoch: int | None
    weight: Weight
    place: str
    found: str
    expected: str


class Recording:
    """An open data file.

    Any number of recordings may be open at once, and any number of threads read from them at the
    same time, from one recording or several.

    Attributes:
        path: the data file; of a file object its name.
        header: its header.
    """

    def __init__(self, source: Source, known: Known | None = None) -> None:
        self._file: BinaryIO | None = None
        self._known = known
        self._closed = False
        if isinstance(source, (str, bytes, os.PathLike)):
            self.path = os.path.abspath(os.fsdecode(source))
        elif is_file_object(source):
            self._file = source
            self.path = str(getattr(source, "name", source))
        else:
            raise TypeError(f"neither a path nor a binary file object: {source!r}")
        self._modified = self._modification()
        self._handle: Handle | None = Handle(self.path, self._file, known)
        self._opened = self._identity(0)
        self.header: Record = self._read_header()
        _recordings.add(self)

    def _modification(self) -> int:
        """When the file was modified [ns]; the library says what is wrong with one that is none."""
        try:
            return 0 if self._file is not None else os.stat(self.path).st_mtime_ns
        except (OSError, ValueError):
            return 0

    def _read_header(self) -> Record:
        block = ctypes.create_string_buffer(FILE_HEADER_SIZE)
        handle = self.handle
        handle.ask(handle.library.CorvantisFileHeader, block)
        return header("FileHeader", block.raw)

    @property
    def handle(self) -> Handle:
        """The library's recording; whoever uses it holds it open."""
        handle = self._handle
        if handle is None:
            if self._closed:
                raise ValueError(f"{self.path}: the recording is closed")
            handle = self._handle = Handle(self.path, self._file, self._known)
            try:
                self._check(self._opened)
            except CorvantisError:
                self._handle = None
                raise
        return handle

    @property
    def epochs(self) -> Epochs:
        """The epochs, a lazy sequence."""
        return Epochs(self)

    @property
    def comment(self) -> str:
        """Comment on the whole experiment."""
        return str(self.header.fileComment)

    def close(self) -> None:
        """Close the file; what has been read stays, anything else raises ValueError.

        Other threads end what they are reading. A file object stays open.
        """
        self._closed = True
        self._handle = None

    def __enter__(self) -> Recording:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __repr__(self) -> str:
        state = "closed" if self._closed else f"{len(self.epochs)} epochs"
        return f"<Recording {self.path}: {state}>"

    def _repr_html_(self) -> str:
        return escape(repr(self)) if self._closed else recording_html(self)

    def view(self, shown: str = "", height: int = 900) -> View:
        """The page that shows recordings, for a notebook, with this one in it.

        Args:
            shown: what it shows first, as behind "#" in the page's address, such as "epochs=3-9".
            height: of the cell's output [pixels].

        Raises:
            ValueError: if it is too large for a notebook, was opened from a file object, or if the
                page was not built.
        """
        if self._file is not None:
            raise ValueError("a recording that was opened from a file object has no path to be "
                             "shown by")
        return View(self.path, shown, height)

    def refresh(self) -> int:
        """Take in the epochs that another program has saved meanwhile; returns how many.

        Raises:
            CorvantisError: with code 12 if the file is not what it was before; the recording stays
                as it is.
        """
        before, modified = len(self.epochs), self._modification()
        self.handle.refresh()
        self._modified = modified
        return len(self.epochs) - before

    # ---- Of many epochs at once -----------------------------------------------------------

    def columns(self, *names: str, first: int = 0, count: int | None = None) -> Any:
        """Fields of the epochs' headers as a structured array, one row for each epoch.

        Args:
            names: the fields, such as "temperature"; all without any.
            first: number of the first epoch.
            count: how many; all that follow without it.

        Returns:
            The array, with a further column `missing`: true for an epoch that is damaged, whose
            other values are zeros.
        """
        return read_columns(self.handle, names, first, count)

    def counts(self, epochs: Iterable[Epoch | int] | None = None, entry: int | None = None) -> Any:
        """Acquired samples of epochs of one shape [signed converter counts].

        Args:
            epochs: the epochs or their numbers; all without them.
            entry: sequence entry; all without it.

        Returns:
            An array of shape (epochs, points, entries), or (epochs, points) of one entry.
        """
        return stacked(self.handle, self._numbers(epochs), entry, raw=True)

    def responses(self, epochs: Iterable[Epoch | int] | None = None,
                  entry: int | None = None) -> Any:
        """As `counts`, in the units that each epoch names."""
        return stacked(self.handle, self._numbers(epochs), entry, raw=False)

    def _numbers(self, epochs: Iterable[Epoch | int] | None) -> Sequence[int]:
        if epochs is None:
            return self.epochs.numbers
        if isinstance(epochs, Epochs) and epochs.recording is self:
            return epochs.numbers
        every = range(len(self.epochs))
        return [every[self._number(each) if isinstance(each, Epoch) else each] for each in epochs]

    def _number(self, epoch: Epoch) -> int:
        if epoch.recording is not self:
            raise ValueError(f"{epoch!r} is of another recording")
        return epoch.number

    def table(self) -> list[dict[str, Any]]:
        """One row for each epoch: number, times, channels, stimulus in words, settings; of a
        damaged one its `problem`."""
        return rows(self.epochs)

    def to_dataframe(self) -> pandas.DataFrame:
        """`table()` as a pandas data frame, indexed by epoch number; needs pandas."""
        import pandas
        frame = pandas.DataFrame(self.table())
        return frame.set_index("epoch") if len(frame) else frame

    # ---- The file -------------------------------------------------------------------------

    @property
    def findings(self) -> list[Finding]:
        """What is not as it should be in the file, which is walked for this from end to end."""
        handle, count = self.handle, ctypes.c_int64()
        handle.call(handle.library.CorvantisFindings, ctypes.addressof(count))
        return [self._finding(handle, index) for index in range(count.value)]

    def _finding(self, handle: Handle, index: int) -> Finding:
        record = FindingRecord()
        handle.ask(handle.library.CorvantisGetFinding, index, ctypes.addressof(record))
        texts = (text.decode("utf-8", "replace")
                 for text in (record.place, record.found, record.expected))
        return Finding(record.offset, record.epoch if record.epoch >= 0 else None,
                       Weight(record.weight), *texts)

    def _identity(self, epochs: int) -> Identity:
        """By what the file is known again, looking at so many epochs."""
        info, handle = RecordingInfo(), self.handle
        handle.ask(handle.library.CorvantisInfo, ctypes.addressof(info))
        return Identity(info.size, self._modified, epochs,
                        self._checksum(epochs - 1) if 0 < epochs <= info.epochs else 0)

    def _checksum(self, number: int) -> int:
        """Of an epoch's header; 0 of a damaged one."""
        epoch = self.epochs[number]
        return 0 if epoch.is_damaged else checksum(epoch._block)

    def __reduce__(self) -> tuple[Any, ...]:
        if self._file is not None:
            raise TypeError(f"{self.path}: a recording of a file object cannot be pickled")
        return _found_again, (portable(self.path), self._identity(len(self.epochs)))

    def _check(self, known: Identity) -> None:
        """Refuse a file that is another one than it was, but for epochs that were added."""
        self._modified = self._modification()
        now = self._identity(known.epochs)
        if not (now.same_file(known) or now.size > known.size and now.last == known.last):
            raise CorvantisError(CHANGED, self.path,
                                 f"{self.path}: not the file that it was: {now.size} bytes instead "
                                 f"of {known.size}, or modified since; open it again")


def _found_again(path: str, known: Identity) -> Recording:
    """A recording that was pickled, if its file is still the same."""
    recording = Recording(local(path))
    recording._check(known)
    return recording


def _leave_to_parent() -> None:
    """In a forked child: open files anew when they are needed. A thread of the parent may have been
    within the library, and never comes out of it here."""
    for recording in list(_recordings):
        _parents.append(recording._handle)
        recording._handle = None


if hasattr(os, "register_at_fork"):
    os.register_at_fork(after_in_child=_leave_to_parent)


def open_recording(source: Source) -> Recording:
    """Open a data file for reading.

    Args:
        source: the file, as text, bytes or a path, in which wildcards and "~" stand for themselves;
            or a binary file object that can be read and sought, and stays open for so long.

    Returns:
        The recording; use it in a `with` statement, or close it.

    Raises:
        CorvantisError: with code 7 if the file cannot be read, 9 if its format is too new, 10 if it
            is no recording.
    """
    return Recording(source)
