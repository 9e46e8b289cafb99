"""Records test files on the simulated interface: `python3 rig.py RECIPE[-NUMBER...] FILE`.

In a process of its own, for the library has one state. FILE.npz gets what was played and acquired.
"""
import ctypes
import os
import random
import sys

import numpy as np

from corvantis import stimuli
from corvantis.interface import EPOCH_HEADER, TEXT
from corvantis.records import fields_of

# Where the library's name of a builder differs from the package's name of the stimulus.
RENAMED = {stimuli.AlternatingVoltage: "AltVoltage", stimuli.TriggerSeries: "TrigSeries",
           stimuli.FileWave: "Filewave", stimuli.DynamicClamp: "GClamp"}
CAPACITY = 200_000
KINDS = ctypes.c_int8, ctypes.c_uint16, ctypes.c_int32, ctypes.c_uint32, ctypes.c_float


def structure_of(record):
    """A header or stimulus record as C has it in memory."""
    def kind(field):
        one = ctypes.c_char * field.size if field.kind == TEXT else KINDS[field.kind]
        return one * field.count if field.count > 1 else one
    return type("Record", (ctypes.Structure,), {
        "_fields_": [(name, kind(field)) for name, field in fields_of(record).items()]})


HEADER = structure_of(EPOCH_HEADER)


class Rig:
    """The library started with the simulated interface, writing one file."""

    def __init__(self, path):
        self.lib = ctypes.CDLL(os.environ["CORVANTIS_LIBRARY"])
        self.simulator = ctypes.CDLL("libITC18.so.1")
        self.buffers = [np.zeros(CAPACITY, dtype=np.int16) for _ in range(2)]
        self.addresses = [ctypes.c_void_p(buffer.ctypes.data) for buffer in self.buffers]
        self.log = {}
        self.do("ITCInit", *map(ctypes.byref, self.addresses),
                ctypes.byref(ctypes.c_int32(CAPACITY)), 0)
        self.do("ITCCreateFile", path.encode(), 1)

    def do(self, name, *arguments):
        result = getattr(self.lib, name)(*arguments)
        assert result == 0, f"{name}: {result}"

    def pointer(self, name):
        return ctypes.c_void_p.in_dll(self.lib, name)

    @property
    def header(self):
        return HEADER.from_address(self.pointer("epochhdr").value)

    def install(self, slot, stimulus, verb=""):
        name = RENAMED.get(type(stimulus), type(stimulus).__name__)
        where = [] if isinstance(stimulus, stimuli.Generic) else [slot]
        latency = [10] if isinstance(stimulus, stimuli.DynamicClamp) else []
        self.do(f"ITC{verb}{name}Params", *where, self.record(stimulus), *latency)
        for each in getattr(stimulus, "components", ()):
            self.install(slot, each, "Add")

    def record(self, stimulus):
        """A record as the library expects it, fields that the package does not show being 0."""
        points = self.header.epochPoints
        block = ctypes.create_string_buffer(4096)
        if isinstance(stimulus, stimuli.FileWave):
            return (ctypes.c_void_p * 2)(self.buffers[0].ctypes.data, points)
        if isinstance(stimulus, stimuli.TriggerSeries):
            return (ctypes.c_int32 * 9)(0, 1000, 10, points, 0, 0)
        if isinstance(stimulus, stimuli.Summed):
            ctypes.c_int32.from_buffer(block).value = len(stimulus.components)
            return block
        if isinstance(stimulus, stimuli.DynamicClamp):
            self.pointer("ExcitatoryG").value = stimulus.excitatory.ctypes.data
            self.pointer("InhibitoryG").value = stimulus.inhibitory.ctypes.data
        structure = structure_of(stimulus.type).from_buffer(block)
        for name, *_ in structure._fields_:
            setattr(structure, name, getattr(stimulus, name))
        return block

    def epoch(self, played, inputs="0", outputs=None, interval=100, points=200, computed=True,
              acquired=None, **fields):
        """Play stimuli, one for each sequence entry, and save what the interface acquired, or what
        is given instead of it."""
        self.do("ITCSetSeq", inputs.encode(), (outputs or "0123"[:len(inputs)]).encode())
        self.do("ITCSetAcqParams", interval, max(points, 1), 1, 2)
        self.header.epochPoints = points
        for slot, stimulus in enumerate(played):
            self.install(slot, stimulus)
        for name, value in fields.items():
            if isinstance(value, list):     # the first elements of an array
                value = type(getattr(self.header, name))(*(
                    (ctypes.c_char * 16)(*each) if isinstance(each, bytes) else each
                    for each in value))
            setattr(self.header, name, value)
        if computed:
            self.do("ITCUpdateStm")
        if computed and points:
            self.do("ITCInitAcq")
            self.simulator.ITC18Simulator_Play(self.pointer("itc"), *self.addresses[::-1], points)
        if acquired is not None:
            self.buffers[0][:points * len(inputs)] = np.ravel(acquired)
        number = len(self.log) // 2
        for name, buffer in zip(("acquired", "played"), self.buffers):
            samples = buffer[:points * len(inputs)].reshape(points, len(inputs))
            self.log[f"{name}{number}"] = samples.copy()
        self.do("ITCSaveToFile")


