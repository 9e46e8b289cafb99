"""Files that cannot be read, or not wholly: errors that name the file, and nothing wrong read."""
import contextlib
import os

import numpy as np
import pytest

import corvantis

EPOCH = 912 + 32 + 8000     # bytes of each epoch of "steps"


def changed(source, target, place, *values):
    block = bytearray(source.read_bytes())
    block[place:place + len(values)] = values
    target.write_bytes(block)
    return target


def test_errors_name_code_meaning_and_file(recorded, tmp_path):
    newer = changed(recorded("steps"), tmp_path / "newer.dat", 0, 9)
    os.mkfifo(tmp_path / "pipe")
    for path, code in ((newer, 9), (tmp_path, 7), (tmp_path / "missing.dat", 7),
                       (tmp_path / "pipe", 7), (f"{newer}\0", 7), (tmp_path / "\ud800", 7)):
        with pytest.raises(corvantis.CorvantisError) as caught:
            corvantis.open(path)
        assert caught.value.code == code and caught.value.filename == str(path)
        shown = str(caught.value)
        assert str(tmp_path) in shown and caught.value.meaning in shown and shown.isprintable()


# A stimulus type that does not exist, and lengths that are too large, negative or lead astray.
@pytest.mark.parametrize("place, values", [(605, (99,)), (576, (0x7f, 0xff, 0xff, 0xff)),
                                           (576, (0xff, 0, 0, 0)), (576, (0, 1, 0, 0))])
def test_epochs_around_a_damaged_one_stay_readable(place, values, recorded, logged, tmp_path):
    path = changed(recorded("steps"), tmp_path / "damaged.dat", 580 + EPOCH + place, *values)
    with corvantis.open(path) as recording, pytest.warns(corvantis.CorvantisWarning,
                                                         match="damaged epochs: 1"):
        for number in (0, 2):
            np.testing.assert_array_equal(recording.epochs[number].raw, logged("steps")[number][0])
        with pytest.raises(corvantis.CorvantisError, match="epoch 1"):
            recording.epochs[1]


@pytest.mark.filterwarnings("ignore::corvantis.CorvantisWarning")
def test_any_damaged_byte_and_any_end_is_survived(recorded, tmp_path):
    """Reading ends with values or with the package's own error."""
    source, path = recorded("steps"), tmp_path / "byte.dat"
    for place in [*range(520, 600, 3), *range(580 + 560, 580 + 912 + 32, 5)]:
        changed(source, path, place, 0xff)
        with contextlib.suppress(corvantis.CorvantisError), corvantis.open(path) as recording:
            for epoch in recording.epochs:
                epoch.response, epoch.stimuli, epoch.stimulus
    for size in range(0, source.stat().st_size, 997):
        path.write_bytes(source.read_bytes()[:size])
        with pytest.raises(corvantis.CorvantisError):
            corvantis.open(path).epochs[2].raw


def test_epochs_and_points_that_are_not_there(recorded, tmp_path):
    # More epochs announced, as in a second file that was made in one run of the rig's program.
    path = changed(recorded("steps"), tmp_path / "second.dat", 539, 5)
    path.write_bytes(path.read_bytes() + b"\x00\x00\x7f\x00\x00\x00\x7f\x00")
    with corvantis.open(path) as recording, pytest.warns(corvantis.CorvantisWarning,
                                                         match="5 epochs announced, 3 found"):
        assert len(recording.epochs) == 3
    with corvantis.open(recorded("empty")) as recording:
        assert len(recording.epochs) == len(recording.table()) == len(recording.to_dataframe()) == 0
    with corvantis.open(recorded("odd")) as recording:
        for epoch in (recording.epochs[0], recording.epochs[3]):
            assert epoch.raw.size == epoch.response.size == epoch.stimulus.size == 0
            assert epoch.time.shape == (0,)
