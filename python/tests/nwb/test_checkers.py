"""What the field's own checkers say of every kind of recording, in one folder as DANDI has it."""
import json
import shutil
import subprocess
import sys
from pathlib import Path

import pytest
import yaml
from nwbinspector import Importance, inspect_all, load_config
from pynwb import validate

from corvantis import commands

RECIPES = ["demo", "clamps", "steps", "types", "unstored", "history-3", "history-4-4", "odd"]
DANDISET = {"identifier": "DANDI:000000", "name": "Tests", "description": "Recordings of a model",
            "schemaKey": "Dandiset"}


@pytest.fixture(scope="module")
def organised(recording, build, lab, tmp_path_factory):
    """A folder with an NWB file of each, and one of a repaired recording."""
    work = tmp_path_factory.mktemp("archive")
    inputs, out = work / "in", work / "out"
    inputs.mkdir()
    for recipe in RECIPES:
        shutil.copy(recording(recipe), inputs / f"{recipe}.dat")
    (work / "cut.dat").write_bytes(recording("demo").read_bytes()[:200_000])
    subprocess.run([build / "tools/corvantis", "repair", work / "cut.dat", "-o",
                    inputs / "repaired.dat"], stdout=subprocess.DEVNULL)
    lab = {**lab, "subject": {**lab["subject"], "description": "none, it is a model"}}
    (work / "lab.yaml").write_text(yaml.safe_dump(lab))
    assert commands.nwb([str(inputs), "-o", str(out), "-m", str(work / "lab.yaml")]) == 0
    (out / "dandiset.yaml").write_text(yaml.safe_dump(DANDISET))
    return out


def test_pynwb_finds_nothing(organised):
    paths = list(organised.rglob("*.nwb"))
    assert len(paths) == len(RECIPES) + 1
    assert {path.name: validate(path=str(path)) for path in paths if validate(path=str(path))} == {}


def test_nwbinspector_finds_nothing_above_suggestions(organised):
    found = list(inspect_all(path=organised, config=load_config("dandi"), progress_bar=False,
                             importance_threshold=Importance.BEST_PRACTICE_VIOLATION))
    assert found == []


def test_dandi_finds_nothing(organised):
    dandi = Path(sys.executable).with_name("dandi")
    ran = subprocess.run([dandi, "validate", "--format", "json", organised], capture_output=True,
                         text=True)
    assert [each for each in json.loads(ran.stdout or "[]")
            if each["severity"] not in ("HINT", "INFO")] == []
    assert ran.returncode == 0, ran.stderr
