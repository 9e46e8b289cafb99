"""The same file read by a C program, by this package and by Neo, against what was recorded."""
import random
import subprocess
from pathlib import Path

import numpy as np
import pytest

import corvantis
from corvantis import stimuli
from corvantis.neo import CorvantisIO


@pytest.mark.parametrize("recipe", ["steps", "types"])
def test_all_readers_give_what_was_acquired_and_played(recipe, recorded, logged, compiled,
                                                       tmp_path):
    path, log = recorded(recipe), logged(recipe)
    reader = compiled(Path(__file__).with_name("read_epochs.c").read_text())
    subprocess.run([reader, path, tmp_path / "c"], check=True, stdout=subprocess.DEVNULL)
    from_c = np.fromfile(tmp_path / "c", dtype=np.int16)
    np.testing.assert_array_equal(from_c, np.concatenate([a.ravel() for pair in log for a in pair]))

    block = CorvantisIO(path).read_block(signal_group_mode="group-by-same-units", lazy=True)
    with corvantis.open(path) as recording:
        assert len(recording.epochs) == len(block.segments) == len(log)
        for epoch, segment, (acquired, played) in zip(recording.epochs, block.segments, log):
            np.testing.assert_array_equal(epoch.raw, acquired)
            np.testing.assert_array_equal(epoch.raw_stimulus, played)
            signals = np.hstack([each.load().magnitude for each in segment.analogsignals])
            np.testing.assert_array_equal(signals, np.hstack([epoch.response, epoch.stimulus]))


def test_epoch_in_physical_units_with_its_header_fields(recorded):
    with corvantis.open(recorded("steps")) as recording:
        assert (recording.header.version, recording.header.inputScale) == (8, 3200.0)
        epoch = recording.epochs[2]
        assert epoch.raw.dtype == np.int16 and epoch.raw.shape == (4000, 1)
        assert not epoch.raw.flags.writeable
        assert epoch.response.dtype == np.float64 and epoch.response.shape == (4000, 1)
        assert epoch.units.response == ("mV",) and epoch.units.stimulus == ("pA",)
        assert epoch.response[0, 0] == pytest.approx(-65, abs=0.05)     # resting potential
        assert set(epoch.stimulus[:, 0]) == {0.0, 200.0}                # 1600 / 3200 * 400
        assert epoch.sampling_rate == 20_000
        assert epoch.time[-1] == pytest.approx(3999 * 50e-6) and epoch.duration == 0.2
        assert (epoch.epochTime, epoch.temperature, epoch.comment) == (1.0, 6.25, "step 2")
        assert epoch.samplingInterval == 50 and epoch.ledSetting == (7, 65535, 0, 0)
        assert epoch.userValue[:3] == (1.5, -2.0, 0.0) and epoch.stimType[0] == 3
        assert "ampGain" in dir(epoch) and not hasattr(epoch, "noSuchField")


def test_epochs_are_a_lazy_sequence(recorded):
    with corvantis.open(recorded("steps")) as recording:
        epochs = recording.epochs
        assert len(epochs) == 3 and epochs[-1].number == 2
        assert [epoch.number for epoch in epochs[::-2]] == [2, 0]
        assert [epoch.number for epoch in epochs[1:][1:]] == [2]
        assert "raw" not in vars(epochs[0]) and "stimuli" not in vars(epochs[0])
        with pytest.raises(IndexError):
            epochs[3]


def test_stimulus_records_are_typed(recorded):
    with corvantis.open(recorded("types")) as recording:
        found = {type(each) for epoch in recording.epochs for each in epoch.stimuli}
        assert found == {stimuli.Sine, stimuli.Noise, stimuli.Pulse, stimuli.Ramp, stimuli.Summed,
                         stimuli.SegmentedNoise, stimuli.BinaryNoise, stimuli.DynamicClamp,
                         stimuli.AlternatingVoltage, stimuli.Spatial}
        assert recording.epochs[0].stimuli == (stimuli.Sine(500, 100, 40, 7, 150, 20, 30),)
        components = recording.epochs[10].stimuli[0].components
        assert [each.name for each in components] == ["sine", "ramp", "noise"]
        # Conductances behind any number of entries.
        for clamp in (recording.epochs[8].stimuli[0], recording.epochs[9].stimuli[1]):
            assert (clamp.excitatoryReversal, clamp.inhibitoryReversal) == (0.0, -80.0)
            for values, ends in ((clamp.excitatory, (0, 3)), (clamp.inhibitory, (9, 4))):
                np.testing.assert_array_equal(values, np.linspace(*ends, 200, dtype=np.float32))


