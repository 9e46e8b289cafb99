"""Several recordings, threads and processes over a library that holds one file, and its silence."""
import multiprocessing
import os
import pickle
import shutil
import subprocess
import sys
import threading

import numpy as np
import pytest

import corvantis


def test_recordings_take_turns(recorded, logged):
    with corvantis.open(recorded("steps")) as one, corvantis.open(recorded("types")) as other:
        for number in (0, 2, 1):
            np.testing.assert_array_equal(one.epochs[number].raw, logged("steps")[number][0])
            np.testing.assert_array_equal(other.epochs[number].raw_stimulus,
                                          logged("types")[number][1])
        other.close()
        np.testing.assert_array_equal(one.epochs[1].raw, logged("steps")[1][0])
        large = corvantis.open(recorded("types")).epochs[12]     # needs larger buffers
        np.testing.assert_array_equal(large.raw, logged("types")[12][0])
        np.testing.assert_array_equal(one.epochs[2].raw, logged("steps")[2][0])


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
    failures = []

    def read(recipe):
        with corvantis.open(recorded(recipe)) as recording:
            for _ in range(5):
                for epoch, (acquired, played) in zip(recording.epochs, logged(recipe)):
                    if not (np.array_equal(epoch.raw, acquired)
                            and np.array_equal(epoch.raw_stimulus, played)):
                        failures.append((recipe, epoch.number))

    threads = [threading.Thread(target=read, args=(recipe,)) for recipe in ("steps", "types") * 2]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert failures == []


def _check_epoch(arguments):
    recording, number, acquired = arguments
    return np.array_equal(recording.epochs[number].raw, acquired)


@pytest.mark.parametrize("method", ["fork", "spawn"])
def test_worker_processes_have_files_of_their_own(method, recorded, logged):
    acquired = [pair[0] for pair in logged("steps")]
    with corvantis.open(recorded("steps")) as recording:
        work = [(recording, k % 3, acquired[k % 3]) for k in range(60)]
        with multiprocessing.get_context(method).Pool(3) as pool:
            pending = pool.map_async(_check_epoch, work)
            assert all(_check_epoch(each) for each in work)
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


def test_epochs_can_be_pickled(recorded):
    with corvantis.open(recorded("steps")) as recording:
        copy = pickle.loads(pickle.dumps(recording.epochs[1]))
        assert copy.header == recording.epochs[1].header
        copy.recording.close()


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
    with corvantis.open(tmp_path / name) as recording:
        assert len(recording.epochs) == 3
    monkeypatch.chdir(tmp_path)
    with corvantis.open(name) as recording:
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
