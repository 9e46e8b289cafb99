"""What is read, against what was acquired and played, and what is said of it."""
import random
import re
import warnings

import numpy as np
import pytest

import corvantis
from corvantis import DoubtReason, stimuli
from corvantis.neo import CorvantisIO


@pytest.mark.parametrize("recipe", ["steps", "types"])
def test_samples_are_what_was_acquired_and_played(recipe, recorded, logged):
    block = CorvantisIO(recorded(recipe)).read_block(signal_group_mode="group-by-same-units",
                                                     lazy=True)
    with corvantis.open(recorded(recipe)) as recording:
        for epoch, segment, (acquired, played) in zip(recording.epochs, block.segments,
                                                      logged(recipe), strict=True):
            np.testing.assert_array_equal(epoch.raw, acquired)
            np.testing.assert_array_equal(epoch.raw_stimulus, played)
            signals = np.hstack([each.load().magnitude for each in segment.analogsignals])
            np.testing.assert_array_equal(signals, np.hstack([epoch.response, epoch.stimulus]))
            for read, counts, values in ((epoch.read, acquired, epoch.response),
                                         (epoch.read_stimulus, played, epoch.stimulus)):
                np.testing.assert_array_equal(read(7, 50, raw=True), counts[7:57])
                np.testing.assert_array_equal(read(100, entry=0), values[100:, 0])


# Of each file the first noise continues what the library was loaded with, but for seed 0.
@pytest.mark.parametrize("recipe", ["history-0", "history-7", "history-9", "history-5-4"])
def test_noise_is_as_played_in_whatever_order(recipe, recorded, logged):
    played = [pair[1] for pair in logged(recipe)]
    with warnings.catch_warnings(record=True) as said:
        warnings.simplefilter("always")
        for order in (range(41), range(40, -1, -1), random.Random(1).choices(range(41), k=80)):
            with corvantis.open(recorded(recipe)) as recording:
                for number in order:
                    np.testing.assert_array_equal(recording.epochs[number].raw_stimulus,
                                                  played[number])
                doubts = [epoch.doubt for epoch in recording.epochs]
    if recipe == "history-5-4":
        assert doubts[0].reason == DoubtReason.OLD_GENERATOR
    elif recipe != "history-0":
        assert doubts[0].reason == DoubtReason.BEGAN_BEFORE_FILE
        assert isinstance(said[0].message, corvantis.CorvantisWarning)
        assert doubts[0].text in str(said[0].message)


def test_what_the_file_does_not_hold(recorded, logged):
    with corvantis.open(recorded("unstored")) as recording:
        epochs = recording.epochs
        # Behind stimuli without bytes, positions in the file's table are too high.
        for epoch, (acquired, played) in zip(epochs, logged("unstored"), strict=True):
            np.testing.assert_array_equal(epoch.raw, acquired)
            if epoch.number in (1, 3, 5, 7):
                np.testing.assert_array_equal(epoch.raw_stimulus, played)
        assert epochs[4].stimuli[0].tripleB == (7, 8, 9)
        for number, words in ((6, "sum"), (8, "generic")):
            with pytest.raises(corvantis.CorvantisError, match=words) as caught:
                epochs[number].stimulus
            assert caught.value.code == 2
        assert epochs[9].doubt.reason == DoubtReason.BEHIND_UNKNOWN
        with pytest.warns(corvantis.CorvantisWarning, match="epoch 9"):
            epochs[9].raw_stimulus


