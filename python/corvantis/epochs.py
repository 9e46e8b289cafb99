"""The epochs of a recording, a lazy sequence."""
from __future__ import annotations

import warnings
from collections.abc import Iterable, Iterator, Sequence
from typing import TYPE_CHECKING, overload

from .epoch import Epoch
from .errors import CorvantisWarning
from .samples import SHAPE, Neighbours

if TYPE_CHECKING:
    from .recording import Recording

FIRST_GLANCE, LARGEST_GLANCE = 16, 4096     # epochs whose shapes are read at once


class Epochs(Sequence[Epoch]):
    """Epochs of a recording by number, from 0; a slice is such a sequence again.

    All that the file counts are there, also damaged ones (`Epoch.is_damaged`), so that numbers stay
    what they are. Nothing of an epoch is read before it is asked for.
    """

    def __init__(self, recording: Recording, numbers: Sequence[int] | None = None) -> None:
        self.recording = recording
        self._chosen = numbers

    @property
    def numbers(self) -> Sequence[int]:
        """The epochs' numbers in the recording."""
        if self._chosen is None:
            return range(self.recording.handle.epochs())
        return self._chosen

    def __len__(self) -> int:
        return len(self.numbers)

    @overload
    def __getitem__(self, index: int) -> Epoch: ...

    @overload
    def __getitem__(self, index: slice) -> Epochs: ...

    def __getitem__(self, index: int | slice) -> Epoch | Epochs:
        if isinstance(index, slice):
            return Epochs(self.recording, self.numbers[index])
        return Epoch(self.recording, self.numbers[index])

    def __iter__(self) -> Iterator[Epoch]:
        numbers = self.numbers
        if not isinstance(numbers, range) or numbers.step != 1:
            return (Epoch(self.recording, number) for number in numbers)
        return self._in_order(numbers)

    def _in_order(self, numbers: range) -> Iterator[Epoch]:
        """Neighbours, with their shapes, which are read of many at once."""
        recording, glance = self.recording, FIRST_GLANCE
        while numbers:
            near, numbers = numbers[:glance], numbers[glance:]
            rows = recording.columns(*SHAPE, first=near.start, count=len(near))
            shapes = list(zip(*(rows[name].tolist() for name in SHAPE)))
            neighbours = Neighbours(near.start, shapes)
            for number, shape, missing in zip(near, shapes, rows["missing"].tolist()):
                epoch = Epoch(recording, number)
                if not missing:
                    epoch._shape, epoch._neighbours = shape, neighbours
                yield epoch
            glance = min(2 * glance, LARGEST_GLANCE)

    def __repr__(self) -> str:
        return f"<{len(self)} epochs of {self.recording.path}>"

    def __reduce__(self) -> tuple[object, ...]:
        return Epochs, (self.recording, self._chosen)


def undamaged(epochs: Iterable[Epoch]) -> list[Epoch]:
    """The epochs that can be read, with a CorvantisWarning for each of the others."""
    readable = []
    for epoch in epochs:
        if epoch.problem is None:
            readable.append(epoch)
        else:
            warnings.warn(epoch.problem, CorvantisWarning, stacklevel=3)
    return readable


def in_ranges(numbers: Sequence[int]) -> str:
    """Epoch numbers such as "3, 5, 7-9", in their order."""
    runs: list[list[int]] = []
    for number in numbers:
        if runs and number == runs[-1][-1] + 1:
            runs[-1].append(number)
        else:
            runs.append([number])
    return ", ".join(str(run[0]) if len(run) == 1 else
                     f"{run[0]}{', ' if len(run) == 2 else '-'}{run[-1]}" for run in runs)
