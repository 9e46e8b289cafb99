"""What stands in the files, in SI and by hand."""
import hashlib
import json
import math

import numpy as np
import pytest
from hdmf.container import AbstractContainer

import corvantis
import corvantis.nwb
from corvantis.nwb.writing import provenance, sha256, write_file

# Of the recipe `clamps`, by epoch and entry: types, electrode, SI in a count of response and
# stimulus, units, rate, start. 3200 counts are a volt: 0.01 V/mV and 400 pA/V, 0.001 V/pA and
# 20 mV/V. Of three entries at 100 us each follows the one before by 33 us.
CLAMPS = {
    (0, 0): ("CurrentClampSeries", "CurrentClampStimulusSeries", "electrode_0", 3.125e-5, 1.25e-13,
             "volts", "amperes", 20000.0, 1.5),
    (1, 0): ("VoltageClampSeries", "VoltageClampStimulusSeries", "electrode_3", 3.125e-13, 6.25e-6,
             "amperes", "volts", 10000.0, 2.25),
    (2, 0): ("CurrentClampSeries", None, "electrode_0", 3.125e-5, None, "volts", None, 10000.0,
             3.0),
    (3, 0): ("IZeroClampSeries", None, "electrode_0", 3.125e-5, None, "volts", None, 10000.0, 4.0),
    (4, 0): ("CurrentClampSeries", "CurrentClampStimulusSeries", "electrode_0", 3.125e-5, 1.25e-13,
             "volts", "amperes", 10000.0, 5.0),
    (4, 1): ("TimeSeries", "TimeSeries", None, 6.25e-4, 3.125e-4, "deg", "volts", 10000.0,
             5.000033),
    (4, 2): ("TimeSeries", "TimeSeries", None, 1.0, 1.0, "word", "word", 10000.0, 5.000066),
    (5, 0): ("TimeSeries", "TimeSeries", None, 3.125e-4, 3.125e-4, "V", "V", 10000.0, 6.0),
}
ROWS = [place for place, expected in CLAMPS.items() if expected[2]]


def name(epoch, entry, side):
    return f"epoch_{epoch}_entry_{entry}_{side}"


def test_series_are_what_was_recorded_and_played(written, read, logged):
    file, log = read(written("clamps")), logged("clamps")
    for (epoch, entry), expected in CLAMPS.items():
        response = file.acquisition[name(epoch, entry, "response")]
        stimulus = file.stimulus.get(name(epoch, entry, "stimulus"))
        sides = [(response, expected[0::3][0], expected[3], expected[5], log[epoch][0])]
        assert (stimulus is None) == (expected[1] is None)
        if stimulus is not None:
            sides.append((stimulus, expected[1], expected[4], expected[6], log[epoch][1]))
        for series, kind, conversion, unit, samples in sides:
            assert type(series).__name__ == kind
            assert (series.unit, series.rate, series.offset) == (unit, expected[7], 0.0)
            assert series.conversion == pytest.approx(conversion, rel=1e-7)
            assert series.starting_time == pytest.approx(expected[8], abs=1e-12)
            assert getattr(getattr(series, "electrode", None), "name", None) == expected[2]
            counts = samples[:, entry].view(np.uint16 if unit == "word" else np.int16)
            assert series.data.dtype == counts.dtype and np.array_equal(series.data[:], counts)
            said = json.loads(series.comments)
            assert (said["epoch"], said["entry"], said["segment"]) == (epoch, entry,
                                                                       f"epoch {epoch}")
    assert len(file.acquisition) == len(CLAMPS)
    pulse = json.loads(file.stimulus[name(0, 0, "stimulus")].comments)["stimulus"]
    assert pulse["parameters"]["amplitude"] == 1600 and pulse["levels"]["amplitude"] == 200.0
    assert file.acquisition[name(3, 0, "response")].stimulus_description == "N/A"
    for which, first in (("excitatory", 0.0), ("inhibitory", 9.0)):
        series = file.stimulus[name(2, 0, f"{which}_conductance")]
        assert (series.unit, series.data.dtype) == ("siemens", np.float32)
        assert (series.data[0], series.data[-1], series.conversion) == (first, 4.0, 1e-9)


