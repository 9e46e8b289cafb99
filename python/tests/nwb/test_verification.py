"""Faults planted in files: those that nobody's checker misses, and those that most do."""
import h5py
import numpy as np
import pytest

import corvantis.nwb

SERIES = "acquisition/epoch_0_entry_0_response"
PLAYED = "stimulus/presentation/epoch_0_entry_0_stimulus"
ELECTRODE = "general/intracellular_ephys/electrode_0"
RECORDINGS = "general/intracellular_ephys/intracellular_recordings"


def one_longer(file):
    column = file[f"{RECORDINGS}/responses/response"]
    rows = column[:]
    rows[0] = (0, 401, rows[0][2])
    column[:] = rows


def stimulus_as_response(file):
    column = file[f"{RECORDINGS}/responses/response"]
    rows = column[:]
    rows[0] = (0, 400, file[PLAYED].ref)
    column[:] = rows


def lost_sample(file):
    data = file[SERIES]["data"][:-1]
    attributes = dict(file[SERIES]["data"].attrs)
    del file[SERIES]["data"]
    file[SERIES]["data"] = data
    file[SERIES]["data"].attrs.update(attributes)


def write_to(place, value):
    def change(file):
        file[place][0] = value
    return change


FAULTS = {
    "electrode link missing": lambda file: file[SERIES].pop("electrode"),
    "session_start_time missing": lambda file: file.pop("session_start_time"),
    "electrode description missing": lambda file: file[ELECTRODE].pop("description"),
    "subject missing": lambda file: file["general"].pop("subject"),
    "cell_id missing": lambda file: file[ELECTRODE].pop("cell_id"),
    "unit millivolts": lambda file: file[SERIES]["data"].attrs.modify("unit", "millivolts"),
    "wrong clamp type": lambda file: file[SERIES].attrs.modify("neurodata_type",
                                                               "VoltageClampSeries"),
    "count one longer": one_longer,
    "stimulus as response": stimulus_as_response,
    "another conversion": lambda file: file[PLAYED]["data"].attrs.modify("conversion", 1e-12),
    "another sample": write_to(f"{SERIES}/data", 1234),
    "a sample lost": lost_sample,
    "another rate": lambda file: file[SERIES]["starting_time"].attrs.modify("rate", 1e4),
    "another start": lambda file: file[SERIES]["starting_time"].write_direct(np.array(1.0)),
    "a row of another epoch": write_to(f"{RECORDINGS}/epoch", 1),
    "another temperature": write_to(
        "general/intracellular_ephys/simultaneous_recordings/temperature", 31.0),
    "a series missing": lambda file: file["stimulus/presentation"].pop("epoch_0_entry_0_stimulus"),
    "a series too many": lambda file: file["acquisition"].copy(file[SERIES], "other"),
}


@pytest.mark.filterwarnings("ignore")
@pytest.mark.parametrize("fault", FAULTS)
def test_a_planted_fault_is_found(fault, recording, written, tmp_path, lab):
    path = tmp_path / "fault.nwb"
    path.write_bytes(written("clamps").read_bytes())
    assert corvantis.nwb.verify(path, recording("clamps"), lab) == []
    with h5py.File(path, "r+") as file:
        FAULTS[fault](file)
    assert corvantis.nwb.verify(path, recording("clamps"))
    assert corvantis.nwb.verify(path, recording("clamps"), lab)


def test_another_recording_differs(recording, written):
    assert corvantis.nwb.verify(written("clamps"), recording("steps"))
