"""NWB files of test recordings."""
import os
import shutil
from pathlib import Path

import pytest
from pynwb import NWBHDF5IO

import corvantis.nwb

LAB = {
    "session_start_time": "2026-11-23T10:30:00+01:00",
    "epoch_time": {"unit": "s", "origin": "session_start"},
    "subject": {"subject_id": "m12", "species": "Mus musculus", "sex": "F", "age": "P21D"},
    "electrode": {"cell_id": "3", "slice": "1"}, "experimenter": ["Hodgkin, Alan"],
    "institution": "Plymouth Laboratory", "keywords": ["patch clamp"],
    "experiment_description": "Tests of every kind of entry",
}


@pytest.fixture(scope="session")
def lab():
    """Metadata that are complete."""
    return LAB


@pytest.fixture(scope="session")
def recording(recorded, tmp_path_factory):
    """recording(recipe) gives the path of a test recording, or of the demo."""
    def give(recipe):
        if recipe != "demo":
            return recorded(recipe)
        path = tmp_path_factory.getbasetemp() / "demo.dat"
        return path if path.exists() else Path(shutil.copy(os.environ["CORVANTIS_DEMO"], path))
    return give


@pytest.fixture(scope="session")
def written(recording, tmp_path_factory):
    """written(recipe) gives the path of its NWB file."""
    folder = tmp_path_factory.mktemp("nwb")

    def give(recipe):
        path = folder / f"{recipe}.nwb"
        if not path.exists():
            corvantis.nwb.write(recording(recipe), path, LAB)
        return path
    return give


@pytest.fixture
def read():
    """read(path) gives what pynwb reads of a file."""
    readers = []

    def give(path):
        readers.append(NWBHDF5IO(str(path), "r"))
        return readers[-1].read()
    yield give
    for reader in readers:
        reader.close()
