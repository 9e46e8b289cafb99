"""What CorvantisReading.h declares, for ctypes: codes, structures and the functions' arguments."""
from __future__ import annotations

import ctypes
from ctypes import c_char, c_char_p, c_double, c_int32, c_int64, c_uint8, c_uint64, c_void_p
from enum import IntEnum

NO_STIMULUS, FILE_ERROR, NOT_A_RECORDING, DAMAGED, CHANGED = 2, 7, 10, 11, 12
ENTRIES, FILE_HEADER_SIZE, EPOCH_HEADER_SIZE, RECORD_SIZE = 4, 580, 912, 64
ALL_ENTRIES = OWN_RECORD = -1
FILE_HEADER, EPOCH_HEADER = -1, 0
INT8, UINT16, INT32, UINT32, FLOAT, TEXT = range(6)
EXCITATORY, INHIBITORY = 0, 1
RESPONSE, STIMULUS, CONDUCTANCE = 0, 1, 2
DIGITAL_INPUT, DIGITAL_OUTPUT = 8, 4
SPIKE_THRESHOLD = -20   #: a spike crosses it upwards, where nothing else is said [mV]
STEADY_PART = 5     #: the steady state is the mean over the last of so many parts of a step


NOT_COMPUTED = -1


class Subject(IntEnum):
    """What is said of an epoch."""

    STIMULUS, JSON, DOUBT, DAMAGE = range(4)


class Weight(IntEnum):
    """How much a finding matters."""

    NOTE = 0    #: worth knowing, nothing is wrong
    DOUBT = 1   #: can be read in two ways
    FAULT = 2   #: damage


class DoubtReason(IntEnum):
    """Why a computed stimulus may not be what was played."""

    NONE = 0                #: the file determines it
    RESTS_ON_ORDER = 1      #: right if each epoch was computed once, in the file's order
    BEGAN_BEFORE_FILE = 2   #: its noise goes on behind what was computed before the first epoch
    BEHIND_UNKNOWN = 3      #: its noise goes on behind an epoch that cannot be computed
    OLD_GENERATOR = 4       #: its noise came from the recording machine's own generator
    FOLLOWED_CELL = 5       #: what was played followed the cell


class Quantity(IntEnum):
    """What an entry's own unit measures."""

    OTHER = 0       #: anything else, and whatever is not in the entry's own unit
    POTENTIAL = 1   #: volts
    CURRENT = 2     #: amperes
    ADMITTANCE = 3  #: siemens


class Problem(ctypes.Structure):
    """What went wrong."""

    _fields_ = [("code", c_int32), ("reason", c_int32), ("offset", c_int64),
                ("text", c_char * 504)]


SIZE = ctypes.CFUNCTYPE(c_int64, c_void_p)
READ = ctypes.CFUNCTYPE(c_int64, c_void_p, c_int64, c_void_p, c_int64)


class SourceFunctions(ctypes.Structure):
    """Where bytes come from, if not from a file."""

    _fields_ = [("context", c_void_p), ("size", SIZE), ("read", READ), ("close", c_void_p)]


class RecordingInfo(ctypes.Structure):
    """What is known of a recording as a whole."""

    _fields_ = [("size", c_int64), ("epochs", c_int64), ("tablePosition", c_int64),
                ("version", c_int32), ("found", c_int32), ("digest", c_uint64)]


class Place(ctypes.Structure):
    """Where an epoch was when the recording was open before."""

    _fields_ = [("epoch", c_int64), ("start", c_int64), ("end", c_int64), ("digest", c_uint64)]


class FindingRecord(ctypes.Structure):
    """Something in the file that is not as it should be."""

    _fields_ = [("offset", c_int64), ("epoch", c_int64), ("weight", c_int32),
                ("place", c_char * 64), ("found", c_char * 224), ("expected", c_char * 224)]


class FieldRecord(ctypes.Structure):
    """One field of a record."""

    _fields_ = [("name", c_char_p), ("unit", c_char_p), ("meaning", c_char_p), ("kind", c_int32),
                ("size", c_int32), ("count", c_int32), ("place", c_int32), ("isByEntry", c_int32)]


class TypeInfo(ctypes.Structure):
    """What is known of a stimulus type."""

    _fields_ = [("name", c_char_p), ("caveat", c_char_p), ("size", c_int32),
                ("isComputed", c_int32)]


class Column(ctypes.Structure):
    """A field of the epoch header and where its values go."""

    _fields_ = [("field", c_void_p), ("values", c_void_p), ("stride", c_int64)]


class EpochInfo(ctypes.Structure):
    """Where an epoch lies, and what there is to be had of it."""

    _fields_ = [("start", c_int64), ("samples", c_int64), ("end", c_int64), ("points", c_int32),
                ("entries", c_int32), ("samplingInterval", c_int32),
                ("stimulusTypes", c_int32 * ENTRIES), ("inputs", c_int32 * ENTRIES),
                ("outputs", c_int32 * ENTRIES), ("entryInterval", c_int32),
                ("digest", c_uint64)]


