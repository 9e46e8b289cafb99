"""The catalogue says what the package says of each file, and outlives whatever happens to a run."""
import json
import os
import signal
import subprocess
import sys
import time

import numpy as np
import pytest

import corvantis
from corvantis.archive import index
from corvantis.archive import open as open_catalogue
from corvantis.index_command import index as command


def rows(catalogue, *columns):
    names = ", ".join(columns)
    return sorted(catalogue.query(f"SELECT {names} FROM epochs").fetchall())


def same(told, of_header):
    return told == of_header or (told != told and of_header != of_header)


def test_rows_are_what_the_package_says(catalogue, archive):
    table = catalogue.table("SELECT * FROM epochs ORDER BY file, epoch").to_pylist()
    assert len(table) == 3 + 14 + 41 + 300
    for row in table:
        epoch = corvantis.open(archive / row["file"]).epochs[row["epoch"]]
        if epoch.is_damaged:
            assert row["problem"] in str(epoch.problem) and row["start"] is None
            continue
        for name, value in vars(epoch.header).items():
            told = row[name]
            if isinstance(value, tuple):
                assert all(map(same, told, value)) and len(told) in (epoch.entries, len(value))
            else:
                assert same(told, value), name
        assert row["stimulus"].split(" | ") == epoch.stimulus_words
        assert [each["type"] for each in json.loads(row["stimulusJson"])] == \
            [stimulus.type for stimulus in epoch.parameters]
        assert (row["inputs"], row["outputs"]) == (epoch.input_channels, epoch.output_channels)
        assert (row["doubtText"] or "") == (epoch.doubt.text if epoch.doubt else "")
    assert [row["epoch"] for row in table if row["problem"]] == [22, 23]


def test_a_damaged_file_is_a_row_with_its_findings(catalogue, archive):
    found = corvantis.open(archive / "damaged.dat").findings
    row = catalogue.query("SELECT findings, isClean, damagedEpochs FROM files "
                          "WHERE file = 'damaged.dat'").fetchall()[0]
    assert [(each["offset"], each["found"]) for each in row[0]] == \
        [(each.offset, each.found) for each in found]
    assert row[1:] == (False, 2)
    assert catalogue.query("SELECT count(*) FROM files WHERE isClean").fetchall()[0] == (3,)


def test_a_second_run_reads_what_is_new_or_changed(archive, tmp_path):
    def run(**options):
        summary = index(archive, tmp_path / "c", processes=1, **options)
        return summary.read, summary.unchanged, summary.gone, summary.others
    assert run(digest=False) == (4, 0, 0, 1)
    assert run(digest=False) == (0, 4, 0, 1)
    assert run() == (4, 0, 0, 1)        # for the digests
    os.utime(archive / "day/steps.dat", ns=(0, 0))
    (archive / "damaged.dat").unlink()
    (archive / "new.dat").write_bytes((archive / "day/types.dat").read_bytes())
    assert run() == (2, 2, 1, 1)
    assert [name for name, in open_catalogue(tmp_path / "c").query(
        "SELECT DISTINCT file FROM epochs ORDER BY file").fetchall()] == \
        ["day/history-3.dat", "day/steps.dat", "day/types.dat", "new.dat"]
    with pytest.raises(ValueError, match="a catalogue of .*archive, not of"):
        index(archive / "day", tmp_path / "c")
    archive.rename(tmp_path / "elsewhere")
    assert index(tmp_path / "elsewhere", tmp_path / "c", moved=True).unchanged == 4


def start(*arguments):
    return subprocess.Popen([sys.executable, "-m", "corvantis", "index", *map(str, arguments)],
                            stdout=subprocess.PIPE, start_new_session=True, text=True)


def test_a_killed_run_loses_the_file_in_work_alone(archive, tmp_path):
    for number in range(150):
        (archive / f"copy{number:03}.dat").write_bytes((archive / "damaged.dat").read_bytes())
    pieces = tmp_path / "c/pieces"
    running = start(archive, "-o", tmp_path / "c", "--processes", 1)
    while len(list(pieces.glob("*.arrow")) if pieces.exists() else []) < 20:
        assert running.poll() is None
        time.sleep(0.001)
    os.killpg(running.pid, signal.SIGKILL)
    running.wait()
    kept = len(list(pieces.glob("*.arrow")))
    assert kept < 150
    catalogue = open_catalogue(tmp_path / "c")
    assert catalogue.query("SELECT count(*) FROM files").fetchall() == [(kept,)]
    assert index(archive, tmp_path / "c", processes=1).unchanged == kept
    assert index(archive, tmp_path / "d", processes=1).read == 154
    both = [rows(open_catalogue(tmp_path / name), "file", "epoch", "digest") for name in "cd"]
    assert both[0] == both[1]


def test_two_runs_at_once_leave_each_row_once(archive, tmp_path):
    for number in range(40):
        (archive / f"copy{number:03}.dat").write_bytes((archive / "day/types.dat").read_bytes())
    runs = [start(archive, "-o", tmp_path / "c", "--processes", 1) for _ in range(2)]
    told = [run.communicate()[0].splitlines()[-1] for run in runs]
    assert [run.returncode for run in runs] == [1, 1]
    assert all(line.startswith("44 files with 918 epochs: ") for line in told), told
    numbers = rows(open_catalogue(tmp_path / "c"), "file", "epoch")
    assert len(numbers) == len(set(numbers)) == 918


def test_epochs_open_where_they_are_known_to_be(catalogue, archive):
    chosen = catalogue.query("SELECT file, epoch FROM epochs WHERE problem IS NULL "
                             "ORDER BY file, epoch DESC")
    for (file, number), epoch in zip(chosen.fetchall(), catalogue.open_epochs(chosen)):
        plain = corvantis.open(archive / file).epochs[number]
        np.testing.assert_array_equal(epoch.raw, plain.raw)
    noise = catalogue.epoch("day/history-3.dat", 40)
    np.testing.assert_array_equal(
        noise.raw_stimulus, corvantis.open(archive / "day/history-3.dat").epochs[40].raw_stimulus)
    with pytest.raises(corvantis.CorvantisError, match="found epochPoints -1"):
        catalogue.epoch("damaged.dat", 22).points
    with pytest.raises(KeyError):
        catalogue.epoch("none.dat", 0)


@pytest.mark.parametrize("place, keep_time", [(30, False), (700, True), (290, True)])
def test_a_changed_file_is_noticed(catalogue, archive, place, keep_time):
    path = archive / "day/steps.dat"
    state, data = path.stat(), bytearray(path.read_bytes())
    data[place] ^= 1
    path.write_bytes(data)
    os.utime(path, ns=(state.st_atime_ns, state.st_mtime_ns + (not keep_time)))
    with pytest.raises(corvantis.CorvantisError) as error:
        catalogue.epoch("day/steps.dat", 0).points
    assert error.value.code == 12


def test_the_command_says_what_is_wrong(archive, tmp_path, capsys):
    assert command([str(archive), "-o", str(tmp_path / "c"), "--processes", "1"]) == 1
    said = capsys.readouterr().out.splitlines()
    assert said[0].startswith("damaged.dat: 300 epochs, 2 damaged, 2 findings: epoch 22, 1344 ")
    assert said[-1] == ("4 files with 358 epochs: 4 read, 0 unchanged, 0 gone, 1 with findings, "
                        "1 no recordings")
    assert command([str(archive / "none"), "-o", str(tmp_path / "d")]) == 2
    assert "none: no such folder" in capsys.readouterr().err
