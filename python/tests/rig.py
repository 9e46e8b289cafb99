"""Records test files on the simulated interface: `python3 rig.py RECIPE FILE`, in its own process.

The package reads through the library that records here, and the library has one state. What was
played and acquired goes to FILE.npz, so that nothing is compared with what the library reads.
"""
import ctypes
import random
import sys

import numpy as np

from corvantis import stimuli
from corvantis.headers import EpochHeader
from corvantis.layout import structure_of
from corvantis.library import find_library

# Where the library's name of a builder differs from the package's name of the stimulus.
RENAMED = {"AlternatingVoltage": "AltVoltage", "TriggerSeries": "TrigSeries",
           "FileWave": "Filewave", "DynamicClamp": "GClamp"}
LARGEST_RECORD = 64


def builder(stimulus):
    name = type(stimulus).__name__
    return RENAMED.get(name, name)


class FileWaveRecord(ctypes.Structure):
    _fields_ = [("samples", ctypes.c_void_p), ("length", ctypes.c_int32)]


def in_memory(stimulus):
    """A record as the library expects it, fields that the package does not show being 0."""
    block = ctypes.create_string_buffer(LARGEST_RECORD)
    structure = structure_of(type(stimulus)).from_buffer(block)
    for name, *_ in structure._fields_:
        setattr(structure, name, getattr(stimulus, name))
    return block


class Rig:
    """The library started with the simulated interface, writing one file."""

    def __init__(self, path, capacity=200_000):
        self.lib = find_library()
        self.simulator = ctypes.CDLL("libITC18.so.1")
        self.buffers = [(ctypes.c_uint16 * capacity)() for _ in range(2)]
        self.handles = [ctypes.pointer(ctypes.cast(b, ctypes.POINTER(ctypes.c_uint16)))
                        for b in self.buffers]
        self.kept, self.log = [], {}
        self.do("ITCInit", *self.handles, ctypes.byref(ctypes.c_int32(capacity)), 0)
        self.do("ITCCreateFile", path.encode(), 1)
        self.path = path

    def do(self, name, *arguments):
        result = getattr(self.lib, name)(*arguments)
        assert result == 0, f"{name}: {result}"

    @property
    def header(self):
        address = ctypes.c_void_p.in_dll(self.lib, "epochhdr").value
        return structure_of(EpochHeader).from_address(address)

    def install(self, slot, stimulus):
        if isinstance(stimulus, stimuli.Summed):
            record = ctypes.create_string_buffer(260 + 256 * ctypes.sizeof(ctypes.c_void_p) + 8)
            ctypes.c_int32.from_buffer(record).value = len(stimulus.components)
            self.do("ITCSummedParams", slot, record)
            for each in stimulus.components:
                name = builder(each).replace("AltVoltage", "AltVolt")
                self.do(f"ITCAdd{name}Params", slot, self.record(each))
        elif isinstance(stimulus, stimuli.Generic):
            self.do("ITCGenericParams", in_memory(stimulus))
        else:
            latency = [10] if isinstance(stimulus, stimuli.DynamicClamp) else []
            self.do(f"ITC{builder(stimulus)}Params", slot, self.record(stimulus), *latency)

    def record(self, stimulus):
        if isinstance(stimulus, stimuli.FileWave):
            points = self.header.epochPoints
            wave = (ctypes.c_uint16 * points)(*range(100, 100 + points))
            self.kept.append(wave)
            return ctypes.byref(FileWaveRecord(ctypes.addressof(wave), points))
        if isinstance(stimulus, stimuli.TriggerSeries):
            return (ctypes.c_int32 * 9)(0, 1000, 10, self.header.epochPoints, 0, 0)
        if isinstance(stimulus, stimuli.DynamicClamp) and stimulus.excitatory is not None:
            for name, values in (("ExcitatoryG", stimulus.excitatory),
                                 ("InhibitoryG", stimulus.inhibitory)):
                ctypes.c_void_p.in_dll(self.lib, name).value = values.ctypes.data
        return in_memory(stimulus)

    def epoch(self, played, inputs="0", outputs=None, interval=100, points=200, computed=True,
              **fields):
        """Play stimuli, one for each sequence entry, and save what the interface acquired."""
        self.do("ITCSetSeq", inputs.encode(), (outputs or "0123"[:len(inputs)]).encode())
        self.do("ITCSetAcqParams", interval, max(points, 1), 1, 2)
        self.header.epochPoints = points
        for slot, stimulus in enumerate(played):
            self.install(slot, stimulus)
        for name, value in fields.items():
            self.set_field(name, value)
        count = points * len(inputs)
        if computed:
            self.do("ITCUpdateStm")
        if computed and points:
            self.do("ITCInitAcq")
            device = ctypes.c_void_p.in_dll(self.lib, "itc")
            assert self.simulator.ITC18Simulator_Play(device, self.buffers[1], self.buffers[0],
                                                      points) == 0
        number = len(self.log) // 2
        for name, buffer in zip(("acquired", "played"), self.buffers):
            samples = np.frombuffer(buffer, dtype=np.int16)[:count]
            self.log[f"{name}{number}"] = samples.reshape(points, -1).copy() if count else samples
        self.do("ITCSaveToFile")

    def set_field(self, name, value):
        """Set a header field, or the first elements of one that is an array."""
        field = getattr(self.header, name)
        if not isinstance(value, list):
            setattr(self.header, name, value.encode() if isinstance(value, str) else value)
        elif isinstance(value[0], str):
            for text, each in zip(field, value):
                text.value = each.encode()
        else:
            field[:len(value)] = value

    def close(self):
        self.do("ITCCloseFile")
        np.savez(self.path + ".npz", **self.log)


