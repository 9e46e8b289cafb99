"""Headers and stimulus records. Made by scripts/records from the library; do not edit."""
from dataclasses import dataclass
from typing import ClassVar

from .layout import (Comment, Float, Floats24, Floats4, Int32, Int32s3, Int32s4, Int8, Int8s256,
                     Int8s4, UInt16, UInt16s4, UInt32, UInt32s4, Units4)

FILE_HEADER_BYTES = 580
EPOCH_HEADER_BYTES = 912


@dataclass(frozen=True)
class FileHeader:
    """Header of the data file."""

    version: Int8  #: format version
    fileLongA: Int32  #: spare; kept as it stands
    fileComment: Comment  #: comment on the whole file, terminated within
    fileFlagA: Int8  #: 1; kept as it stands
    fileFlagB: Int8  #: 2; kept as it stands
    inputScale: Float  #: scale of the inputs, 3200 [counts/V]
    outputScale: Float  #: scale of the outputs, 3200 [counts/V]
    pipelineDepth: Int8  #: the device's pipeline length, 5 [samples]
    numEpochs: Int32  #: epochs in the file
    epochTablePosition: UInt32  #: file offset of the position table, unsigned [bytes]
    offset: Float  #: a value for the whole file, kept as given
    fileFlagC: Int8  #: 2; kept as it stands
    fileFlagD: Int8  #: 1; kept as it stands
    stmDataFormat: Int8  #: format code of stored stimulus data
    fileLongB: Int32  #: spare; kept as it stands


@dataclass(frozen=True)
class EpochHeader:
    """Header of one epoch; arrays of four are by entry."""

    epochTime: Float  #: time of the epoch, as the application counts
    epochComment: Comment  #: comment on the epoch, terminated within
    ampGain: Floats4  #: amplifier gain of each entry's input [V/unit]
    ampValue: Floats4  #: second amplifier value of each entry
    convFactor: Floats4  #: conversion factor of each entry's output [units/V]
    ampCode: Int8s4  #: amplifier code of each entry
    acqSettingB: Int8  #: second acquisition setting
    samplingInterval: Int32  #: one pass of the sequence [µs]
    epochPoints: Int32  #: points of each sequence entry [samples]
    sequenceLength: Int32  #: length of the channel sequence [entries]
    channelSequence: UInt32s4  #: device word of each sequence entry
    spareChannelBytes: Int8s4  #: never set by the library
    acqSettingA: Int8  #: first acquisition setting
    stimType: Int8s4  #: stimulus type of each entry
    outputUnits: Units4  #: unit name of each entry's stimulus
    inputUnits: Units4  #: unit name of each entry's response
    ampMode: Int8s4  #: amplifier mode of each entry
    meanOutput: Int32s4  #: mean output level of each entry [DAC codes]
    temperature: Float  #: temperature [°C]
    digitalOutput: UInt16  #: digital output word
    wavelength: UInt16  #: wavelength [nm]
    ndf: Floats4  #: neutral density filter of each entry
    ledSetting: UInt16s4  #: setting of each LED
    userValue: Floats24  #: free values of the experimenter
    pointsLatency: UInt16  #: dynamic-clamp latency [samples]


@dataclass(frozen=True)
class Stimulus:
    """What every stimulus has."""

    type: ClassVar[int]      #: code
    name: ClassVar[str]
    computed: ClassVar[bool]  #: whether the library computes it from what is on file
    caveat: ClassVar[str]    #: why what is computed is not what was played, or empty


@dataclass(frozen=True)
class Sine(Stimulus):
    """The sine stimulus' record."""

    type, name = 1, "sine"
    computed = True
    caveat = ""
    amplitude: Int32  #: peak amplitude [DAC codes]
    mean: Int32  #: holding level, about which the sine oscillates [DAC codes]
    period: Int32  #: period of the sine [samples]
    phase: Int32  #: kept and stored; the calculation does not read it
    points: Int32  #: length of the sine [samples]
    tailPoints: Int32  #: at the holding level behind it [samples]
    prePoints: Int32  #: at the holding level before it [samples]


@dataclass(frozen=True)
class Noise(Stimulus):
    """The noise stimulus' record."""

    type, name = 2, "noise"
    computed = True
    caveat = ""
    amplitude: Int32  #: standard deviation [DAC codes]
    mean: Int32  #: holding level [DAC codes]
    seed: Int32  #: 0 or above reproduces its waveform; below 0 continues
    points: Int32  #: length of the noise [samples]
    tailPoints: Int32  #: at the holding level behind it [samples]
    prePoints: Int32  #: at the holding level before it [samples]
    smoothingPoints: Int32  #: window of the older method's moving average [samples]
    cutoffFrequency: Int32  #: corner of the low-pass filter [Hz]
    filterOrder: Int32  #: cascaded first-order sections of that filter


@dataclass(frozen=True)
class Pulse(Stimulus):
    """The pulse stimulus' record."""

    type, name = 3, "pulse"
    computed = True
    caveat = ""
    amplitude: Int32  #: added to the holding level during the pulse [DAC codes]
    mean: Int32  #: holding level [DAC codes]
    points: Int32  #: length of the pulse [samples]
    tailPoints: Int32  #: at the holding level behind it [samples]
    prePoints: Int32  #: at the holding level before it [samples]


