"""Runs over folders: what is left when something goes wrong, and what is done only once."""
import os
import shutil
import signal
import subprocess
import sys
import time

import pytest
import yaml

from corvantis import commands
from corvantis.nwb import writing
from corvantis.nwb.processes import Processes


@pytest.fixture
def lab_file(tmp_path, lab):
    path = tmp_path / "lab.yaml"
    path.write_text(yaml.safe_dump(lab))
    return path


@pytest.fixture
def folder(tmp_path, recording):
    """Recordings: whole, cut, of an impossible version, and what is none."""
    path = tmp_path / "in"
    path.mkdir()
    shutil.copy(recording("steps"), path / "steps.dat")
    shutil.copy(recording("clamps"), path / "clamps.dat")
    whole = recording("steps").read_bytes()
    (path / "cut.dat").write_bytes(whole[:-3000])
    (path / "new.dat").write_bytes(b"\x09" + whole[1:])
    (path / "notes.txt").write_text("hello")
    return path


def nwb(*arguments):
    return commands.nwb(list(map(str, arguments)))


def test_a_run_goes_on_past_bad_files_and_is_done_once(folder, tmp_path, lab_file, capsys):
    out = tmp_path / "out"
    assert nwb(folder, tmp_path / "none.dat", "-o", out, "-m", lab_file) == 2
    said = capsys.readouterr()
    *rows, sums = said.out.splitlines()[1:]
    results = {os.path.basename(row.split()[0]): row.split(maxsplit=3)[1:] for row in rows}
    assert results["cut.dat"][:2] == ["2", "1"] and results["steps.dat"][:2] == ["3", "0"]
    assert "failed: format version 9 is newer" in results["new.dat"][2]
    assert "No such file" in results["none.dat"][2]
    assert sums == "files: 5 (3 written, 2 failed), epochs: 11, warnings: 1"
    assert "left out: epoch 2" in said.err and "1 files are no recordings" in said.err
    times = {path: path.stat().st_mtime_ns for path in out.rglob("*")}
    (folder / "new.dat").unlink()
    assert nwb(folder, "-o", out, "-m", lab_file) == 0
    assert "3 there already" in capsys.readouterr().out
    assert times == {path: path.stat().st_mtime_ns for path in out.rglob("*")}
    assert nwb(folder / "steps.dat", "-o", out, "-m", lab_file, "-e", "0") == 2
    assert nwb(folder / "steps.dat", "-o", out, "-m", lab_file, "-e", "0", "--force") == 0
    assert nwb(folder / "cut.dat", "-o", tmp_path / "other", "-m", lab_file) == 1
    assert nwb(folder, "-o", out, "-m", lab_file, "--verify") == 0
    shutil.copy(folder / "clamps.dat", folder / "steps.dat")
    assert nwb(folder / "steps.dat", "-o", out, "-m", lab_file, "--verify") == 2
    assert "differs from the recording: sha256" in capsys.readouterr().out


def test_two_recordings_never_become_one_file(folder, tmp_path, lab_file, capsys):
    (folder / "b").mkdir()
    shutil.copy(folder / "steps.dat", folder / "b")
    assert nwb(folder / "steps.dat", folder / "b", "-o", tmp_path / "out", "-m", lab_file) == 2
    assert "session_id" in capsys.readouterr().out


def test_what_does_not_verify_takes_no_place(folder, tmp_path, lab_file, capsys, monkeypatch):
    def write_wrongly(recording, path, metadata, notes):
        return whole(recording, path, metadata, {**notes, "sha256": "0"})
    whole = writing.write_file
    monkeypatch.setattr(writing, "write_file", write_wrongly)
    assert nwb(folder / "steps.dat", "-o", tmp_path / "out", "-m", lab_file) == 2
    assert "differs" in capsys.readouterr().out
    assert [path for path in (tmp_path / "out").rglob("*") if path.is_file()] == []


@pytest.mark.parametrize("ending", [signal.SIGINT, signal.SIGTERM, signal.SIGKILL])
def test_a_run_that_is_ended_leaves_whole_files_alone(ending, tmp_path, recording, lab_file):
    inputs, out = tmp_path / "in", tmp_path / "out"
    inputs.mkdir()
    for number in range(6):
        shutil.copy(recording("growing"), inputs / f"{number:02}.dat")
    command = [sys.executable, "-m", "corvantis", "nwb", inputs, "-o", out, "-m", lab_file, "-j",
               "2", "--no-verify"]
    run = subprocess.Popen(command, stdout=subprocess.DEVNULL, start_new_session=True)
    while not list(out.rglob("*.nwb")):
        assert run.poll() is None
        time.sleep(0.01)
    os.killpg(run.pid, ending)
    run.wait()
    left = list(out.rglob("*.part"))
    assert ending == signal.SIGKILL or left == []
    for path in out.rglob("*.nwb"):
        assert writing.notes_of(path)["original"] == f"{path.name[-14:-12]}.dat"
    assert subprocess.run(command, capture_output=True).returncode == 0
    assert len(list(out.rglob("*.nwb"))) == 6 and list(out.rglob("*.part")) == []


def end_by(number):
    if number:
        os.kill(os.getpid(), number)
    return "done"


def test_a_process_that_dies_is_a_result():
    processes = Processes(end_by, lambda item, how: how, 2)
    assert sorted(processes.results([0, signal.SIGKILL, 0])) == [
        "done", "done", "its process was ended by SIGKILL"]


def test_without_the_extra_one_line_says_what_to_install(tmp_path):
    program = "import sys; sys.modules['pynwb'] = None\n" \
              "from corvantis.commands import nwb; sys.exit(nwb(['a', '-o', 'b']))"
    ran = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True)
    assert (ran.returncode, ran.stdout) == (2, "")
    assert ran.stderr == "corvantis nwb: pynwb is not installed; it comes with corvantis[nwb]\n"
