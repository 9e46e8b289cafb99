"""Recorded files, what was played into them, and the programs of the library's build."""
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

from corvantis.library import library


@pytest.fixture(scope="session")
def recorded(tmp_path_factory):
    """recorded(recipe) gives the path of a file that rig.py recorded."""
    folder = tmp_path_factory.mktemp("recorded")

    def record(recipe):
        path = folder / f"{recipe}.dat"
        if not path.exists():
            subprocess.run([sys.executable, Path(__file__).with_name("rig.py"), recipe, path],
                           check=True, stdout=subprocess.DEVNULL)
        return path
    return record


@pytest.fixture(scope="session")
def logged(recorded):
    """logged(recipe) gives the pairs of what was acquired and played in each epoch."""
    def load(recipe):
        with np.load(f"{recorded(recipe)}.npz") as log:
            return [(log[f"acquired{k}"], log[f"played{k}"]) for k in range(len(log.files) // 2)]
    return load


@pytest.fixture(scope="session")
def build():
    """The folder that the library was built in."""
    return Path(library()._name).resolve().parent.parent
