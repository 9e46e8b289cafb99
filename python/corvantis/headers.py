"""The file's and each epoch's header, as the C interface declares them.

Arrays of four are indexed by sequence entry, as the stimulus types are.
"""
from dataclasses import dataclass, field

from .layout import (Comment, Float, Floats4, Floats24, Int8, Int8s4, Int32, Int32s4, Reserved22,
                     Reserved24, UInt16, UInt16s4, UInt32s4, Units4)


@dataclass(frozen=True)
class FileHeader:
    """Header of the data file."""

    version: Int8               #: format version [1..8]
    fileLongA: Int32            #: spare
    fileComment: Comment        #: comment on the whole experiment
    fileFlagA: Int8             #: spare
    fileFlagB: Int8             #: spare
    inputScale: Float           #: [converter counts per volt]
    outputScale: Float          #: [converter counts per volt]
    pipelineDepth: Int8         #: the device's pipeline length [samples]
    numEpochs: Int32            #: epochs in the file
    epochTablePosition: Int32   #: file offset of the position table, unsigned [bytes]
    offset: Float               #: a value for the whole file
    fileFlagC: Int8             #: spare
    fileFlagD: Int8             #: spare
    stmDataFormat: Int8         #: format code of stored stimulus data
    fileLongB: Int32            #: spare
    reserved: Reserved24 = field(repr=False)


@dataclass(frozen=True)
class EpochHeader:
    """Header of one epoch."""

    epochTime: Float            #: time of the epoch, as the recording application counts
    epochComment: Comment       #: comment on this epoch
    ampGain: Floats4            #: [V at the converter per input unit]
    ampValue: Floats4           #: second amplifier value
    convFactor: Floats4         #: [output units per V]
    ampCode: Int8s4             #: amplifier code
    acqSettingB: Int8           #: second acquisition setting
    samplingInterval: Int32     #: one pass of the sequence [µs]
    epochPoints: Int32          #: points per sequence entry [samples]
    sequenceLength: Int32       #: entries of the channel sequence [1..4]
    channelSequence: UInt32s4   #: device word of each entry
    spareChannelBytes: Int8s4   #: spare
    acqSettingA: Int8           #: first acquisition setting
    stimType: Int8s4            #: stimulus type of each entry
    outputUnits: Units4         #: unit of each entry's stimulus
    inputUnits: Units4          #: unit of each entry's response
    ampMode: Int8s4             #: amplifier mode
    meanOutput: Int32s4         #: mean output level [DAC codes]
    temperature: Float          #: [°C]
    digitalOutput: UInt16       #: digital output word
    wavelength: UInt16          #: [nm]
    ndf: Floats4                #: neutral density filter
    ledSetting: UInt16s4        #: LED setting
    userValue: Floats24         #: free values of the experimenter
    pointsLatency: UInt16       #: dynamic-clamp latency [samples]
    reserved: Reserved22 = field(repr=False)