def test_tables(written, read):
    file = read(written("clamps"))
    table = file.intracellular_recordings
    assert list(zip(table["epoch"][:], table["entry"][:])) == ROWS
    for row, place in enumerate(ROWS):
        response = table.category_tables["responses"]["response"][row]
        stimulus = table.category_tables["stimuli"]["stimulus"][row]
        assert response.timeseries.name == name(*place, "response")
        assert (response.idx_start, response.count) == (0, len(response.timeseries.data))
        if CLAMPS[place][1] is None:
            assert table.category_tables["stimuli"]["stimulus"].data[row][0] == -1
        else:
            assert stimulus.timeseries.name == name(*place, "stimulus")
        assert table.category_tables["electrodes"]["electrode"][row].name == CLAMPS[place][2]
    assert table["ampGain"][:].tolist() == [np.float32(x) for x in (0.01, 0.001, 0.01, 0.01, 0.01)]
    assert table["ampGain"].description == "amplifier gain of each entry's input [V/unit]"
    assert list(table["stimulus_in_words"][:2]) == ["pulse 200 pA on 0 pA, 10 ms after 5 ms",
                                                    "pulse 5 mV on 0 mV, 15 ms after 7.5 ms"]
    assert [bool(doubt) for doubt in table["stimulus_doubt"][:]] == [False, False, True, False,
                                                                     False]
    epochs = file.icephys_simultaneous_recordings
    assert epochs["epochTime"][:].tolist() == [1.5, 2.25, 3, 4, 5, 6]
    assert epochs["temperature"][0] == 32.0 and epochs["temperature"].description.endswith("[°C]")
    assert epochs["userValue"][0].tolist() == [20.0, 0.25] + [0.0] * 22
    assert epochs["epochComment"][0] == "current"
    assert [len(epochs["recordings"][row]) for row in range(6)] == [1, 1, 1, 1, 1, 0]
    assert file.icephys_sequential_recordings["stimulus_type"][:].tolist() == [
        "pulse", "pulse", "dynamic clamp", "spatial", "pulse + pulse + pulse", "pulse"]
    repeated = file.icephys_repetitions["sequential_recordings"]
    assert [list(map(int, repeated[row].index)) for row in range(4)] == [[0, 1, 5], [2], [3], [4]]
    others = file.analysis["other_entries"]
    assert list(zip(others["epoch"][:], others["entry"][:])) == [(4, 1), (4, 2), (5, 0)]
    assert others["response"][0] == name(4, 1, "response")


def test_provenance_and_metadata(written, read, recording, lab):
    file, path = read(written("clamps")), recording("clamps")
    notes = json.loads(file.notes)
    assert notes["sha256"] == hashlib.sha256(path.read_bytes()).hexdigest() == file.identifier
    assert (notes["original"], notes["corvantis"]) == (path.name, corvantis.__version__)
    assert notes["header"]["inputScale"] == 3200.0 and notes["header"]["version"] == 8
    assert file.session_start_time.isoformat() == lab["session_start_time"]
    assert file.subject.subject_id == "m12" and file.subject.description is None
    assert file.icephys_electrodes["electrode_3"].cell_id == "3"
    assert file.acquisition[name(0, 0, "response")].bridge_balance is None


@pytest.mark.parametrize("meaning, starts", [
    ({"unit": "ms", "origin": "session_start"}, [0.0015, 0.00225]),
    ({"unit": "min", "origin": "first_epoch"}, [0.0, 45.0]),
    ({"unit": "s", "origin": "2026-11-23T09:31:00Z"}, [61.5, 62.25]),
    ("unknown", [math.nan, math.nan])])
def test_times(recording, tmp_path, read, lab, meaning, starts):
    path = tmp_path / "times.nwb"
    made = corvantis.nwb.write(recording("clamps"), path, {**lab, "epoch_time": meaning},
                               [1, 0, 1])
    assert made.epochs == 2 and corvantis.nwb.verify(path, recording("clamps")) == []
    series = read(path).acquisition
    assert [series[name(epoch, 0, "response")].starting_time for epoch in (0, 1)] == \
        pytest.approx(starts, nan_ok=True)


def test_amplifier_modes_go_before_units(recording, tmp_path, read, lab):
    modes = {"1": "no_stimulus", "2": "current_clamp"}
    path = tmp_path / "modes.nwb"
    metadata = {**lab, "amplifier_modes": modes}
    made = corvantis.nwb.write(recording("clamps"), path, metadata, [0, 1])
    assert made.warnings == ("epoch 1, entry 0: amplifier mode 2 is current_clamp, but the "
                             "response is in pA",)
    file = read(path)
    assert type(file.acquisition[name(0, 0, "response")]).__name__ == "IZeroClampSeries"
    assert type(file.stimulus[name(0, 0, "stimulus")]).__name__ == "TimeSeries"
    assert type(file.acquisition[name(1, 0, "response")]).__name__ == "VoltageClampSeries"


def contents(thing, seen):
    """All of an object of pynwb but its identity, as plain values."""
    if isinstance(thing, AbstractContainer):
        if id(thing) in seen:
            return thing.name
        seen.add(id(thing))
        return {key: contents(value, seen) for key, value in thing.fields.items()
                if key not in ("file_create_date",)} | {"type": type(thing).__name__}
    if hasattr(thing, "items"):
        return {key: contents(value, seen) for key, value in thing.items()}
    if isinstance(thing, (tuple, list)):
        return [contents(each, seen) for each in thing]
    if hasattr(thing, "shape") and thing.shape:
        return [str(getattr(thing, "dtype", "")), [contents(each, seen) for each in thing[:]]]
    return str(thing)


@pytest.mark.parametrize("recipe", ["clamps", "types", "demo"])
def test_files_are_as_pynwb_alone_writes_them(recipe, recording, written, read, tmp_path, lab):
    other = tmp_path / "other.nwb"
    metadata = corvantis.nwb.metadata_of(lab).of(recording(recipe))
    with corvantis.open(recording(recipe)) as source:
        notes = provenance(source, sha256(source.path), metadata, None, "corvantis.nwb.write")
        write_file(source, other, metadata, notes, all_through_pynwb=True)
    ours, theirs = (contents(read(path), set()) for path in (written(recipe), other))
    assert ours == theirs and len(ours["acquisition"]) > 6
