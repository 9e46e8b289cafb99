"""What is read, against what was acquired and played, and what is said of it."""
import math
import random
import re
import struct
import subprocess

import numpy as np
import pytest

import corvantis
from corvantis import stimuli
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


# Of each file the first noise continues what the library was loaded with, but for seed 0.
@pytest.mark.filterwarnings("ignore:.*before the file:corvantis.CorvantisWarning")
@pytest.mark.parametrize("recipe", ["history-0", "history-7", "history-9", "history-5-4"])
def test_noise_is_as_played_in_whatever_order(recipe, recorded, logged):
    played = [pair[1] for pair in logged(recipe)]
    for order in (range(41), range(40, -1, -1), random.Random(1).choices(range(41), k=80)):
        with corvantis.open(recorded(recipe)) as recording:
            for number in order:
                np.testing.assert_array_equal(recording.epochs[number].raw_stimulus, played[number])


# Each epoch alone. In "unstored", noise behind a sum that nobody can compute again.
@pytest.mark.parametrize("recipe, epochs", [("history-0", 41), ("history-7", 41),
                                            ("history-9", 41), ("unstored", 8)])
def test_the_tool_exports_what_was_acquired_and_played(recipe, epochs, recorded, logged, build,
                                                       tmp_path):
    messages, table = b"", tmp_path / "epoch.npy"
    for number, samples in enumerate(logged(recipe)[:epochs]):
        messages += subprocess.run(
            [build / "tools/corvantis", "export", recorded(recipe), "-e", str(number), "--raw",
             "--stimulus", "--force", "-o", table], capture_output=True).stderr
        exported = np.load(table)
        np.testing.assert_allclose(exported[:, 0], np.arange(len(exported)) * 100e-6)
        unknown = np.isnan(exported[:, 1:])
        np.testing.assert_array_equal(exported[:, 1:][~unknown], np.hstack(samples)[~unknown])
        assert recipe == "unstored" or not unknown.any()
    assert b"an earlier epoch left" in messages


def test_what_the_file_does_not_hold(recorded, logged):
    with corvantis.open(recorded("unstored")) as recording:
        epochs = recording.epochs
        # Behind stimuli without bytes, positions in the file's table are too high.
        for epoch, (acquired, played) in zip(epochs, logged("unstored"), strict=True):
            np.testing.assert_array_equal(epoch.raw, acquired)
            if epoch.number in (1, 3, 5, 7):
                np.testing.assert_array_equal(epoch.raw_stimulus, played)
        assert epochs[4].stimuli[0].tripleB == (7, 8, 9)
        with pytest.raises(corvantis.CorvantisError, match="entry 0 is a sum"):
            epochs[6].raw_stimulus
        with pytest.raises(corvantis.CorvantisError, match="entry 0 is a generic") as caught:
            epochs[8].stimulus
        assert caught.value.code == 2
        with pytest.warns(corvantis.CorvantisWarning, match="epoch 8 cannot be recomputed"):
            epochs[9].raw_stimulus
    with corvantis.open(recorded("history-9")) as recording:
        with pytest.warns(corvantis.CorvantisWarning, match="before the file's first"):
            recording.epochs[0].raw_stimulus


def test_epochs_are_a_lazy_sequence_of_physical_units_and_header_fields(recorded):
    with corvantis.open(recorded("steps")) as recording:
        epochs = recording.epochs
        assert len(epochs) == 3 and [each.number for each in epochs[1:][::-1]] == [2, 1]
        with pytest.raises(IndexError):
            epochs[3]
        epoch = epochs[-1]
        assert "raw" not in vars(epoch) and "stimuli" not in vars(epoch)
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


# Gain and factor of an epoch's entry; scales of the file. 0.01 V per mV, 400 pA per V before.
@pytest.mark.parametrize("places, unit, scale", [((580 + 516, 580 + 548), "V", 3200),
                                                 ((524, 528), "counts", 1)])
def test_what_is_given_where_no_formula_can_be_applied(places, unit, scale, recorded, tmp_path):
    for factor in (0.0, -0.0, math.inf, -math.inf, math.nan):
        block = bytearray(recorded("steps").read_bytes())
        for place in places:
            struct.pack_into(">f", block, place, factor)
        (tmp_path / "odd.dat").write_bytes(block)
        with corvantis.open(tmp_path / "odd.dat") as recording:
            epoch = recording.epochs[0]
            assert epoch.units.response == epoch.units.stimulus == (unit,)
            np.testing.assert_array_equal(epoch.response, epoch.raw / scale)
            np.testing.assert_array_equal(epoch.stimulus, epoch.raw_stimulus / scale)
            assert f"{unit}, because" in epoch.response_scales[0].formula
    with corvantis.open(recorded("odd")) as recording:
        assert recording.epochs[2].comment == "Ω $\\frac{$"     # of older files
