"""Metadata files: what is refused, what goes before what, and names that follow."""
import re
from pathlib import PurePosixPath

import pytest
import yaml

from corvantis.nwb import MetadataError, metadata_of, target, template

WRONG = """\
session_start_time: 2026-11-23 10:30
subject:
  subject_id: m_12
  species: mouse
  sex: male
  colour: black
files:
  - session_id: a/b
"""
SAID = [
    (1, "session_start_time", "'2026-11-23 10:30'", "date, time and zone"),
    (3, "subject.subject_id", "'m_12'", "letters, digits"),
    (4, "subject.species", "'mouse'", "genus and species"),
    (5, "subject.sex", "'male'", "one of M, F, O, U"),
    (6, "subject", "the key colour", "one of subject_id, species"),
    (8, "files.0", "no pattern", "it"),
    (8, "files.0.session_id", "'a/b'", "letters, digits"),
]


def refused(path):
    with pytest.raises(MetadataError) as raised:
        metadata_of(path)
    return str(raised.value)


def test_each_error_says_its_line_what_was_found_and_what_is_expected(tmp_path):
    path = tmp_path / "lab.yaml"
    path.write_text(WRONG)
    lines = refused(path).splitlines()
    for line, name, found, expected in SAID:
        beginning = f"{path}, line {line}: {name}: found {found}, expected {expected}"
        assert any(each.startswith(beginning) for each in lines), beginning
    assert len(lines) == len(SAID)


@pytest.mark.parametrize("name, text, said", [
    ("a.json", '{"lab": "a",\n "lab" "b"}', "line 2"),
    ("b.json", '{\n\t"lab": ["a"]\n}', "line 2: lab: found '[\"a\"]', expected a text"),
    ("a.yaml", "lab: a\nsubject: {}\nlab: b\n", "line 3: found lab again, expected it once"),
    ("b.yaml", "lab: [a", "expected YAML"), ("c.yaml", "- a", "expected keys with values"),
    ("d.yaml", "lab: &a [1]\nkeywords: *a", "found an alias"), ("e.yaml", b"\xff", "no UTF-8")])
def test_other_documents_are_refused(tmp_path, name, text, said):
    path = tmp_path / name
    path.write_bytes(text if isinstance(text, bytes) else text.encode())
    assert said in refused(path)


def test_single_recordings_and_their_names(lab):
    metadata = metadata_of({**lab, "files": [
        {"pattern": "cell*.dat", "electrode": {"cell_id": 7}, "session_id": 20261123},
        {"pattern": "old/*.dat", "session_start_time": "1999-01-31T12:00:00-05:00"}]})
    plain, special = metadata.of("a/x y_2.dat"), metadata.of("/data/old/cell.5.dat")
    assert target(plain, "a/x y_2.dat") == PurePosixPath(
        "sub-m12/sub-m12_slice-1_cell-3_desc-x-y-2_icephys.nwb")
    assert target(special, "cell.5.dat") == PurePosixPath(
        "sub-m12/sub-m12_ses-20261123_slice-1_cell-7_desc-cell-5_icephys.nwb")
    assert special.start.isoformat() == "1999-01-31T12:00:00-05:00"
    few = {"session_start_time": lab["session_start_time"], "epoch_time": "unknown",
           "subject": {"subject_id": "a", "date_of_birth": "2026-11-01T00:00:00Z"}}
    assert plain.lacking() == [] and metadata_of(few).of("a").lacking() == [
        "electrode", "experimenter", "institution", "keywords", "experiment_description",
        "subject.species", "subject.sex"]
    with pytest.raises(MetadataError, match="found no session_start_time for x.dat, expected date"):
        metadata_of({"epoch_time": "unknown"}).of("x.dat")


def test_the_template_is_refused_until_it_is_filled_in(tmp_path, lab):
    path = tmp_path / "lab.yaml"
    path.write_text(template())
    unfilled = refused(path).splitlines()
    assert len(unfilled) == template().count('"???"')
    values = yaml.safe_load(template())
    for key in values:
        assert key in lab, key
    optional = [line[2:] for line in template().splitlines()
                if re.match(r"# [a-z_]+: [\[{\"]", line)]
    assert len(optional) > 8
    for line in optional:
        metadata_of({**lab, **yaml.safe_load(line)})