def test_many_epochs_at_once(recorded, logged):
    with corvantis.open(recorded("steps")) as recording:
        acquired = np.stack([pair[0] for pair in logged("steps")])
        assert np.array_equal(recording.counts(), acquired)
        assert np.array_equal(recording.counts(recording.epochs[::-1], 0), acquired[::-1, :, 0])
        np.testing.assert_array_equal(recording.responses([1])[0], recording.epochs[1].response)
        columns = recording.columns("epochTime", "epochComment", "userValue", "inputUnits")
        assert columns["epochTime"].tolist() == [0, 0.5, 1] and not columns["missing"].any()
        assert columns["epochComment"].tolist() == ["step 0", "step 1", "step 2"]
        assert columns["userValue"][:, :3].tolist() == [[1.5, -2, 0]] * 3
        assert columns["inputUnits"][2].tolist() == ["mV"] * 4
        assert recording.columns("epochTime", first=1, count=1).tolist() == [(0.5, False)]
        first = recording.columns()[0]
        for name in first.dtype.names[:-1]:
            np.testing.assert_array_equal(first[name], getattr(recording.epochs[0], name))
        for wrong, error in ((lambda: recording.columns("noSuchField"), KeyError),
                             (lambda: recording.columns(first=2, count=2), IndexError),
                             (lambda: recording.epochs[0].read(3990, 11), IndexError),
                             (lambda: recording.epochs[0].read(entry=1), IndexError)):
            with pytest.raises(error):
                wrong()
    with corvantis.open(recorded("types")) as recording, pytest.raises(ValueError, match="shapes"):
        recording.counts()


def test_epochs_are_a_lazy_sequence_of_physical_units_and_header_fields(recorded):
    with corvantis.open(recorded("steps")) as recording:
        epochs = recording.epochs
        assert len(epochs) == 3 and [each.number for each in epochs[1:][::-1]] == [2, 1]
        with pytest.raises(IndexError):
            epochs[3]
        epoch = epochs[-1]
        assert not epoch.raw.flags.writeable and epoch.response.shape == (4000, 1)
        assert epoch.units.response == ("mV",) and epoch.units.stimulus == ("pA",)
        assert epoch.response[0, 0] == pytest.approx(-65, abs=0.05)     # resting potential
        assert set(epoch.stimulus[:, 0]) == {0.0, 200.0}                # 1600 / 3200 * 400
        assert epoch.time[-1] == pytest.approx(3999 * 50e-6) and epoch.duration == 0.2
        assert epoch.userValue[:3] == (1.5, -2.0, 0.0) and epoch.ledSetting == (7, 65535, 0, 0)
        assert "ampGain" in dir(epoch) and not hasattr(epoch, "noSuchField")
    recording.close()
    assert epoch.response.size == 4000
    with pytest.raises(ValueError, match="closed"):
        epoch.stimuli


def test_stimuli_channels_and_units_of_each_entry(recorded):
    with corvantis.open(recorded("types")) as recording:
        epochs, rows = list(recording.epochs), recording.table()
        assert {each.name for epoch in epochs for each in epoch.stimuli} \
            == {each.name for each in stimuli.ALL if each.computed}
        digital, both = epochs[11:13]
        assert np.array_equal(digital.stimulus[:, 1], digital.raw_stimulus[:, 1].view(np.uint16))
        np.testing.assert_array_equal(both.response, both.raw / 3200 / [0.01, 0.5])
        assert epochs[0].stimuli == (stimuli.Sine(500, 100, 40, 7, 150, 20, 30),)
        for clamp in (epochs[6].stimuli[0], epochs[9].stimuli[1]):  # behind any number of entries
            assert (clamp.excitatoryReversal, clamp.inhibitoryReversal) == (0.0, -80.0)
            for values, ends in ((clamp.excitatory, (0, 3)), (clamp.inhibitory, (9, 4))):
                np.testing.assert_array_equal(values, np.linspace(*ends, 200, dtype=np.float32))
        assert digital.inputs == ["input 4", "digital input"]
        assert digital.outputs == ["output 3", "digital output"]
        assert digital.units.response == digital.units.stimulus == ("V", "word")
    assert re.match(r"sum of \(sine .*; ramp .*; noise .*, seed 5", rows[10]["stimulus"][0])


def test_what_is_given_where_no_formula_can_be_applied(recorded):
    with corvantis.open(recorded("odd")) as recording:
        epoch = recording.epochs[1]
        assert epoch.units.response == epoch.units.stimulus == ("V",)
        np.testing.assert_array_equal(epoch.response, epoch.raw / 3200)
        np.testing.assert_array_equal(epoch.stimulus, epoch.raw_stimulus / 3200)
        assert "V, because" in epoch.response_scales[0].formula
        assert recording.epochs[2].comment == "Ω $\\frac{$"     # of older files
