"""Several recordings, threads and processes over a library that holds one file."""
import contextlib
import os
import pickle
import shutil
import signal
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
    logs = {recipe: logged(recipe) for recipe in ("steps", "types")}

    def read(recipe):
        with corvantis.open(recorded(recipe)) as recording:
            return all(same(recording, logs[recipe]) for _ in range(5))

    with corvantis.open(recorded("steps")) as recording, ThreadPoolExecutor(4) as threads:
        reading = [threads.submit(read, recipe) for recipe in [*logs] * 4]
        for _ in range(20):
            child = os.fork()
            if child == 0:
                signal.alarm(20)
                os._exit(0 if all(same(recording, logs["steps"]) for _ in range(5)) else 1)
            assert all(same(recording, logs["steps"]) for _ in range(5))
            assert os.waitpid(child, 0)[1] == 0
        assert all(each.result() for each in reading)
        copied = pickle.loads(pickle.dumps(recording.epochs[1]))
        assert copied.number == 1 and same(copied.recording, logs["steps"])


def test_an_interruption_anywhere_leaves_nothing_wrong(recorded, logged):
    """Interrupted after so many lines of the package, of reading, which takes 12,000."""
    def interrupt(frame, event, argument):
        nonlocal left
        left -= "/corvantis/" in frame.f_code.co_filename
        if left == 0:
            raise KeyboardInterrupt
        return interrupt

    for left in range(1, 12_000, 83):
        with corvantis.open(recorded("types")) as recording:
            sys.settrace(interrupt)
            with contextlib.suppress(KeyboardInterrupt):
                [recording.epochs[number].raw_stimulus for number in (7, 10, 5, 1)]
            sys.settrace(None)
            assert same(recording, logged("types"))


def rewrite(other, path):
    status = path.stat()
    path.write_bytes(other.read_bytes())
    os.utime(path, ns=(status.st_atime_ns, status.st_mtime_ns))


@pytest.mark.parametrize("change", [os.replace, rewrite])
def test_another_file_of_the_name_is_not_read_as_the_old_one(change, recorded, tmp_path):
    path, other = tmp_path / "a.dat", tmp_path / "b.dat"
    shutil.copy(recorded("steps"), path)
    block = path.read_bytes()
    other.write_bytes(block[:12] + b"?" + block[13:])       # in the file's comment, of equal size
    recording = corvantis.open(path)
    pickled = pickle.dumps(recording.epochs[1])
    change(other, path)
    for read in (lambda: recording.epochs[0].raw, lambda: pickle.loads(pickled)):
        with pytest.raises(corvantis.CorvantisError, match="replaced or changed"):
            read()


def test_paths_stand_for_themselves(recorded, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    for decoy in ("plain1.dat", "abc1.dat", "a.dat", "backslash.dat"):
        shutil.copy(recorded("types"), decoy)
    for name in ("plain*.dat", "a[b]c?.dat", r"back\slash.dat", "~tilde.dat", "{a,b}.dat",
                 "Zelle μ 3.dat"):
        shutil.copy(recorded("steps"), name)
        for path in (tmp_path / name, name, os.fsencode(name)):
            with corvantis.open(path) as recording:
                assert len(recording.epochs) == 3
