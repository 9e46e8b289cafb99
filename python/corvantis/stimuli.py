"""Stimulus records: levels in DAC codes, lengths in samples, fields named as in the C interface.

All but two are the library's own records. A sum has its components here in place of their
addresses, and a dynamic clamp its conductances, which the file has behind the record.
"""
from __future__ import annotations

from dataclasses import dataclass, field

import numpy as np
from numpy.typing import NDArray

from . import records
from .layout import Pointers256
from .records import (AlternatingVoltage, BinaryNoise, CirclePulse, FileWave, Generic, Noise,
                      Pulse, Ramp, SegmentedNoise, Sine, Spatial, Stimulus, TriggerSeries)

__all__ = ["ALL", "TYPES", "AlternatingVoltage", "BinaryNoise", "CirclePulse", "Conductance",
           "DynamicClamp", "FileWave", "Generic", "Noise", "Pulse", "Ramp", "SegmentedNoise",
           "Sine", "Spatial", "Stimulus", "Summed", "SummedRecord", "TriggerSeries"]

Conductance = NDArray[np.float32]


@dataclass(frozen=True)
class Summed(Stimulus):
    """The sum of its components."""

    type, name, computed, caveat = records.Summed.type, records.Summed.name, True, ""
    components: tuple[Stimulus, ...]


@dataclass(frozen=True)
class SummedRecord(records.Summed):
    """A sum as it lies in memory."""

    components: Pointers256


@dataclass(frozen=True)
class DynamicClamp(records.DynamicClamp):
    """Conductances; as a component of a sum it has none."""

    excitatory: Conductance | None = field(default=None, compare=False, repr=False)
    #: excitatory conductance, shape (points,) [nS]
    inhibitory: Conductance | None = field(default=None, compare=False, repr=False)
    #: inhibitory conductance, shape (points,) [nS]


_OURS: dict[int, type[Stimulus]] = {Summed.type: Summed, DynamicClamp.type: DynamicClamp}
ALL = tuple(_OURS.get(each.type, each) for each in records.ALL)
TYPES = {each.type: each for each in ALL}
