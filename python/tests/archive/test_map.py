"""The same result to the byte, whoever works on it and whatever happens to them."""
import os
import signal
import socket
import subprocess
import sys
import threading
import time
from contextlib import contextmanager

import pytest

import corvantis.archive

pytest.importorskip("distributed")


def measure(slow=0.0, fatal=None):
    """A function for map: means and words of the epochs; in one file it ends its process, and of
    the damaged one it has nothing to say."""
    def means(recording, rows):
        import os
        import signal
        import time
        time.sleep(slow)
        if fatal and recording.path.endswith(fatal):
            os.kill(os.getpid(), signal.SIGKILL)
        if recording.path.endswith("damaged.dat"):
            raise ValueError("two epochs are missing")
        return [{"epoch": number, "mean": float(recording.epochs[number].response.mean()),
                 "words": words if number % 2 else None}
                for number, words in zip(*(rows[name].to_pylist()
                                           for name in ("epoch", "stimulus")))]
    return means


@contextmanager
def scheduler(port, **settings):
    """A Dask scheduler of its own process; gives the process."""
    with open(os.devnull, "w") as nowhere:
        process = subprocess.Popen(
            [sys.executable, "-m", "distributed.cli.dask_scheduler", "--host", "127.0.0.1",
             "--port", str(port), "--no-dashboard"], stdout=nowhere, stderr=nowhere,
            env={**os.environ, **settings})
        try:
            yield process
        finally:
            process.terminate()
            process.wait()


@contextmanager
def workers(address, count, *options):
    """Dask workers, each a process; gives the processes."""
    with open(os.devnull, "w") as nowhere:
        every = [subprocess.Popen(
            [sys.executable, "-m", "distributed.cli.dask_worker", address, "--nthreads", "1",
             "--no-dashboard", *options], stdout=nowhere, stderr=nowhere) for _ in range(count)]
        try:
            yield every
        finally:
            for each in every:
                each.terminate()
            for each in every:
                each.wait()


def free_port():
    with socket.socket() as taken:
        taken.bind(("127.0.0.1", 0))
        return taken.getsockname()[1]


@pytest.fixture
def many(archive, tmp_path):
    """A catalogue of 24 files."""
    for number in range(20):
        (archive / f"copy{number:03}.dat").write_bytes((archive / "day/types.dat").read_bytes())
    corvantis.archive.index(archive, tmp_path / "many", processes=2)
    return tmp_path / "many"


def result(tmp_path, *arguments, **options):
    output = tmp_path / "result.parquet"
    failures = corvantis.archive.map_to(output, *arguments, **options)
    return failures, output.read_bytes()


def test_results_do_not_depend_on_who_worked(many, tmp_path):
    one = result(tmp_path, measure(), many, processes=1)
    assert one[0] == 1
    assert result(tmp_path, measure(), many, processes=2) == one
    address = f"tcp://127.0.0.1:{free_port()}"
    with scheduler(address.rpartition(":")[2]), workers(address, 3, "--no-nanny") as three:
        def kill_one():
            while not list(tmp_path.glob(".result*/5.arrow")):
                time.sleep(0.01)
            three[1].kill()
        killer = threading.Thread(target=kill_one)
        killer.start()
        assert result(tmp_path, measure(slow=0.1), many, scheduler=address) == one
        killer.join()
        assert three[1].wait() == -signal.SIGKILL


def test_a_restarted_scheduler_costs_nothing_but_time(many, tmp_path):
    one = result(tmp_path, measure(), many, processes=2)
    port = free_port()
    address, told = f"tcp://127.0.0.1:{port}", []
    work = threading.Thread(target=lambda: told.append(
        result(tmp_path, measure(slow=0.1), many, scheduler=address)))
    with scheduler(port) as first, workers(address, 2, "--no-nanny"):
        work.start()
        while not list(tmp_path.glob(".result*/4.arrow")):
            time.sleep(0.01)
        first.kill()
        first.wait()
    with scheduler(port), workers(address, 2, "--no-nanny"):
        work.join()
    assert told == [one]


@pytest.mark.parametrize("by_dask", [False, True])
def test_a_file_that_ends_its_process_is_a_row(many, tmp_path, by_dask):
    address = f"tcp://127.0.0.1:{free_port()}"
    with scheduler(address.rpartition(":")[2], DASK_DISTRIBUTED__SCHEDULER__ALLOWED_FAILURES="0"), \
            workers(address, 2 * by_dask):
        table = corvantis.archive.map(measure(fatal="copy007.dat"), many,
                                      scheduler=address if by_dask else None)
    rows = table.to_pylist()
    problems = {row["file"]: row["problem"] for row in rows if row["problem"]}
    assert problems == {
        "copy007.dat": "the process that worked on it came to an end, each time",
        "damaged.dat": "ValueError: two epochs are missing"}
    numbers = [(row["file"], row["epoch"]) for row in rows if not row["problem"]]
    assert numbers == sorted(set(numbers)) and len(numbers) == 19 * 14 + 3 + 14 + 41


def test_rows_are_those_that_were_asked_for(many):
    def told(recording, rows):
        assert rows.schema.names == ["file", "epoch", "points"]
        return rows
    table = corvantis.archive.map(told, many, where="points = 4000 OR problem IS NOT NULL",
                                  columns=["points"], processes=1)
    assert [tuple(row.values()) for row in table.to_pylist()] == \
        [("damaged.dat", None, number, None) for number in (22, 23)] + \
        [("day/steps.dat", None, number, 4000) for number in range(3)]