CLAMP = {"ampGain": [0.01] * 4, "convFactor": [400] * 4, "inputUnits": ["mV"] * 4,
         "outputUnits": ["pA"] * 4}


def pulse(amplitude, points=200):
    return stimuli.Pulse(amplitude, 0, points // 2, points - points // 2 - points // 4,
                         points // 4)


def steps(rig):
    """A family of current steps with units, comments and settings."""
    for number, amplitude in enumerate((-800, 400, 1600)):
        rig.epoch([pulse(amplitude, 4000)], interval=50, points=4000, epochTime=number / 2,
                  epochComment=f"step {number}", temperature=6.25, userValue=[1.5, -2.0],
                  ledSetting=[7, 65535], **CLAMP)


def types(rig):
    """Every type that is computed, alone or in sums, in sequences of one to four entries."""
    whole = dict(tailPoints=20, prePoints=30)
    sine = stimuli.Sine(500, 100, 40, 7, 150, **whole)
    ramp = stimuli.Ramp(1000, -50, 150, **whole)
    noise = stimuli.Noise(300, 20, 5, 150, **whole, smoothingPoints=4, cutoffFrequency=1000,
                          filterOrder=2)
    segmented = stimuli.SegmentedNoise(300, 0, 9, 150, **whole, segmentPoints=10)
    binary = stimuli.BinaryNoise(300, 0, 3, 150, **whole, segmentPoints=7)
    alternating = stimuli.AlternatingVoltage(11, 700, -300, 150, **whole)
    clamp = stimuli.DynamicClamp(0.0, -80.0, np.linspace(0, 3, 200, dtype=np.float32),
                                 np.linspace(9, 4, 200, dtype=np.float32))
    for each in (sine, noise, pulse(300), ramp, binary, alternating, stimuli.Spatial(200),
                 segmented, clamp):
        rig.epoch([each])
    rig.epoch([noise, clamp, ramp], "012")
    rig.epoch([stimuli.Summed((sine, ramp, noise)), pulse(50), binary, sine], "0123")
    rig.epoch([pulse(80), sine], "4D", "3D", **CLAMP)
    rig.epoch([pulse(5, 120_000)], points=120_000)


def unstored(rig):
    """Types without bytes on file, each followed by a pulse; types without a waveform."""
    for each in (stimuli.FileWave(), stimuli.TriggerSeries()):
        rig.epoch([each], **CLAMP)
        rig.epoch([pulse(321)], **CLAMP)
    rig.epoch([stimuli.Generic(1, 2, 150, 20, 30)], computed=False)
    rig.epoch([stimuli.CirclePulse(1, 2, 3, (4, 5, 6), (7, 8, 9), 150, 20, 30)], computed=False)
    rig.epoch([pulse(-321)])


def lost(rig):
    """Noise behind noise that is computed with a wave that is not stored, or not at all."""
    segmented = stimuli.SegmentedNoise(300, 0, 9, 150, 20, 30, segmentPoints=10)
    rig.epoch([segmented])
    rig.epoch([stimuli.Summed((stimuli.FileWave(), segmented))])
    rig.epoch([segmented])
    rig.epoch([stimuli.Generic(1, 2, 150, 20, 30), segmented], "01", computed=False)
    rig.epoch([segmented])


def history(rig, seed, version=8):
    """Noise of every kind and seed, alone and in sums, over one to four entries."""
    choose = random.Random(seed)
    ctypes.c_int8.from_address(ctypes.c_void_p.in_dll(rig.lib, "filehdr").value).value = version

    def noise():
        points = choose.choice((60, 63, 64, 128, 300))
        runs = choose.choice((0, 5, -7, -9, -2**31, 12)), points, 321 - points, 80
        kind = choose.choice((stimuli.Noise, stimuli.SegmentedNoise, stimuli.BinaryNoise))
        if kind is stimuli.Noise:
            return kind(500, 7, *runs, choose.choice((4, 5)), 1000, 1)
        return kind(500, 7, *runs, choose.choice((5, 20, 60, 100)))

    def entry():
        components = stimuli.Summed((noise(), pulse(9, 401), noise()))
        return choose.choice((noise(), noise(), components, pulse(80, 401)))

    rig.epoch([stimuli.Noise(500, 7, -seed, 300, 21, 80, 4, 1000, 1)], points=401)
    for _ in range(40):
        played = [entry() for _ in range(choose.choice((1, 1, 1, 2, 4)))]
        rig.epoch(played, "0123"[:len(played)], points=401)


def odd(rig):
    """Epochs without points, without usable factors, and of another text encoding."""
    rig.epoch([pulse(0, 0)], points=0)
    rig.epoch([pulse(100)], ampGain=[0.0], convFactor=[float("inf")], inputUnits=["mV"])
    rig.epoch([pulse(100)], "01"[:1], epochTime=float("nan"))
    rig.header.epochComment = "\N{MICRO SIGN} in Mac Roman".encode("mac_roman")
    rig.epoch([pulse(100)], inputUnits=["sixteen letters!"], ampGain=[1.0])


def empty(rig):
    """A file without epochs."""


def many(rig):
    """2,000 short epochs of 30 settings."""
    for number in range(2000):
        rig.epoch([pulse(number)], interval=100 + number % 30, points=200)


if __name__ == "__main__":
    rig = Rig(sys.argv[2])
    name, *numbers = sys.argv[1].split("-")
    globals()[name](rig, *map(int, numbers))
    rig.close()
