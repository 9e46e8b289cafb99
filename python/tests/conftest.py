"""Recorded files and compiled programs that several tests need."""
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

from corvantis.library import find_library

HERE = Path(__file__).parent
HEADERS = HERE.parent.parent / "itc-code"


@pytest.fixture(scope="session")
def recorded(tmp_path_factory):
    """recorded(recipe) gives the path of a file that rig.py recorded."""
    folder = tmp_path_factory.mktemp("recorded")

    def record(recipe):
        path = folder / f"{recipe}.dat"
        if not path.exists():
            subprocess.run([sys.executable, HERE / "rig.py", recipe, path], check=True,
                           stdout=subprocess.DEVNULL)
        return path
    return record


@pytest.fixture(scope="session")
def logged(recorded):
    """logged(recipe) gives what was acquired and played, without going through the file."""
    def load(recipe):
        with np.load(f"{recorded(recipe)}.npz") as log:
            return [(log[f"acquired{k}"], log[f"played{k}"]) for k in range(len(log.files) // 2)]
    return load


@pytest.fixture
def compiled(tmp_path):
    """compiled(text) gives a program built from a C text with the public header alone."""
    def build(text):
        library = Path(find_library()._name).resolve()
        subprocess.run(["cc", "-std=c99", "-D_GNU_SOURCE", f"-I{HEADERS}", "-xc", "-", "-xnone",
                        library, f"-Wl,-rpath,{library.parent}", "-Wl,--allow-shlib-undefined",
                        "-o", tmp_path / "program"], input=text, text=True, check=True)
        return tmp_path / "program"
    return build


@pytest.fixture
def tool():
    """tool(arguments...) runs the command-line tool of the library's build."""
    def run(*arguments):
        program = Path(find_library()._name).resolve().parent.parent / "tools" / "corvantis"
        return subprocess.run([program, *arguments], capture_output=True, text=True)
    return run
