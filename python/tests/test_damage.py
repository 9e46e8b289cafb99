"""Files that cannot be read, or not wholly: errors that name the file, and nothing wrong read."""
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
    (tmp_path / "short.dat").write_bytes(b"\x08" * 100)
    cases = {newer: 9, tmp_path / "short.dat": 7, tmp_path / "missing.dat": 7, tmp_path: 7}
    for path, code in cases.items():
        with pytest.raises(corvantis.CorvantisError) as caught:
            corvantis.open(path)
        assert caught.value.code == code and caught.value.filename == str(path)
        assert str(path) in str(caught.value) and caught.value.meaning in str(caught.value)
    with corvantis.open(recorded("steps")) as recording:
        assert recording.epochs[0].raw.size


# A stimulus type that does not exist, and lengths that are too large, negative or lead astray.
@pytest.mark.parametrize("place, values", [(605, (99,)), (576, (0x7f, 0xff, 0xff, 0xff)),
                                           (576, (0xff, 0, 0, 0)), (576, (0, 1, 0, 0))])
def test_epochs_around_a_damaged_one_stay_readable(place, values, recorded, logged, tmp_path):
    path = changed(recorded("steps"), tmp_path / "damaged.dat", 580 + EPOCH + place, *values)
    with corvantis.open(path) as recording, pytest.warns(corvantis.CorvantisWarning,
                                                         match="damaged epochs: 1"):
        assert len(recording.epochs) == 3
        for number in (0, 2):
            np.testing.assert_array_equal(recording.epochs[number].raw, logged("steps")[number][0])
        with pytest.raises(corvantis.CorvantisError, match="epoch 1") as caught:
            recording.epochs[1]
        assert caught.value.code == 7


def test_more_epochs_announced_than_there_are(recorded, tmp_path):
    """As in a second file that was made in one run of the recording program."""
    path = changed(recorded("steps"), tmp_path / "second.dat", 539, 5)
    path.write_bytes(path.read_bytes() + b"\x00\x00\x7f\x00\x00\x00\x7f\x00")
    with corvantis.open(path) as recording, pytest.warns(corvantis.CorvantisWarning,
                                                         match="5 epochs announced, 3 found"):
        assert len(recording.epochs) == 3


@pytest.mark.filterwarnings("ignore::corvantis.CorvantisWarning")
def test_any_damaged_byte_of_the_headers_is_survived(recorded, tmp_path):
    """Whatever a byte holds, reading ends with values or with the package's own error."""
    source, path = recorded("steps"), tmp_path / "byte.dat"
    refused = 0
    for place in [*range(520, 600, 3), *range(580 + 560, 580 + 912 + 32, 5)]:
        changed(source, path, place, 0xff)
        try:
            recording = corvantis.open(path)
        except corvantis.CorvantisError as error:
            assert error.code in (5, 7) and place < 580
            refused += 1
            continue
        with recording:
            for number in range(len(recording.epochs)):
                try:
                    epoch = recording.epochs[number]
                    epoch.response, epoch.stimuli, epoch.stimulus
                except corvantis.CorvantisError as error:
                    assert error.filename == str(path)
    assert refused < 20


def test_a_file_cut_short_gives_its_code_not_samples(recorded, tmp_path):
    block, path = recorded("steps").read_bytes(), tmp_path / "cut.dat"
    for size in range(0, len(block), 997):
        path.write_bytes(block[:size])
        with pytest.raises(corvantis.CorvantisError) as caught:
            corvantis.open(path).epochs[2].raw
        assert caught.value.code == 7


def test_files_without_epochs_and_epochs_without_points(recorded):
    with corvantis.open(recorded("empty")) as recording:
        assert len(recording.epochs) == len(recording.table()) == len(recording.to_dataframe()) == 0
    with corvantis.open(recorded("odd")) as recording:
        epoch = recording.epochs[0]
        assert epoch.raw.shape == epoch.response.shape == epoch.stimulus.shape == (0, 1)
        assert epoch.time.shape == (0,) and epoch.duration == 0
