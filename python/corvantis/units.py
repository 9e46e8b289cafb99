"""Units of samples: the library says which, and by what formula."""
from __future__ import annotations

import ctypes
from dataclasses import dataclass

import numpy as np
from numpy.typing import NDArray

from .handle import Handle
from .interface import Quantity, ScaleInfo
from .library import library

Samples = NDArray[np.float64]
Counts = NDArray[np.int16]


@dataclass(frozen=True)
class Scale:
    """How the counts of one sequence entry become values of a unit.

    Attributes:
        unit: unit of the values, "V" where the amplifier's factor is unusable or has no unit,
            "counts" where even the converter's scale is, "word" for the digital port.
        formula: the calculation in words, with the numbers of this entry and what is missing.
        quantity: what the entry's own unit measures.
        si: volts, amperes or siemens in one of the unit; 1 for any other quantity.
    """

    unit: str
    formula: str
    counts_per_volt: float = 1.0
    gain: float = 1.0
    factor: float = 1.0
    is_word: bool = False
    quantity: Quantity = Quantity.OTHER
    si: float = 1.0

    @property
    def si_per_count(self) -> float:
        """Volts, amperes or siemens in one count; of any other quantity the unit itself."""
        return self.si * self.factor / self.counts_per_volt / self.gain

    def __call__(self, counts: Counts | int) -> Samples:
        """Values [unit] of counts, in the same shape."""
        wide = np.asarray(counts, dtype=np.float64)
        if self.is_word:
            wide = wide % 65536
        return wide / self.counts_per_volt / self.gain * self.factor


@dataclass(frozen=True)
class Units:
    """Units of an epoch's arrays, one for each sequence entry."""

    response: tuple[str, ...]
    stimulus: tuple[str, ...]


def read_scale(handle: Handle, epoch: int, entry: int, direction: int) -> Scale:
    """The scale of a sequence entry."""
    info = ScaleInfo()
    handle.call(handle.library.CorvantisScale, epoch, entry, direction, ctypes.addressof(info))
    return Scale(info.unit.decode(), info.formula.decode(), info.countsPerVolt, info.gain,
                 info.factor, bool(info.isWord), Quantity(info.quantity), info.si)


def axis_name(direction: int, unit: str) -> str:
    """What an axis of values is called, such as "Membrane Potential" for a response in mV."""
    name: bytes = library().CorvantisAxisName(direction, unit.encode())
    return name.decode()
