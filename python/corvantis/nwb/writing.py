"""Writing a recording as an NWB file."""
from __future__ import annotations

import hashlib
import json
import math
import os
from collections.abc import Callable, Iterator, Mapping, Sequence
from contextlib import contextmanager
from dataclasses import dataclass
from datetime import datetime, timezone
from pathlib import Path
from typing import Any
from warnings import catch_warnings, filterwarnings, simplefilter

import h5py
import numpy as np
from pynwb import NWBHDF5IO, NWBFile
from pynwb.file import Subject

from .. import __version__
from ..errors import CorvantisWarning
from ..recording import Recording, open_recording
from ..writing import replacing
from .metadata import FileMetadata, Given, metadata_of, zoned
from .plan import STIMULUS, Plan, Series, make_plan
from .series import as_object, form, path_in_file, write_like
from .tables import add_tables, references

WHOLE_TEXTS = ("experimenter", "institution", "lab", "keywords", "experiment_description",
               "session_id", "protocol", "pharmacology", "surgery", "slices", "stimulus_notes",
               "related_publications")
TABLES = ("intracellular_recordings", "simultaneous_recordings", "sequential_recordings",
          "repetitions", "experimental_conditions")
RECORDINGS = "general/intracellular_ephys/intracellular_recordings"
#: The form of groups that HDF5 has since 1.8: smaller, and their members can be in an order.
GROUPS = "v108", "v108"
#: Where the references of rows to series stand, by table and column.
REFERENCES = {"stimulus": f"{RECORDINGS}/stimuli/stimulus",
              "response": f"{RECORDINGS}/responses/response"}


@dataclass(frozen=True)
class Written:
    """What was written: how many epochs and series, whether damaged epochs were left out, and what
    a person should know of it."""

    path: Path
    epochs: int
    series: int
    damaged: bool
    warnings: tuple[str, ...]


def sha256(path: str | Path) -> str:
    """Of a file, in hexadecimal digits."""
    with open(path, "rb") as file:
        return hashlib.file_digest(file, "sha256").hexdigest()


def _plain(value: Any) -> Any:
    """A header's value as JSON can have it."""
    if isinstance(value, float) and not math.isfinite(value):
        return str(value)
    return [_plain(each) for each in value] if isinstance(value, tuple) else value


def provenance(recording: Recording, digest: str, metadata: FileMetadata,
               epochs: Sequence[int] | None, command: str) -> dict[str, Any]:
    """Where a file comes from, as its notes say it; `same_work` says what of this decides what is
    in it."""
    return {"original": Path(recording.path).name, "sha256": digest,
            "bytes": os.path.getsize(recording.path), "corvantis": __version__,
            "epochs": None if epochs is None else sorted(set(map(int, epochs))),
            "command": command,
            "header": {name: _plain(value) for name, value in vars(recording.header).items()},
            "metadata": metadata.values}


def same_work(notes: Mapping[str, Any], other: Mapping[str, Any]) -> bool:
    """Whether two files were made of the same in the same way."""
    return all(notes.get(key) == other.get(key)
               for key in ("sha256", "corvantis", "epochs", "metadata"))


def notes_of(path: str | Path) -> dict[str, Any]:
    """Where an NWB file comes from; empty if this package did not write it."""
    try:
        with h5py.File(path, "r") as file:
            notes = json.loads(file["general/notes"][()])
    except (OSError, KeyError, ValueError, TypeError):
        return {}
    return notes if isinstance(notes, dict) and "sha256" in notes else {}


# ---- The file without its series ------------------------------------------------------------

def _empty_file(recording: Recording, metadata: FileMetadata, notes: Mapping[str, Any],
                plan: Plan) -> NWBFile:
    known = {key: metadata.values[key] for key in WHOLE_TEXTS if key in metadata.values}
    subject = dict(metadata.subject)
    if "date_of_birth" in subject:
        subject["date_of_birth"] = zoned(subject["date_of_birth"])
    session = metadata.values.get("session_description") or recording.comment \
        or f"recording {Path(recording.path).name}"
    chosen = "" if notes["epochs"] is None else f" epochs {notes['epochs']}"
    damaged = {"damaged": {str(number): text for number, text in plan.damaged.items()}}
    return NWBFile(
        session_description=session, identifier=notes["sha256"] + chosen,
        session_start_time=metadata.start, file_create_date=datetime.now(timezone.utc),
        subject=Subject(**subject) if subject else None,
        notes=json.dumps({**notes, **damaged}, ensure_ascii=False), source_script=notes["command"],
        source_script_file_name="corvantis-nwb", **known)


def _add_electrodes(file: NWBFile, plan: Plan, metadata: FileMetadata) -> dict[int, Any]:
    """The device and an electrode for each input that one recorded at."""
    device = file.create_device(**{"name": "ITC18", "description": "acquisition interface",
                                   **metadata.values.get("device", {})})
    channels = sorted({each.electrode for each in plan.series if each.electrode is not None})
    return {channel: file.create_icephys_electrode(**{
        "name": f"electrode_{channel}", "device": device,
        "description": f"electrode at input {channel}", **metadata.electrode(channel)})
        for channel in channels}