def test_channels_by_name_and_digital_words(recorded):
    with corvantis.open(recorded("types")) as recording:
        epoch = recording.epochs[11]
        assert epoch.inputs == ["input 4", "digital input"]
        assert epoch.outputs == ["output 3", "digital output"]
        assert epoch.units.response == ("mV", "word")
        np.testing.assert_array_equal(epoch.stimulus[:, 1], epoch.raw_stimulus[:, 1].view("u2"))


def test_epochs_behind_stimuli_that_take_no_bytes(recorded, logged):
    """Their positions in the file's table are too high; the samples must be right all the same."""
    with corvantis.open(recorded("unstored")) as recording:
        assert len(recording.epochs) == 7
        for epoch, (acquired, played) in zip(recording.epochs, logged("unstored")):
            np.testing.assert_array_equal(epoch.raw, acquired)
            if isinstance(epoch.stimuli[0], stimuli.Pulse) and epoch.stimuli[0].computed:
                np.testing.assert_array_equal(epoch.raw_stimulus, played)
        with pytest.raises(corvantis.CorvantisError, match="entry 0 is a generic") as caught:
            recording.epochs[4].stimulus
        assert caught.value.code == 2
        assert recording.epochs[5].stimuli[0].tripleB == (7, 8, 9)


# Of each file the first noise continues what the library was loaded with, but for seed 0.
@pytest.mark.filterwarnings("ignore:.*before the file:corvantis.CorvantisWarning")
@pytest.mark.parametrize("recipe", ["history-0", "history-7", "history-9", "history-5-4"])
def test_noise_is_as_played_in_whatever_order(recipe, recorded, logged, tool, tmp_path):
    played = [pair[1] for pair in logged(recipe)]
    orders = [range(41), range(40, -1, -1), random.Random(1).choices(range(41), k=80)]
    for order in orders:
        with corvantis.open(recorded(recipe)) as recording:
            for number in order:
                np.testing.assert_array_equal(recording.epochs[number].raw_stimulus, played[number])
    if recipe.endswith("-4"):
        return      # the tool leaves the older generator's left-overs aside, and says so
    tool("export", recorded(recipe), "--all", "--raw", "--stimulus", "-o", tmp_path / "e.csv")
    exported = sorted(tmp_path.glob("e-*.csv"), key=lambda path: int(path.stem[2:]))
    for path, samples in zip(exported, played, strict=True):
        columns = np.loadtxt(path, delimiter=",", skiprows=1)[:, 1 + samples.shape[1]:]
        np.testing.assert_array_equal(columns, samples)


@pytest.mark.filterwarnings("error")
def test_noise_behind_noise_that_cannot_be_had(recorded, logged):
    with corvantis.open(recorded("lost")) as recording:
        for number in (0, 2):
            np.testing.assert_array_equal(recording.epochs[number].raw_stimulus,
                                          logged("lost")[number][1])
        with pytest.raises(corvantis.CorvantisError, match="entry 0 is a sum"):
            recording.epochs[1].raw_stimulus
        with pytest.warns(corvantis.CorvantisWarning, match="epoch 3 cannot be recomputed"):
            recording.epochs[4].raw_stimulus


def test_older_files_use_the_older_noise(recorded, tmp_path):
    old = tmp_path / "old.dat"
    old.write_bytes(b"\4" + recorded("types").read_bytes()[1:])
    with corvantis.open(old) as older, corvantis.open(recorded("types")) as newer:
        assert older.header.version == 4
        assert older.epochs[8].pointsLatency == 0 + 2 + 5       # computed: one entry of type 11
        np.testing.assert_array_equal(older.epochs[2].raw_stimulus, newer.epochs[2].raw_stimulus)
        noise = older.epochs[1].raw_stimulus
        assert np.any(noise != newer.epochs[1].raw_stimulus)
        np.testing.assert_array_equal(older.epochs[1].raw_stimulus, noise)
        assert list(noise[:20, 0]) == [20] * 20


def test_table_of_all_epochs(recorded):
    with corvantis.open(recorded("types")) as recording:
        rows, frame = recording.table(), recording.to_dataframe()
    assert len(rows) == len(frame) == 13
    assert rows[11]["stimulus"][0] == "pulse 10 pA on 0 pA, 10 ms after 5 ms"    # 80 counts
    assert "sum of (sine" in rows[10]["stimulus"][0] and "seed 5" in rows[10]["stimulus"][0]
    assert list(frame["points"][-2:]) == [200, 120_000] and frame.index.name == "epoch"
