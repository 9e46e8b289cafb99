"""Stimulus records: levels in DAC codes, lengths in samples, fields named as in the C interface."""
from __future__ import annotations

from dataclasses import dataclass, field
from typing import ClassVar

import numpy as np
from numpy.typing import NDArray

from .layout import Float, Int8s256, Int32, Int32s3, Pointers256

Conductance = NDArray[np.float32]


@dataclass(frozen=True)
class Stimulus:
    """What every stimulus has: the type's code and name, and whether the library computes it."""

    type: ClassVar[int]
    name: ClassVar[str]
    computed: ClassVar[bool] = True


@dataclass(frozen=True)
class Sine(Stimulus):
    type, name = 1, "sine"
    amplitude: Int32        #: peak amplitude [DAC codes]
    mean: Int32             #: holding level [DAC codes]
    period: Int32           #: [samples]
    phase: Int32            #: stored, without effect
    points: Int32           #: [samples]
    tailPoints: Int32       #: [samples]
    prePoints: Int32        #: [samples]


@dataclass(frozen=True)
class Noise(Stimulus):
    type, name = 2, "noise"
    amplitude: Int32        #: standard deviation [DAC codes]
    mean: Int32             #: holding level [DAC codes]
    seed: Int32             #: 0 or above reproduces its waveform
    points: Int32           #: [samples]
    tailPoints: Int32       #: [samples]
    prePoints: Int32        #: [samples]
    smoothingPoints: Int32  #: window of the older method's moving average [samples]
    cutoffFrequency: Int32  #: [Hz]
    filterOrder: Int32      #: first-order sections of the low-pass filter


@dataclass(frozen=True)
class Pulse(Stimulus):
    type, name = 3, "pulse"
    amplitude: Int32        #: added to the holding level [DAC codes]
    mean: Int32             #: holding level [DAC codes]
    points: Int32           #: [samples]
    tailPoints: Int32       #: [samples]
    prePoints: Int32        #: [samples]


@dataclass(frozen=True)
class Ramp(Pulse):
    """As a pulse, but rising by `amplitude` over its points."""

    type, name = 4, "ramp"


@dataclass(frozen=True)
class FileWave(Stimulus):
    """A wave of the recording application; nothing of it is in the file."""

    type, name, computed = 5, "file wave", False


@dataclass(frozen=True)
class Generic(Pulse):
    """As a pulse, but the recording application alone knows its waveform."""

    type, name, computed = 6, "generic", False


@dataclass(frozen=True)
class Summed(Stimulus):
    """The sum of its components."""

    type, name = 7, "sum"
    components: tuple[Stimulus, ...]


@dataclass(frozen=True)
class TriggerSeries(Stimulus):
    """A trigger series; nothing of it is in the file."""

    type, name, computed = 8, "trigger series", False


@dataclass(frozen=True)
class SegmentedNoise(Stimulus):
    type, name = 9, "segmented noise"
    amplitude: Int32        #: standard deviation, or size of the step [DAC codes]
    mean: Int32             #: holding level [DAC codes]
    seed: Int32             #: 0 or above reproduces its waveform
    points: Int32           #: [samples]
    tailPoints: Int32       #: [samples]
    prePoints: Int32        #: [samples]
    segmentPoints: Int32    #: length of a segment [samples]


@dataclass(frozen=True)
class BinaryNoise(SegmentedNoise):
    """As segmented noise, but every level is `mean` plus or minus `amplitude`."""

    type, name = 10, "binary noise"


@dataclass(frozen=True)
class DynamicClamp(Stimulus):
    """Conductances; as a component of a sum it has none."""

    type, name = 11, "dynamic clamp"
    excitatoryReversal: Float       #: [mV]
    inhibitoryReversal: Float       #: [mV]
    excitatory: Conductance | None = field(default=None, compare=False, repr=False)
    #: excitatory conductance, shape (points,) [nS]
    inhibitory: Conductance | None = field(default=None, compare=False, repr=False)
    #: inhibitory conductance, shape (points,) [nS]


@dataclass(frozen=True)
class CirclePulse(Stimulus):
    type, name, computed = 12, "circle pulse", False
    value0: Int32
    value1: Int32
    value2: Int32
    tripleA: Int32s3
    tripleB: Int32s3
    points: Int32           #: [samples]
    tailPoints: Int32       #: [samples]
    prePoints: Int32        #: [samples]


@dataclass(frozen=True)
class AlternatingVoltage(Stimulus):
    type, name = 13, "alternating voltage"
    halfPeriod: Int32       #: [samples]
    amplitude: Int32        #: added to `mean` on the second level [DAC codes]
    mean: Int32             #: first level, and holding level [DAC codes]
    points: Int32           #: [samples]
    tailPoints: Int32       #: [samples]
    prePoints: Int32        #: [samples]


@dataclass(frozen=True)
class Spatial(Stimulus):
    """Shown elsewhere; its output is zero."""

    type, name = 14, "spatial"
    points: Int32           #: [samples]


@dataclass(frozen=True)
class SummedRecord:
    """A sum as it lies in memory."""

    count: Int32
    componentType: Int8s256
    components: Pointers256


ALL: tuple[type[Stimulus], ...] = (
    Sine, Noise, Pulse, Ramp, FileWave, Generic, Summed, TriggerSeries, SegmentedNoise,
    BinaryNoise, DynamicClamp, CirclePulse, AlternatingVoltage, Spatial)
TYPES = {each.type: each for each in ALL}
