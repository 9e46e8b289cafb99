"""Files that are damaged, cut off or not ours: errors that say where, and nothing wrong read."""
import os

import numpy as np
import pytest

import corvantis
from corvantis import commands
from corvantis.neo import CorvantisIO
from corvantis.plotting import plot_epochs

EPOCH = 912 + 32 + 8000     # bytes of each epoch of "steps"


def changed(source, target, place, *values):
    block = bytearray(source.read_bytes())
    block[place:place + len(values)] = values
    target.write_bytes(block)
    return target


def test_what_cannot_be_opened_is_refused_with_code_meaning_and_file(recorded, tmp_path):
    newer = changed(recorded("steps"), tmp_path / "newer.dat", 0, 9)
    foreign = {tmp_path / "text.dat": b"Dear diary, " * 999, tmp_path / "none.dat": b"",
               tmp_path / "picture.dat": b"\x89PNG\r\n\x1a\n" + bytes(5000)}
    for path, content in foreign.items():
        path.write_bytes(content)
    os.mkfifo(tmp_path / "pipe")
    for path, codes in ((newer, [9]), (tmp_path, [7]), (tmp_path / "missing.dat", [7]),
                        (tmp_path / "pipe", [7]), (f"{newer}\0", [7]), (tmp_path / "\ud800", [7]),
                        *((path, [7, 9, 10]) for path in foreign)):
        with pytest.raises(corvantis.CorvantisError) as caught:
            corvantis.open(path)
        assert caught.value.code in codes and caught.value.filename == str(path)
        shown = str(caught.value)
        assert str(tmp_path) in shown and shown.isprintable() and caught.value.meaning
    for command in (commands.plot, commands.families):
        assert command([str(tmp_path / "text.dat"), "-o", str(tmp_path / "a.png")]) == 2


def test_samples_beside_a_stimulus_that_does_not_exist_are_read(recorded, logged, tmp_path):
    path = changed(recorded("steps"), tmp_path / "type.dat", 580 + EPOCH + 605, 99)
    with corvantis.open(path) as recording:
        epoch = recording.epochs[1]
        np.testing.assert_array_equal(epoch.raw, logged("steps")[1][0])
        assert [each.name for each in epoch.stimuli] == ["unreadable"] and not epoch.is_damaged
        with pytest.raises(corvantis.CorvantisError, match="99") as caught:
            epoch.stimulus
        assert caught.value.code == 2 and "99" in recording.findings[0].found


# Lengths that are too large, negative or lead astray.
@pytest.mark.parametrize("values", [(0x7f, 0xff, 0xff, 0xff), (0xff, 0, 0, 0), (0, 1, 0, 0)])
def test_programs_go_past_a_damaged_epoch(values, recorded, logged, tmp_path, capsys):
    path = changed(recorded("steps"), tmp_path / "damaged.dat", 580 + EPOCH + 576, *values)
    with corvantis.open(path) as recording:
        assert [epoch.is_damaged for epoch in recording.epochs] == [False, True, False]
        for number in (0, 2):
            np.testing.assert_array_equal(recording.epochs[number].raw, logged("steps")[number][0])
        damaged = recording.epochs[1]
        for wanted in ("raw", "stimulus", "temperature", "stimuli", "units", "time"):
            with pytest.raises(corvantis.CorvantisError, match="epoch 1") as caught:
                getattr(damaged, wanted)
            assert caught.value.code == 11 and str(path) in str(caught.value)
        assert str(path) in damaged.problem and "damaged" in repr(damaged)
        rows = recording.to_dataframe()
        assert rows["problem"].tolist() == ["", damaged.problem, ""]
        assert rows["time"].tolist()[::2] == [0, 1]
        columns = recording.columns("temperature", "sequenceLength")
        assert columns.tolist() == [(6.25, 1, False), (0, 0, True), (6.25, 1, False)]
        assert any(each.weight == corvantis.Weight.FAULT and each.epoch == 1
                   for each in recording.findings)
        with pytest.warns(corvantis.CorvantisWarning, match="epoch 1"):
            assert len(plot_epochs(recording).legends[0].get_texts()) == 2
    with pytest.warns(corvantis.CorvantisWarning, match="epoch 1"):
        segments = CorvantisIO(path).read_block().segments
    assert [len(each.analogsignals) for each in segments] == [2, 0, 2]
    assert segments[1].annotations["problem"] == damaged.problem
    for command, output in ((commands.plot, "a.png"), (commands.families, "a.csv")):
        assert command([str(path), "-o", str(tmp_path / output)]) == 1
        said = capsys.readouterr().err.splitlines()
        assert len(said) == 1 and said[0].startswith("corvantis ") and "epoch 1" in said[0]
        assert (tmp_path / output).exists()


def test_what_is_whole_of_a_file_that_was_cut_off_is_read(recorded, logged, tmp_path):
    source, path = recorded("steps"), tmp_path / "cut.dat"
    for size in range(580, source.stat().st_size, 997):
        path.write_bytes(source.read_bytes()[:size])
        with corvantis.open(path) as recording:
            whole = min((size - 580) // EPOCH, 3)
            for epoch, (acquired, _) in zip(recording.epochs[:whole], logged("steps")):
                np.testing.assert_array_equal(epoch.raw, acquired)
            assert all(epoch.is_damaged for epoch in recording.epochs[whole:])


def test_epochs_and_points_that_are_not_there(recorded, tmp_path):
    path = changed(recorded("steps"), tmp_path / "more.dat", 536, 0, 0, 0, 4)
    with corvantis.open(path) as recording:
        assert [epoch.is_damaged for epoch in recording.epochs][:3] == [False] * 3
        assert all(epoch.is_damaged for epoch in recording.epochs[3:])
    with corvantis.open(recorded("empty")) as recording:
        assert len(recording.epochs) == len(recording.table()) == len(recording.to_dataframe()) == 0
        assert len(recording.columns()) == len(recording.counts()) == 0
    with corvantis.open(recorded("odd")) as recording:
        for epoch in (recording.epochs[0], recording.epochs[3]):
            assert epoch.raw.size == epoch.response.size == epoch.stimulus.size == 0
            assert epoch.time.shape == (0,)
