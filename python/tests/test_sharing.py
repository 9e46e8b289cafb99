"""Recordings shared by threads, processes and machines, from files and from file objects."""
import contextlib
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
def test_threads_read_side_by_side_while_others_close_and_children_are_forked(recorded, logged):
    logs = {recipe: logged(recipe) for recipe in ("steps", "types", "history-7")}
    opened = {recipe: corvantis.open(recorded(recipe)) for recipe in logs}
    opened["object"] = corvantis.open(io.BytesIO(recorded("history-7").read_bytes()))
    logs["object"] = logs["history-7"]
    with ThreadPoolExecutor(3) as threads:
        reading = [threads.submit(same, opened[recipe], logs[recipe]) for recipe in [*logs] * 6]
        for _ in range(10):
            closed = corvantis.open(recorded("types"))
            ended = threads.submit(same, closed, logs["types"])
            child = os.fork()
            if child == 0:
                signal.alarm(30)
                os._exit(not all(same(opened[recipe], logs[recipe]) for recipe in logs))
            closed.close()
            with contextlib.suppress(ValueError):   # closed before it was read to the end
                assert ended.result()
            assert os.waitpid(child, 0)[1] == 0
        assert all(each.result() for each in reading)


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
    path, pickled, stop = tmp_path / "growing.dat", None, threading.Event()
    writer = subprocess.Popen([sys.executable, Path(__file__).with_name("rig.py"), "growing", path],
                              stdout=subprocess.DEVNULL)
    while not path.exists() or path.stat().st_size < 600:
        assert writer.poll() is None
    recording, seen = corvantis.open(path), {}

    def look():
        while not stop.is_set():
            for epoch in recording.epochs:
                epoch.raw, epoch.raw_stimulus

    with ThreadPoolExecutor(1) as thread:
        looking, ended = thread.submit(look), False
        try:
            while not ended:
                ended = writer.poll() is not None
                recording.refresh()
                seen |= {epoch.number: epoch.raw for epoch in recording.epochs[len(seen):]}
                pickled = pickled or seen and pickle.dumps(recording.epochs[0])
        finally:
            stop.set()
            writer.wait()
        looking.result()
    with np.load(f"{path}.npz") as log:
        assert len(seen) == len(log.files) // 2 == 300
        assert all(np.array_equal(seen[number], log[f"acquired{number}"]) for number in seen)
    again = pickle.loads(pickled)       # a file that was only added to is the same
    assert len(again.recording.epochs) == 300 and np.array_equal(again.raw, seen[0])


def test_pickles_find_their_file_below_the_root_and_know_it_again(recorded, logged, tmp_path,
                                                                  monkeypatch):
    name = "Zelle μ/~a[b]*.dat"      # which stands for itself
    path = tmp_path / "here" / name
    path.parent.mkdir(parents=True)
    shutil.copy(recorded("steps"), path)
    corvantis.set_root(tmp_path / "here")
    recording = corvantis.open(path)
    pickled = pickle.dumps((recording.epochs[1], recording.epochs, recording.header))
    assert str(tmp_path).encode() not in pickled
    (tmp_path / "here").rename(tmp_path / "there")
    corvantis.set_root(None)
    with pytest.raises(ValueError, match="CORVANTIS_ROOT"):
        pickle.loads(pickled)
    monkeypatch.setenv("CORVANTIS_ROOT", str(tmp_path / "there"))
    epoch, epochs, header = pickle.loads(pickled)
    assert (epoch.number, len(epochs), header) == (1, 3, recording.header)
    assert same(epoch.recording, logged("steps"))
    path, block = tmp_path / "there" / name, recorded("steps").read_bytes()
    for other in (recorded("types").read_bytes(), block[:600] + b"?" + block[601:]):
        path.write_bytes(other)
        with pytest.raises(corvantis.CorvantisError, match="not the file that it was") as caught:
            pickle.loads(pickled)
        assert caught.value.code == 12 and caught.value.filename == str(path)
