"""Measures the Python package on recordings of many and of large epochs, and prints a table.

    reading.py [FOLDER]

The recordings are made in FOLDER, or a temporary one, unless they are there; the libraries are
those of CORVANTIS_LIBRARY and CORVANTIS_READING_LIBRARY, else of the release build. A figure is the
median of five runs, whose order is mixed.
"""
import os
import random
import statistics
import subprocess
import sys
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import numpy as np

ROOT = Path(__file__).resolve().parents[1]
BUILD = ROOT / "build/release"
os.environ.setdefault("CORVANTIS_LIBRARY", str(BUILD / "itc-code/libCorvantis.so"))
os.environ.setdefault("CORVANTIS_READING_LIBRARY", str(BUILD / "reading/libCorvantisReading.so.1"))
sys.path[:0] = [str(ROOT / "python"), str(ROOT / "python/tests")]

REPETITIONS = 5
# Name, epochs, points of each.
RECORDINGS = {"small": (100_000, 100), "large": (2_000, 20_000), "noise": (2_000, 20_000)}


def record(path, name):
    """A recording whose epochs are all alike."""
    from corvantis import stimuli
    from rig import CLAMP, Rig, pulse
    epochs, points = RECORDINGS[name]
    played = pulse(400, points)
    if name == "noise":
        played = stimuli.Noise(300, 20, 5, points, 0, 0, 4, cutoffFrequency=1000, filterOrder=2)
    rig = Rig(path)
    rig.epoch([played], points=points, **CLAMP)
    for _ in range(1, epochs):
        rig.do("ITCSaveToFile")
    rig.do("ITCCloseFile")


def recordings(folder):
    """Paths by name; each is made in a process of its own, for the library has one state."""
    paths = {name: Path(folder) / f"{name}.dat" for name in RECORDINGS}
    for name, path in paths.items():
        if not path.exists():
            subprocess.run([sys.executable, __file__, "--record", path, name], check=True,
                           stdout=subprocess.DEVNULL)
    return paths


def jobs(paths):
    """What is measured: by description."""
    import corvantis
    small, large, noise = (corvantis.open(path) for path in paths.values())

    def stimuli(threads):
        epochs = list(noise.epochs)
        with ThreadPoolExecutor(threads) as pool:
            for _ in pool.map(lambda epoch: epoch.read_stimulus(raw=True).size, epochs):
                pass

    def found():
        with corvantis.open(paths["small"]) as recording:
            assert len(recording.epochs) == RECORDINGS["small"][0]

    return {
        "find 100,000 epochs of 100 points": found,
        "their counts, one epoch after the other": lambda: [None for epoch in small.epochs
                                                            if epoch.raw is None],
        "three header fields of all": lambda: small.columns("temperature", "epochTime", "ampGain"),
        "2,000 epochs of 20,000 points as one array": large.counts,
        "numpy.fromfile and byteswap of that file": lambda: np.fromfile(
            paths["large"], ">i2").byteswap(inplace=True),
        "2,000 noise stimuli of 20,000 points, one thread": lambda: stimuli(1),
        "the same, two threads": lambda: stimuli(2),
    }


def measured(work):
    """Seconds."""
    start = time.perf_counter()
    work()
    return time.perf_counter() - start


def main(folder):
    todo = jobs(recordings(folder))
    runs = [name for name in todo for _ in range(REPETITIONS)]
    random.Random(1).shuffle(runs)
    for work in list(todo.values())[:5]:
        work()      # what is read is in memory
    times = {name: [] for name in todo}
    for name in runs:
        times[name].append(measured(todo[name]))
    for name, values in times.items():
        print(f"{name:52} {statistics.median(values) * 1e3:10.1f} ms")


if __name__ == "__main__":
    if sys.argv[1:2] == ["--record"]:
        record(sys.argv[2], sys.argv[3])
    elif len(sys.argv) > 1:
        Path(sys.argv[1]).mkdir(parents=True, exist_ok=True)
        main(sys.argv[1])
    else:
        with tempfile.TemporaryDirectory() as temporary:
            main(temporary)