@dataclass(frozen=True)
class Ramp(Stimulus):
    """The ramp stimulus' record."""

    type, name = 4, "ramp"
    computed = True
    caveat = ""
    amplitude: Int32  #: rise over the points [DAC codes]
    mean: Int32  #: holding level, from which the ramp starts [DAC codes]
    points: Int32  #: length of the ramp [samples]
    tailPoints: Int32  #: at the holding level behind it [samples]
    prePoints: Int32  #: at the holding level before it [samples]


@dataclass(frozen=True)
class FileWave(Stimulus):
    """The file wave stimulus' record."""

    type, name = 5, "file wave"
    computed = False
    caveat = "the wave was the application's and is not stored"


@dataclass(frozen=True)
class Generic(Stimulus):
    """The generic stimulus' record."""

    type, name = 6, "generic"
    computed = False
    caveat = "only the application knows its waveform"
    amplitude: Int32  #: as the application means it [DAC codes]
    mean: Int32  #: holding level [DAC codes]
    points: Int32  #: length of the stimulus [samples]
    tailPoints: Int32  #: at the holding level behind it [samples]
    prePoints: Int32  #: at the holding level before it [samples]


@dataclass(frozen=True)
class Summed(Stimulus):
    """The summed stimulus' record."""

    type, name = 7, "summed"
    computed = False
    caveat = ""
    count: Int32  #: components in use
    componentType: Int8s256  #: stimulus type of each; sums do not nest


@dataclass(frozen=True)
class TriggerSeries(Stimulus):
    """The trigger series stimulus' record."""

    type, name = 8, "trigger series"
    computed = False
    caveat = "its parameters are not stored"


@dataclass(frozen=True)
class SegmentedNoise(Stimulus):
    """The segmented noise stimulus' record."""

    type, name = 9, "segmented noise"
    computed = True
    caveat = ""
    amplitude: Int32  #: standard deviation of the levels [DAC codes]
    mean: Int32  #: holding level [DAC codes]
    seed: Int32  #: 0 or above reproduces its waveform; below 0 continues
    points: Int32  #: length of the noise [samples]
    tailPoints: Int32  #: at the holding level behind it [samples]
    prePoints: Int32  #: at the holding level before it [samples]
    segmentPoints: Int32  #: length of a segment [samples]


@dataclass(frozen=True)
class BinaryNoise(Stimulus):
    """The binary noise stimulus' record."""

    type, name = 10, "binary noise"
    computed = True
    caveat = ""
    amplitude: Int32  #: magnitude of the levels [DAC codes]
    mean: Int32  #: holding level [DAC codes]
    seed: Int32  #: 0 or above reproduces its waveform; below 0 continues
    points: Int32  #: length of the noise [samples]
    tailPoints: Int32  #: at the holding level behind it [samples]
    prePoints: Int32  #: at the holding level before it [samples]
    segmentPoints: Int32  #: length of a segment [samples]


@dataclass(frozen=True)
class DynamicClamp(Stimulus):
    """The dynamic clamp stimulus' record."""

    type, name = 11, "dynamic clamp"
    computed = True
    caveat = "what was played followed the measured potential; its conductances are stored"
    excitatoryReversal: Float  #: reversal potential of the excitatory conductance [mV]
    inhibitoryReversal: Float  #: reversal potential of the inhibitory conductance [mV]


@dataclass(frozen=True)
class CirclePulse(Stimulus):
    """The circle pulse stimulus' record."""

    type, name = 12, "circle pulse"
    computed = False
    caveat = "only the application knows its waveform"
    value0: Int32  #: kept as given
    value1: Int32  #: kept as given
    value2: Int32  #: kept as given
    tripleA: Int32s3  #: kept as given
    tripleB: Int32s3  #: kept as given
    points: Int32  #: length of the stimulus [samples]
    tailPoints: Int32  #: at the holding level behind it [samples]
    prePoints: Int32  #: at the holding level before it [samples]


@dataclass(frozen=True)
class AlternatingVoltage(Stimulus):
    """The alternating voltage stimulus' record."""

    type, name = 13, "alternating voltage"
    computed = True
    caveat = ""
    halfPeriod: Int32  #: at each level [samples]
    amplitude: Int32  #: added to the mean on the second level [DAC codes]
    mean: Int32  #: first level, and the holding level [DAC codes]
    points: Int32  #: length of the alternation [samples]
    tailPoints: Int32  #: at the holding level behind it [samples]
    prePoints: Int32  #: at the holding level before it [samples]


@dataclass(frozen=True)
class Spatial(Stimulus):
    """The spatial stimulus' record."""

    type, name = 14, "spatial"
    computed = True
    caveat = ""
    points: Int32  #: zero samples generated [samples]


ALL: tuple[type[Stimulus], ...] = (
    Sine, Noise, Pulse, Ramp, FileWave, Generic, Summed, TriggerSeries, SegmentedNoise,
    BinaryNoise, DynamicClamp, CirclePulse, AlternatingVoltage, Spatial)
