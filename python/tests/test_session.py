"""Several recordings, threads and processes over a library that holds one file, and its silence."""
import contextlib
import ctypes
import os
import pickle
import shutil
import signal
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

import corvantis


def same(recording, log):
    return all(np.array_equal(epoch.raw, acquired) and np.array_equal(epoch.raw_stimulus, played)
               for epoch, (acquired, played) in zip(recording.epochs, log, strict=True))


def test_threads_take_turns_and_children_are_forked_meanwhile(recorded, logged):
    """A forked child has a file of its own, and waits for no lock that a thread held."""
    logs = {recorded(recipe): logged(recipe) for recipe in ("steps", "types")}

    def read(path):
        with corvantis.open(path) as recording:
            return all(same(recording, logs[path]) for _ in range(5))

    with corvantis.open(recorded("steps")) as recording, ThreadPoolExecutor(4) as threads:
        steps = logged("steps")
        reading = [threads.submit(read, path) for path in [*logs] * 4]
        for alone in [False] * 20 + [True] * 10:
            if alone:
                assert all(each.result() for each in reading) and same(recording, steps)
            child = os.fork()
            if child == 0:
                signal.alarm(20)
                os._exit(0 if all(same(recording, steps) for _ in range(5)) else 1)
            assert all(same(recording, steps) for _ in range(5))
            assert os.waitpid(child, 0)[1] == 0
        copied = pickle.loads(pickle.dumps(recording.epochs[1]))
        assert copied.number == 1 and same(copied.recording, steps)


def test_an_interruption_anywhere_leaves_nothing_wrong(recorded, logged):
    """Interrupted at every so many lines of the package, until it gets to the end."""
    left, lines = 0, 1

    def interrupt(frame, event, argument):
        nonlocal left
        if "corvantis" not in frame.f_code.co_filename:
            return None
        left -= 1
        if left == 0:
            raise KeyboardInterrupt
        return interrupt

    played = [pair[1] for pair in logged("types")]
    recording = corvantis.open(recorded("types"))
    while left <= 0:
        left, lines = lines, lines + 83
        sys.settrace(interrupt)
        with contextlib.suppress(KeyboardInterrupt):
            [recording.epochs[number].raw_stimulus for number in (7, 10, 5, 1)]
        sys.settrace(None)
        for number in (10, 9, 1):
            np.testing.assert_array_equal(recording.epochs[number].raw_stimulus, played[number])
        if lines % 2:
            recording = corvantis.open(recorded("types"))
    assert lines > 1000


def rewrite(other, path):
    status = path.stat()
    path.write_bytes(other.read_bytes())
    os.utime(path, ns=(status.st_atime_ns, status.st_mtime_ns))


@pytest.mark.parametrize("change", [os.replace, rewrite])
@pytest.mark.parametrize("elsewhere", [False, True])
def test_another_file_of_the_name_is_not_read_as_the_old_one(change, elsewhere, recorded, tmp_path):
    path, other = tmp_path / "a.dat", tmp_path / "b.dat"
    shutil.copy(recorded("steps"), path)
    block = path.read_bytes()
    other.write_bytes(block[:12] + b"?" + block[13:])       # in the file's comment, of equal size
    recording = corvantis.open(path)
    pickled = pickle.dumps(recording.epochs[1])
    with corvantis.open(recorded("types")) as third:
        assert not elsewhere or third.epochs[0].raw.size
        change(other, path)
        for read in (lambda: recording.epochs[0].raw, lambda: pickle.loads(pickled)):
            with pytest.raises(corvantis.CorvantisError, match="replaced or changed"):
                read()


def test_reading_over_and_over_takes_no_memory(recorded):
    counted = ctypes.CDLL(None).mallinfo2       # ten numbers, the eighth being bytes in use
    counted.restype = type("", (ctypes.Structure,), {"_fields_": [("all", ctypes.c_size_t * 10)]})

    def read(times):
        for _ in range(times):
            epoch = recording.epochs[10]        # a sum and others
            epoch.raw, epoch.raw_stimulus, epoch.stimuli
        return counted().all[7]
    with corvantis.open(recorded("types")) as recording:
        assert abs(read(200) - read(20)) < 10_000


def test_nothing_reaches_standard_output(recorded):
    """Not at once, nor when C's buffers are flushed at the end, and Python's own lines survive."""
    program = ("import sys, corvantis\n"
               "for path in sys.argv[1:]:\n"
               "    for epoch in corvantis.open(path).epochs:\n"
               "        print(epoch.number, *map(len, (epoch.stimulus, epoch.stimuli)))\n")
    done = subprocess.run([sys.executable, "-c", program, recorded("steps"), recorded("types")],
                          capture_output=True, text=True, check=True)
    assert len(done.stdout.splitlines()) == 3 + 14 and done.stderr == ""


@pytest.mark.parametrize("name", ["plain*.dat", "a[b]c?.dat", r"back\slash.dat", "~tilde.dat",
                                  "{a,b}.dat", "Zelle μ 3.dat"])
def test_paths_stand_for_themselves(name, recorded, tmp_path, monkeypatch):
    for decoy in ("plain1.dat", "abc1.dat", "a.dat", "backslash.dat"):
        shutil.copy(recorded("types"), tmp_path / decoy)
    shutil.copy(recorded("steps"), tmp_path / name)
    monkeypatch.chdir(tmp_path)
    for path in (tmp_path / name, name, os.fsencode(name)):
        with corvantis.open(path) as recording:
            assert len(recording.epochs) == 3
