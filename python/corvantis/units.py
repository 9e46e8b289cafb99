"""From converter counts to physical units, by one formula for each direction.

response = counts / inputScale / ampGain      [inputUnits; ampGain in volts per unit]
stimulus = counts / outputScale * convFactor  [outputUnits; convFactor in units per volt]
"""
from __future__ import annotations

import math
from dataclasses import dataclass

import numpy as np
from numpy.typing import NDArray

from .records import EpochHeader, FileHeader

Samples = NDArray[np.float64]
Counts = NDArray[np.int16]


@dataclass(frozen=True)
class Scale:
    """How the counts of one sequence entry become values of a unit.

    Attributes:
        unit: unit of the values, "V" where the amplifier's factor is unusable or has no unit,
            "counts" where even the converter's scale is, "word" for the digital port.
        formula: the calculation in words, with the numbers of this entry and what is missing.
    """

    unit: str
    formula: str
    counts_per_volt: float = 1.0
    gain: float = 1.0
    factor: float = 1.0

    def __call__(self, counts: Counts | int) -> Samples:
        """Values [unit] of counts, in the same shape."""
        wide = np.asarray(counts, dtype=np.float64)
        if self.unit == "word":
            wide = np.where(wide < 0, wide + 65536, wide)
        return wide / self.counts_per_volt / self.gain * self.factor


@dataclass(frozen=True)
class Units:
    """Units of an epoch's arrays, one for each sequence entry."""

    response: tuple[str, ...]
    stimulus: tuple[str, ...]


WORD = Scale("word", "the 16-bit word of the digital port")


def _usable(factor: float) -> bool:
    return math.isfinite(factor) and factor != 0


def _in_volts(scale_name: str, scale: float, factor_name: str, factor: float, unit: str) -> Scale:
    """What is left without a factor or a unit: volts, or counts where even those are unknown."""
    if not _usable(scale):
        return Scale("counts", f"counts, because {scale_name} is {scale:g}")
    missing = "the unit has no name" if _usable(factor) and not unit else \
        f"{factor_name} is {factor:g}"
    return Scale("V", f"counts / {scale:g} in V, because {missing}", counts_per_volt=scale)


def response_scale(file: FileHeader, epoch: EpochHeader, entry: int) -> Scale:
    """Scale of a sequence entry's acquired samples."""
    scale, gain, unit = file.inputScale, epoch.ampGain[entry], epoch.inputUnits[entry]
    if not (_usable(gain) and _usable(scale) and unit):
        return _in_volts("inputScale", scale, "ampGain", gain, unit)
    return Scale(unit, f"counts / {scale:g} / {gain:g} in {unit}", counts_per_volt=scale, gain=gain)


def stimulus_scale(file: FileHeader, epoch: EpochHeader, entry: int) -> Scale:
    """Scale of a sequence entry's played samples."""
    scale, factor, unit = file.outputScale, epoch.convFactor[entry], epoch.outputUnits[entry]
    if not (_usable(factor) and _usable(scale) and unit):
        return _in_volts("outputScale", scale, "convFactor", factor, unit)
    return Scale(unit, f"counts / {scale:g} * {factor:g} in {unit}", counts_per_volt=scale,
                 factor=factor)