def _build(plan: Plan, metadata: FileMetadata, notes: Mapping[str, Any],
           patterns: Mapping[Any, Series]) -> NWBFile:
    """The file with the series that are patterns; rows refer to those in place of their own."""
    file = _empty_file(plan.recording, metadata, notes, plan)
    electrodes = _add_electrodes(file, plan, metadata)
    made = {each.name: as_object(each, electrodes) for each in patterns.values()}
    for each in patterns.values():
        add = file.add_stimulus if each.group == STIMULUS else file.add_acquisition
        add(made[each.name])
    standing = {each.name: made.get(each.name) or made[patterns[form(each)].name]
                for each in plan.series}
    add_tables(file, plan, standing, electrodes)
    return file


def _refer(file: h5py.File, place: str, rows: Sequence[tuple[int, int, Series]]) -> None:
    """Let rows refer to their own series."""
    column = file[place]
    values = np.empty(len(rows), column.dtype)
    for index, (start, count, series) in enumerate(rows):
        values[index] = start, count, file[path_in_file(series)].ref
    column[...] = values


def _put_in_order(file: h5py.File) -> None:
    """Let who reads the file come to each table before those that refer to it.

    What is come to by a reference has its name searched for through the whole file, each time that
    pynwb asks for it: without this a quarter of the time that 1,000 epochs take to read.
    """
    parent, name = file["general"], "intracellular_ephys"
    before = parent[name]
    after = parent.create_group(f"{name} ", track_order=True)
    for member in [*TABLES, *(each for each in before if each not in TABLES)]:
        after[member] = before[member]
    del parent[name]
    parent.move(after.name, name)


def _complete(path: str, plan: Plan, patterns: Mapping[Any, Series]) -> None:
    """Add the series that pynwb did not write, and let rows refer to them."""
    with h5py.File(path, "r+", libver=GROUPS) as file:
        write_like(file, patterns, plan.series)
        for column, values in references(plan.recorded).items():
            if values:
                _refer(file, REFERENCES[column], values)
        if plan.recorded:
            _put_in_order(file)


# ---- The whole ------------------------------------------------------------------------------

@contextmanager
def opened(recording: Recording | str | Path) -> Iterator[Recording]:
    """A recording, which is closed again if it was given as a path."""
    if isinstance(recording, Recording):
        yield recording
    else:
        with open_recording(recording) as own:
            yield own


def write_file(recording: Recording, path: str | Path, metadata: FileMetadata,
               notes: Mapping[str, Any], all_through_pynwb: bool = False) -> Plan:
    """Write an NWB file to a path of its own; `write` is what others call.

    Args:
        notes: as `provenance` gives them.
        all_through_pynwb: let pynwb write every series, which takes several times as long.
    """
    numbers = notes["epochs"]
    with catch_warnings():
        simplefilter("ignore", CorvantisWarning)    # they stand in the plan and in the file
        filterwarnings("ignore", "The file path provided")  # its name while it is not whole
        plan = make_plan(recording, metadata,
                         range(len(recording.epochs)) if numbers is None else numbers)
        patterns: dict[Any, Series] = {}
        for each in plan.series:
            patterns.setdefault(each.name if all_through_pynwb else form(each), each)
        built = _build(plan, metadata, notes, patterns)
        with h5py.File(path, "w", libver=GROUPS) as file, NWBHDF5IO(file=file, mode="w") as writer:
            writer.write(built)
        if not all_through_pynwb:
            _complete(str(path), plan, patterns)
    return plan


def write(recording: Recording | str | Path, path: str | Path, metadata: Given,
          epochs: Sequence[int] | None = None, command: str = "corvantis.nwb.write",
          check: Callable[[str, Recording], None] | None = None) -> Written:
    """Write a recording as an NWB file, whole or not at all.

    Args:
        recording: the recording, of a file, or its path.
        path: the NWB file, which is replaced if it is there.
        metadata: what a lab knows: a file, a dictionary of the same form, or what
            `corvantis.nwb.metadata_of` gave.
        epochs: numbers of the epochs, which are written in the file's order; all without them.
        command: what the file says that it was made by.
        check: is called with the file's path before it takes its place, and what it raises keeps it
            from that.

    Raises:
        MetadataError: if the metadata are wrong, or lack what NWB cannot do without.
        CorvantisError: if the recording cannot be read, or changed meanwhile.
    """
    with opened(recording) as source, replacing(path) as temporary:
        resolved = metadata_of(metadata).of(source.path)
        notes = provenance(source, sha256(source.path), resolved, epochs, command)
        plan = write_file(source, temporary, resolved, notes)
        source._check(source._opened)
        if check is not None:
            check(temporary, source)
    return Written(Path(path), len(plan.epochs), len(plan.series), bool(plan.damaged),
                   tuple(plan.warnings))