CLAMP = {"ampGain": [0.01] * 4, "convFactor": [400] * 4, "inputUnits": [b"mV"] * 4,
         "outputUnits": [b"pA"] * 4}
WHOLE = 150, 20, 30
SEGMENTED = stimuli.SegmentedNoise(300, 0, 9, *WHOLE, segmentPoints=10)


def pulse(amplitude, points=200):
    return stimuli.Pulse(amplitude, 0, points // 2, points - points // 2 - points // 4,
                         points // 4)


def steps(rig):
    """A family of current steps with units, comments and settings."""
    for number, amplitude in enumerate((-800, 400, 1600)):
        rig.epoch([pulse(amplitude, 4000)], interval=50, points=4000, epochTime=number / 2,
                  epochComment=b"step %d" % number, temperature=6.25, userValue=[1.5, -2.0],
                  ledSetting=[7, 65535], **CLAMP)


def types(rig):
    """Every type that is computed, alone or in sums, in sequences of one to four entries."""
    sine = stimuli.Sine(500, 100, 40, 7, *WHOLE)
    ramp = stimuli.Ramp(1000, -50, *WHOLE)
    noise = stimuli.Noise(300, 20, 5, *WHOLE, 4, cutoffFrequency=1000, filterOrder=2)
    binary = stimuli.BinaryNoise(300, 0, 3, *WHOLE, segmentPoints=7)
    clamp = stimuli.DynamicClamp(0.0, -80.0, np.linspace(0, 3, 200, dtype=np.float32),
                                 np.linspace(9, 4, 200, dtype=np.float32))
    for each in (sine, noise, pulse(300), ramp, binary, SEGMENTED, clamp, stimuli.Spatial(200),
                 stimuli.AlternatingVoltage(11, 700, -300, *WHOLE)):
        rig.epoch([each])
    rig.epoch([noise, clamp, ramp], "012")
    rig.epoch([stimuli.Summed((sine, ramp, noise)), pulse(50), binary, sine], "0123")
    rig.epoch([pulse(80), sine], "4D", "3D", ampGain=[1.0, 0.01], convFactor=[1, 400],
              inputUnits=[b"V", b"mV"], outputUnits=[b"V", b"pA"])
    rig.epoch([pulse(80), sine], "40", "32", **{**CLAMP, "ampGain": [0.01, 0.5]})
    rig.epoch([pulse(5, 120_000)], points=120_000)


def unstored(rig):
    """Types without bytes on file, each followed by a pulse; types without a waveform; noise behind
    noise that is computed with a wave that is not stored, or not at all."""
    for each in (stimuli.FileWave(), stimuli.TriggerSeries()):
        rig.epoch([each], **CLAMP)
        rig.epoch([pulse(321)], **CLAMP)
    rig.epoch([stimuli.CirclePulse(1, 2, 3, (4, 5, 6), (7, 8, 9), *WHOLE)], computed=False)
    rig.epoch([SEGMENTED])
    rig.epoch([stimuli.Summed((stimuli.FileWave(), SEGMENTED))])
    rig.epoch([SEGMENTED])
    rig.epoch([stimuli.Generic(1, 2, *WHOLE), SEGMENTED], "01", computed=False)
    rig.epoch([SEGMENTED])


def history(rig, seed, version=8):
    """Noise of every kind and seed, alone and in sums, over one to four entries."""
    choose = random.Random(seed)
    ctypes.c_int8.from_address(rig.pointer("filehdr").value).value = version

    def noise():
        points = choose.choice((60, 63, 64, 128, 300))
        runs = choose.choice((0, 5, -7, -9, -2**31, 12)), points, 321 - points, 80
        last = choose.choice((5, 20, 60, 100))
        return choose.choice((stimuli.Noise(500, 7, *runs, choose.choice((4, 5)), 1000, 1),
                              stimuli.SegmentedNoise(500, 7, *runs, last),
                              stimuli.BinaryNoise(500, 7, *runs, last)))

    def entry():
        components = stimuli.Summed((noise(), pulse(9, 401), noise()))
        return choose.choice((noise(), noise(), components, pulse(80, 401)))

    rig.epoch([stimuli.Noise(500, 7, -seed, 300, 21, 9680, 4, 1000, 1)], points=10_001)
    for _ in range(40):
        played = [entry() for _ in range(choose.choice((1, 1, 1, 2, 4)))]
        rig.epoch(played, "0123"[:len(played)], points=401)


def clamps(rig):
    """Every kind of entry that an archive tells apart, at intervals and lengths of its own."""
    conductances = (np.linspace(start, 4, 120, dtype=np.float32) for start in (0, 9))
    rig.epoch([pulse(1600, 400)], interval=50, points=400, epochTime=1.5, temperature=32.0,
              epochComment=b"current", userValue=[20.0, 0.25], ampMode=[1], **CLAMP)
    rig.epoch([pulse(800, 300)], "3", "2", interval=100, points=300, epochTime=2.25, ampMode=[2],
              ampGain=[0.001], convFactor=[20], inputUnits=[b"pA"], outputUnits=[b"mV"])
    rig.epoch([stimuli.DynamicClamp(0.0, -80.0, *conductances)], points=120, epochTime=3.0,
              **CLAMP)
    rig.epoch([stimuli.Spatial(80)], points=80, epochTime=4.0, outputUnits=[b""], ampMode=[0])
    rig.epoch([pulse(320), pulse(7), pulse(64)], "04D", "01D", interval=100, epochTime=5.0,
              ampGain=[0.01, 0.5], convFactor=[400, 1], inputUnits=[b"mV", b"deg"],
              outputUnits=[b"pA", b"V"], ampMode=[1, 0])
    rig.epoch([pulse(50)], epochTime=6.0, inputUnits=[b""], outputUnits=[b""])


def odd(rig):
    """Epochs without points or entries, without usable factors, with texts that are not plain."""
    rig.epoch([pulse(0, 0)], points=0)
    rig.epoch([pulse(100)], ampGain=[0.0], convFactor=[float("inf")], inputUnits=[b"mV"])
    rig.epoch([pulse(100)], epochComment="Ω $\\frac{$".encode("mac_roman"),
              ampGain=[1.0], inputUnits=[b"$\\frac{$"], epochTime=float("nan"))
    rig.epoch([], points=1, computed=False, sequenceLength=0, epochPoints=2**31 - 1)


def growing(rig):
    """Many epochs, for those who read meanwhile."""
    for number in range(300):
        rig.epoch([pulse(10 * number)], epochTime=number)


def empty(_):
    """A file without epochs."""


if __name__ == "__main__":
    rig = Rig(sys.argv[2])
    name, *numbers = sys.argv[1].split("-")
    globals()[name](rig, *map(int, numbers))
    rig.do("ITCCloseFile")
    np.savez(sys.argv[2] + ".npz", **rig.log)
