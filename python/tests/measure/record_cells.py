"""Records model cells through the simulated interface, whose samples are those of the models:

    record_cells.py FOLDER known        cells whose figures are published, and closed forms
    record_cells.py FOLDER COUNT        as many cells, none like another, for an archive
"""
import sys
from dataclasses import replace
from pathlib import Path

import numpy as np

sys.path.insert(0, str(Path(__file__).parents[1]))
import model_cells  # noqa: E402
from rig import Rig  # noqa: E402

from corvantis import stimuli  # noqa: E402

PER_MILLIVOLT = {"ampGain": [0.1] * 4, "convFactor": [400.0] * 4, "inputUnits": [b"mV"] * 4,
                 "outputUnits": [b"pA"] * 4}
PER_PICOAMPERE = {"ampGain": [0.005] * 4, "convFactor": [20.0] * 4, "inputUnits": [b"pA"] * 4,
                  "outputUnits": [b"mV"] * 4}
COUNTS = 3200       # by volt
SIMULATED = b"SIMULATED: "


class Recorder:
    """Files of epochs whose samples are given in mV or pA."""

    def __init__(self, path):
        self.rig = Rig(str(path))

    def epoch(self, level, timing, response, fields, interval=40, mean=0.0, **more):
        """A step of a level [pA or mV] with points before, during and behind it."""
        by_count = COUNTS / fields["convFactor"][0]
        before, during, after = timing
        pulse = stimuli.Pulse(round(level * by_count), round(mean * by_count), during, after,
                              before)
        counts = np.clip(np.round(response * COUNTS * fields["ampGain"][0]), -32768, 32767)
        self.rig.epoch([pulse], interval=interval, points=sum(timing),
                       acquired=counts.astype(np.int16), **{**fields, **more})

    def close(self):
        self.rig.do("ITCCloseFile")


def step(level, timing):
    before, during, after = timing
    return np.repeat([0.0, level, 0.0], [before, during, after])


def record_models(folder):
    """The published cells, and steps next to their rheobases (560.42 and 384.18 pA)."""
    timing = 5000, 25000, 2500
    for name, cell, levels in (
            ("regular", model_cells.REGULAR, (-300, -10, 400, 560, 561, 686, 750, 1000, 1500)),
            ("fast", model_cells.FAST, (-100, -10, 300, 384, 385, 500, 750, 1000))):
        traces = model_cells.potentials(
            [cell] * len(levels), np.stack([step(level, timing) for level in levels], axis=1))
        recorder = Recorder(folder / f"{name}.dat")
        for level, trace in zip(levels, traces.T):
            recorder.epoch(level, timing, trace, PER_MILLIVOLT)
        recorder.close()


def record_closed_forms(folder):
    """A passive cell in both clamps, and epochs of which little can be measured."""
    recorder = Recorder(folder / "passive.dat")
    timing, interval = (1000, 2000, 1000), 20
    times = np.arange(3000) * interval / 1e3
    for size, access, membrane, capacitance in ((-5, 10, 200, 100), (5, 20, 100, 30)):
        def transient(time, size=size, cell=(access, membrane, capacitance)):
            return model_cells.clamp_currents(time, size, *cell)
        pulse = transient(times)
        pulse[2000:] -= transient(times[:1000])
        recorder.epoch(size, timing, np.r_[np.zeros(1000), pulse] - 20, PER_PICOAMPERE, interval)
    slow = 5000, 20000, 5000
    times = np.arange(25000) * 0.04
    charging = 200e-3 * -50 * -np.expm1(-times / 20)
    charging[20000:] -= 200e-3 * -50 * -np.expm1(-times[:5000] / 20)
    rest = np.random.default_rng(1).normal(-70, 0.05, sum(slow))
    charged = rest + np.r_[np.zeros(5000), charging]
    recorder.epoch(-50, slow, charged, PER_MILLIVOLT)
    recorder.epoch(-50, slow, charged + 9, PER_MILLIVOLT, mean=10)
    recorder.epoch(-50, slow, charged + 9, PER_MILLIVOLT, mean=10, outputUnits=[b""])
    recorder.epoch(-50, slow, 40 * rest, {**PER_MILLIVOLT, "ampGain": [0.01]})
    recorder.epoch(0, slow, rest, PER_MILLIVOLT)
    recorder.close()


def varied(count):
    """Cells of both kinds and their names."""
    choose = np.random.default_rng(1952)
    for number in range(count):
        regular = number % 5 < 3
        kind = model_cells.REGULAR if regular else model_cells.FAST
        yield "regular" if regular else "fast", replace(
            kind, area=kind.area * (0.31 if regular else 0.42) * choose.lognormal(0, 0.2),
            leak=kind.leak * choose.lognormal(0, 0.12),
            muscarinic=kind.muscarinic * choose.uniform(0.5, 1.5))


def record_archive(folder, count):
    """A test pulse in voltage clamp and steps of -100 to 500 pA in current clamp of each cell."""
    timing, levels = (2500, 15000, 2500), np.arange(-100, 501, 50)
    cells = list(varied(count))
    currents = np.stack([step(level, timing) for level in levels], axis=1)
    traces = model_cells.potentials([cell for _, cell in cells for _ in levels],
                                    np.tile(currents, count))
    noise = np.random.default_rng(6)
    times = np.arange(3000) * 0.02
    for number, (kind, cell) in enumerate(cells):
        recorder = Recorder(folder / f"cell{number:02}.dat")
        comment = SIMULATED + f"{kind} spiking cell of {cell.area:.0f} um2".encode()
        membrane = 1e5 / (cell.leak * cell.area)
        pulse = model_cells.clamp_currents(times, -5, noise.uniform(6, 15), membrane,
                                           cell.area / 100)
        recorder.epoch(-5, (1000, 3000, 0), np.r_[np.zeros(1000), pulse] +
                       noise.normal(-20, 2, 4000), PER_PICOAMPERE, 20, epochComment=comment)
        for place, level in enumerate(levels):
            trace = traces[:, number * len(levels) + place]
            recorder.epoch(level, timing, trace + noise.normal(0, 0.1, len(trace)), PER_MILLIVOLT,
                           epochTime=2.0 * (place + 1), epochComment=comment)
        recorder.close()


if __name__ == "__main__":
    folder = Path(sys.argv[1])
    if sys.argv[2] == "known":
        record_models(folder)
        record_closed_forms(folder)
    else:
        record_archive(folder, int(sys.argv[2]))
