"""Recordings shared by threads, processes and machines, from files and from file objects."""
import io
import os
import pickle
import shutil
import signal
import subprocess
import sys
import threading
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import numpy as np
import pytest

import corvantis


def same(recording, log):
    return all(np.array_equal(epoch.raw, acquired) and np.array_equal(epoch.raw_stimulus, played)
               for epoch, (acquired, played) in zip(recording.epochs, log, strict=True))


@pytest.mark.filterwarnings("ignore::corvantis.CorvantisWarning")
def test_threads_read_one_recording_and_several_and_children_are_forked_meanwhile(recorded, logged):
    logs = {recipe: logged(recipe) for recipe in ("steps", "types", "history-7")}
    opened = {recipe: corvantis.open(recorded(recipe)) for recipe in logs}
    opened["object"] = corvantis.open(io.BytesIO(recorded("history-7").read_bytes()))
    logs["object"] = logs["history-7"]
    with ThreadPoolExecutor(2) as threads:
        reading = [threads.submit(same, opened[recipe], logs[recipe]) for recipe in [*logs] * 6]
        for _ in range(10):
            child = os.fork()
            if child == 0:
                signal.alarm(30)
                os._exit(not all(same(opened[recipe], logs[recipe]) for recipe in logs))
            assert os.waitpid(child, 0)[1] == 0
        assert all(each.result() for each in reading)


def test_a_recording_closed_in_mid_read_is_read_to_the_end(recorded, logged):
    for _ in range(20):
        recording = corvantis.open(recorded("types"))
        epochs = list(recording.epochs)
        with ThreadPoolExecutor(1) as thread:
            reading = thread.submit(lambda: [epoch.raw for epoch in epochs])
            recording.close()
            try:
                assert all(map(np.array_equal, reading.result(), [a for a, _ in logged("types")]))
            except ValueError as error:
                assert "closed" in str(error)


class Failing(io.BytesIO):
    """Gives what it has piece by piece, and fails when it is told to."""

    error = None

    def read(self, size=-1):
        if self.error is not None:
            raise self.error
        return super().read(min(size, 1000))


def test_file_objects_and_their_failures(recorded, logged):
    file = Failing(recorded("steps").read_bytes())
    with corvantis.open(file) as recording:
        assert same(recording, logged("steps")) and not recording.findings
        with pytest.raises(TypeError, match="cannot be pickled"):
            pickle.dumps(recording)
        file.error = OSError("no tape")
        with pytest.raises(corvantis.CorvantisError) as caught:
            recording.epochs[1].raw
        assert caught.value.code == 7 and caught.value.__cause__ is file.error
        file.error = KeyboardInterrupt()
        with pytest.raises(KeyboardInterrupt):
            recording.epochs[1].raw
        file.error = None
        assert same(recording, logged("steps"))
    assert not file.closed
    with open(recorded("steps"), "rb") as stream, corvantis.open(stream) as recording:
        assert same(recording, logged("steps")) and recording.path == str(recorded("steps"))
    for bad, error in ((io.StringIO("text" * 999), corvantis.CorvantisError), (5, TypeError)):
        with pytest.raises(error):
            corvantis.open(bad)


def test_epochs_are_taken_in_while_another_process_saves_them(recorded, tmp_path):
    path = tmp_path / "growing.dat"
    writer = subprocess.Popen([sys.executable, Path(__file__).with_name("rig.py"), "growing", path],
                              stdout=subprocess.DEVNULL)
    while not path.exists() or path.stat().st_size < 600:
        assert writer.poll() is None
    recording, seen, stop = corvantis.open(path), {}, threading.Event()

    def look():
        """Another thread reads what is there."""
        while not stop.is_set():
            for epoch in recording.epochs:
                epoch.raw, epoch.raw_stimulus

    with ThreadPoolExecutor(1) as thread:
        looking = thread.submit(look)
        try:
            ended = False
            while not ended:
                ended = writer.poll() is not None
                seen |= {epoch.number: epoch.raw for epoch in recording.epochs[len(seen):]}
                assert recording.refresh() >= 0
        finally:
            stop.set()
            writer.wait()
        looking.result()
    seen |= {epoch.number: epoch.raw for epoch in recording.epochs[len(seen):]}
    with np.load(f"{path}.npz") as log:
        assert len(seen) == len(log.files) // 2 == 300
        assert all(np.array_equal(seen[number], log[f"acquired{number}"]) for number in seen)


def test_pickles_find_their_file_below_the_root_and_know_it_again(recorded, logged, tmp_path,
                                                                  monkeypatch):
    here, there = tmp_path / "here", tmp_path / "there"
    (here / "day").mkdir(parents=True)
    path = here / "day/a.dat"
    shutil.copy(recorded("steps"), path)
    corvantis.set_root(here)
    recording = corvantis.open(path)
    pickled, all_pickled = pickle.dumps(recording.epochs[1]), pickle.dumps(recording.epochs)
    assert str(tmp_path).encode() not in pickled
    here.rename(there)
    corvantis.set_root(None)
    with pytest.raises(ValueError, match="CORVANTIS_ROOT"):
        pickle.loads(pickled)
    monkeypatch.setenv("CORVANTIS_ROOT", str(there))
    epoch = pickle.loads(pickled)
    assert epoch.number == 1 and same(epoch.recording, logged("steps"))
    assert len(pickle.loads(all_pickled)) == 3
    path = there / "day/a.dat"
    other = bytearray(path.read_bytes())
    shutil.copy(recorded("types"), path)
    for change in (lambda: None, lambda: path.write_bytes(other[:600] + b"?" + other[601:])):
        change()
        with pytest.raises(corvantis.CorvantisError, match="not the file that it was") as caught:
            pickle.loads(pickled)
        assert caught.value.code == 12 and caught.value.filename == str(path)


def test_a_file_that_was_only_added_to_is_the_same(recorded, tmp_path):
    path = tmp_path / "growing.dat"
    whole = corvantis.open(recorded("steps"))
    first = bytearray(recorded("steps").read_bytes()[:whole.epochs[2]._info.start])
    first[536:544] = (2).to_bytes(4, "big") + len(first).to_bytes(4, "big")
    positions = b"".join(whole.epochs[n]._info.start.to_bytes(4, "big") for n in range(2))
    path.write_bytes(first + positions)
    recording = corvantis.open(path)
    pickled = pickle.dumps(recording.epochs[1])
    path.write_bytes(recorded("steps").read_bytes())
    assert np.array_equal(pickle.loads(pickled).raw, whole.epochs[1].raw)
    assert recording.refresh() == 1 and len(recording.epochs) == 3
    assert np.array_equal(recording.epochs[2].raw, whole.epochs[2].raw)


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
