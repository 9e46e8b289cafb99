"""Several recordings, threads and processes over a library that holds one file, and its silence."""
import multiprocessing
import os
import shutil
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

import corvantis


def test_closing(recorded):
    recording = corvantis.open(recorded("steps"))
    kept = recording.epochs[0]
    response = kept.response
    recording.close()
    recording.close()
    assert kept.response is response
    for action in (lambda: kept.stimulus, lambda: recording.epochs[0]):
        with pytest.raises(ValueError, match="closed"):
            action()


def test_threads_take_turns(recorded, logged):
    def read(recipe):
        with corvantis.open(recorded(recipe)) as recording:
            for _ in range(5):
                for epoch, (acquired, played) in zip(recording.epochs, logged(recipe)):
                    np.testing.assert_array_equal(epoch.raw, acquired)
                    np.testing.assert_array_equal(epoch.raw_stimulus, played)

    with ThreadPoolExecutor(4) as threads:
        list(threads.map(read, ("steps", "types") * 2))


def _check_epoch(epoch, acquired):
    return np.array_equal(epoch.raw, acquired)


@pytest.mark.parametrize("method", ["fork", "spawn"])
def test_worker_processes_have_files_of_their_own(method, recorded, logged):
    acquired = [pair[0] for pair in logged("steps")]
    with corvantis.open(recorded("steps")) as recording:
        work = [(recording.epochs[k % 3], acquired[k % 3]) for k in range(60)]
        with multiprocessing.get_context(method).Pool(3) as pool:
            pending = pool.starmap_async(_check_epoch, work)
            assert all(_check_epoch(*each) for each in work)
            assert all(pending.get(60))


def test_a_forked_child_leaves_the_parents_file_position_alone(recorded, logged):
    with corvantis.open(recorded("steps")) as recording:
        recording.epochs[0].raw
        child = os.fork()
        if child == 0:
            fine = np.array_equal(recording.epochs[2].raw, logged("steps")[2][0])
            recording.close()
            os._exit(0 if fine else 1)
        for number in (1, 2, 0) * 20:
            assert np.array_equal(recording.epochs[number].raw, logged("steps")[number][0])
        assert os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 0


def test_nothing_reaches_standard_output(recorded):
    """Not at once, nor when C's buffers are flushed at the end, and Python's own lines survive."""
    program = ("import sys, corvantis\n"
               "for path in sys.argv[1:]:\n"
               "    with corvantis.open(path) as recording:\n"
               "        for epoch in recording.epochs:\n"
               "            print(epoch.number)\n"
               "            epoch.response, epoch.stimuli, epoch.stimulus\n")
    done = subprocess.run([sys.executable, "-c", program, recorded("steps"), recorded("types")],
                          capture_output=True, text=True, check=True)
    assert done.stdout.split() == [str(number) for count in (3, 13) for number in range(count)]
    assert done.stderr == ""


@pytest.mark.parametrize("name", ["plain*.dat", "a[b]c?.dat", r"back\slash.dat", "~tilde.dat",
                                  "{a,b}.dat", "Zelle μ 3.dat"])
def test_paths_stand_for_themselves(name, recorded, tmp_path, monkeypatch):
    for decoy in ("plain1.dat", "abc1.dat", "a.dat", "backslash.dat"):
        shutil.copy(recorded("types"), tmp_path / decoy)
    shutil.copy(recorded("steps"), tmp_path / name)
    monkeypatch.chdir(tmp_path)
    for path in (tmp_path / name, name):
        with corvantis.open(path) as recording:
            assert len(recording.epochs) == 3


def test_a_file_that_was_replaced_is_not_read_as_the_old_one(recorded, tmp_path):
    path = tmp_path / "a.dat"
    shutil.copy(recorded("steps"), path)
    with corvantis.open(path) as recording, corvantis.open(recorded("types")) as other:
        assert len(recording.epochs) == 3
        assert len(other.epochs) == 13
        os.replace(shutil.copy(recorded("types"), tmp_path / "b.dat"), path)
        with pytest.raises(corvantis.CorvantisError, match="replaced"):
            recording.epochs[0].raw
        assert other.epochs[0].raw.size == 200