class Texts(ctypes.Structure):
    """A text of each of many epochs."""

    _fields_ = [("subject", c_int32), ("text", c_void_p), ("capacity", c_int64),
                ("ends", c_void_p)]


class StimulusRecord(ctypes.Structure):
    """A stimulus record of any type."""

    _fields_ = [("type", c_int32), ("components", c_int32), ("isThere", c_int32),
                ("record", c_uint8 * RECORD_SIZE)]


class DoubtRecord(ctypes.Structure):
    """A doubt about a computed stimulus."""

    _fields_ = [("reason", c_int32), ("epoch", c_int64), ("text", c_char * 248)]


class ScaleInfo(ctypes.Structure):
    """From counts to units."""

    _fields_ = [("countsPerVolt", c_double), ("gain", c_double), ("factor", c_double),
                ("isWord", c_int32), ("unit", c_char * 60), ("formula", c_char * 192),
                ("quantity", c_int32), ("si", c_double)]


class StepRecord(ctypes.Structure):
    """A step of a stimulus."""

    _fields_ = [("before", c_int64), ("start", c_int64), ("stop", c_int64), ("level", c_double)]


class CourseRecord(ctypes.Structure):
    """How a stimulus runs."""

    _fields_ = [("holding", c_double), ("start", c_int64), ("stop", c_int64), ("family", c_int64),
                ("steps", c_int32), ("longest", c_int32)]


class StepResponse(ctypes.Structure):
    """What a response does during a step."""

    _fields_ = [("baseline", c_double), ("peak", c_double), ("steady", c_double),
                ("spikes", c_int64), ("late", c_int64)]


_SAMPLES = (c_void_p, c_int64, c_int32, c_int64, c_int64, c_void_p, c_int64)
#: Arguments of each function; all but three return a result code.
FUNCTIONS: dict[str, tuple[type, ...]] = {
    "CorvantisOpen": (c_char_p, c_void_p, c_void_p),
    "CorvantisOpenSource": (c_void_p, c_char_p, c_void_p, c_void_p),
    "CorvantisOpenKnown": (c_char_p, c_void_p, c_void_p, c_void_p, c_int64, c_void_p, c_void_p),
    "CorvantisRefresh": (c_void_p, c_void_p),
    "CorvantisClose": (c_void_p,),
    "CorvantisInfo": (c_void_p, c_void_p),
    "CorvantisEpochs": (c_void_p,),
    "CorvantisFindings": (c_void_p, c_void_p, c_void_p),
    "CorvantisGetFinding": (c_void_p, c_int64, c_void_p),
    "CorvantisFields": (c_int32, c_void_p, c_void_p),
    "CorvantisType": (c_int32, c_void_p),
    "CorvantisFileHeader": (c_void_p, c_void_p),
    "CorvantisEpochHeader": (c_void_p, c_int64, c_void_p, c_void_p),
    "CorvantisColumns": (c_void_p, c_int64, c_int64, c_void_p, c_int32, c_void_p, c_void_p),
    "CorvantisEpoch": (c_void_p, c_int64, c_void_p, c_void_p),
    "CorvantisParameters": (c_void_p, c_int64, c_int32, c_int32, c_void_p, c_void_p),
    "CorvantisCounts": (*_SAMPLES, c_void_p),
    "CorvantisValues": (*_SAMPLES, c_void_p),
    "CorvantisManyCounts": (c_void_p, c_int64, c_int64, c_int32, c_int64, c_int64, c_void_p,
                            c_int64, c_void_p, c_void_p),
    "CorvantisConductance": (c_void_p, c_int64, c_int32, c_int32, c_int64, c_int64, c_void_p,
                             c_void_p),
    "CorvantisStimulus": (*_SAMPLES, c_void_p, c_void_p),
    "CorvantisStimulusValues": (*_SAMPLES, c_void_p, c_void_p),
    "CorvantisScale": (c_void_p, c_int64, c_int32, c_int32, c_void_p, c_void_p),
    "CorvantisStimulusJson": (c_void_p, c_int64, c_int32, c_void_p, c_int64, c_void_p, c_void_p),
    "CorvantisStimulusWords": (c_void_p, c_int64, c_int32, c_void_p, c_int64, c_void_p, c_void_p),
    "CorvantisDescribe": (c_void_p, c_int64, c_int64, c_void_p, c_int32, c_void_p, c_void_p,
                          c_void_p, c_void_p, c_void_p),
    "CorvantisSteps": (c_void_p, c_int64, c_int32, c_void_p, c_void_p, c_int32, c_void_p, c_void_p),
    "CorvantisMeasureStep": (c_void_p, c_int64, c_int32, c_void_p, c_double, c_void_p, c_void_p),
    "CorvantisAxisName": (c_int32, c_char_p),
    "CorvantisText": (c_char_p, c_int32, c_void_p, c_int32),
}
OTHER_RESULTS: dict[str, type | None] = {"CorvantisEpochs": c_int64, "CorvantisClose": None,
                                         "CorvantisAxisName": c_char_p}
