"""Holding an NWB file against its recording, as pynwb reads it."""
from __future__ import annotations

from collections.abc import Iterator, Mapping, Sequence
from itertools import accumulate
from pathlib import Path
from typing import Any
from warnings import catch_warnings, simplefilter

import numpy as np
from pynwb import NWBHDF5IO, NWBFile

from ..errors import CorvantisWarning
from ..interface import EPOCH_HEADER
from ..recording import Recording
from ..records import fields_of
from .metadata import FileMetadata, Given, metadata_of
from .plan import Plan, Row, Series, make_plan
from .tables import (NONE, OTHERS, TYPES, epoch_values, other_values, references, repetitions,
                     runs)
from .writing import WHOLE_TEXTS, notes_of, opened, sha256

ROUNDING = 1e-12    # relative, of a product in double precision
SERIES = ("conversion", "resolution", "rate", "description", "comments", "gain",
          "stimulus_description")


def _same(found: Any, expected: Any) -> bool:
    """Whether two values or arrays are the same; what is not a number is."""
    left, right = np.asarray(found), np.asarray(expected)
    if left.shape != right.shape:
        return False
    if left.dtype.kind in "fiu" and right.dtype.kind in "fiu":
        return bool(np.array_equal(left, right, equal_nan=True))
    return bool((left == right).all())


def _differs(where: str, found: Any, expected: Any) -> Iterator[str]:
    if not _same(found, expected):
        yield f"{where}: found {_short(found)}, expected {_short(expected)}"


def _short(value: Any) -> str:
    text = repr(value.item() if isinstance(value, np.generic) else value)
    return text if len(text) <= 80 else text[:77] + "..."


# ---- Series ---------------------------------------------------------------------------------

def _samples(where: str, found: Any, series: Series) -> Iterator[str]:
    data, expected = found.data[:], series.read()
    yield from _differs(f"{where}: type of the samples", str(data.dtype), str(expected.dtype))
    if data.shape != expected.shape:
        yield f"{where}: found {data.shape} samples, expected {expected.shape}"
        return
    different = np.flatnonzero(data != expected)
    if len(different):
        yield (f"{where}: {len(different)} samples differ, the first is number {different[0]}: "
               f"found {data[different[0]]}, expected {expected[different[0]]}")
    values = data * float(found.conversion) + float(found.offset)
    physical = series.values() if series.values is not None else values
    if not np.allclose(values, physical, rtol=ROUNDING, atol=0.0):
        yield f"{where}: values in {series.unit} differ from the recording's"


def _one_series(found: Any, series: Series) -> Iterator[str]:
    where = f"{series.group}/{series.name}"
    yield from _differs(f"{where}: type", type(found).__name__, series.kind)
    # pynwb takes the unit of clamp series for granted, whatever stands there.
    yield from _differs(f"{where}: unit", found.data.attrs.get("unit"), series.unit)
    for name in SERIES:
        yield from _differs(f"{where}: {name}", getattr(found, name, None), getattr(series, name))
    yield from _differs(f"{where}: starting time", found.starting_time, series.start)
    electrode = getattr(found, "electrode", None)
    expected = None if series.electrode is None else f"electrode_{series.electrode}"
    yield from _differs(f"{where}: electrode", getattr(electrode, "name", None), expected)
    if series.electrode is not None:
        yield from _differs(f"{where}: sweep number", found.sweep_number, series.epoch)
    yield from _samples(where, found, series)


def _all_series(file: NWBFile, plan: Plan) -> Iterator[str]:
    there = {("acquisition", name): each for name, each in file.acquisition.items()}
    there.update({("stimulus", name): each for name, each in file.stimulus.items()})
    for series in plan.series:
        found = there.pop((series.group, series.name), None)
        if found is None:
            yield f"{series.group}/{series.name}: found nothing, expected a {series.kind}"
        else:
            yield from _one_series(found, series)
    for group, name in there:
        yield f"{group}/{name}: found it, expected nothing of the name"


# ---- Tables ---------------------------------------------------------------------------------

def _columns(where: str, table: Any, rows: Sequence[Mapping[str, Any]]) -> Iterator[str]:
    """The columns of a table, the header's ones in the header's types."""
    yield from _differs(f"{where}: rows", len(table.id), len(rows))
    fields = fields_of(EPOCH_HEADER)
    for name in rows[0] if len(table.id) == len(rows) else ():
        if name not in table.colnames:
            yield f"{where}: found no column {name}, expected it"
            continue
        kind = TYPES[fields[name].kind] if name in fields else None
        found = table[name].data[:]
        expected = np.array([row[name] for row in rows], kind)
        if not _same(found, expected):
            for index, each in enumerate(found):
                yield from _differs(f"{where}: {name}, row {index}", each, expected[index])


def _references(where: str, column: Any, rows: Sequence[tuple[int, int, Series]]) -> Iterator[str]:
    for index, (start, count, series) in enumerate(rows):
        found = column[index]
        place = f"{where}, row {index}"
        nothing = found[0] is None      # so pynwb reads -1, -1
        yield from _differs(f"{place}: start and count",
                            list(NONE) if nothing else [found[0], found[1]], [start, count])
        if (start, count) != NONE and not nothing:
            yield from _differs(f"{place}: series", found[2].name, series.name)
            if found[0] + found[1] > len(found[2].data):
                yield f"{place}: found {found[1]} points, expected {len(found[2].data)} at most"


def _regions(where: str, table: Any, name: str, groups: Sequence[Sequence[int]]) -> Iterator[str]:
    """Which rows of another table each row stands for."""
    ends = list(accumulate(map(len, groups)))
    yield from _differs(f"{where}: ends of {name}", table[name].data[:], ends)
    yield from _differs(f"{where}: rows of {name}", table[name].target.data[:],
                        [row for group in groups for row in group])


def _in_runs(counts: Sequence[int]) -> list[range]:
    ends = list(accumulate(counts))
    return [range(end - count, end) for end, count in zip(ends, counts)]


def _recordings(file: NWBFile, rows: Sequence[Row]) -> Iterator[str]:
    table = file.intracellular_recordings
    yield from _columns("intracellular_recordings", table, [row.values for row in rows])
    if len(table.id) != len(rows):
        return
    for (name, expected), category in zip(references(rows).items(), ("stimuli", "responses")):
        column = table.category_tables[category][name]
        yield from _references(f"{category}/{name}", column, expected)
    electrodes = table.category_tables["electrodes"]["electrode"]
    for index, row in enumerate(rows):
        yield from _differs(f"electrodes, row {index}", electrodes[index].name,
                            f"electrode_{row.response.electrode}")


def _tables(file: NWBFile, plan: Plan) -> Iterator[str]:
    others = file.analysis.get(OTHERS)
    if plan.others and others is not None:
        yield from _columns(OTHERS, others, list(map(other_values, plan.others)))
    elif plan.others or others is not None:
        yield f"{OTHERS}: found {others and len(others)} rows, expected {len(plan.others)}"
    if not plan.recorded:
        return
    parts = (file.intracellular_recordings, file.icephys_simultaneous_recordings,
             file.icephys_sequential_recordings, file.icephys_repetitions,
             file.icephys_experimental_conditions)
    if any(part is None for part in parts):
        yield "tables of intracellular recordings: found not all five, expected them"
        return
    yield from _recordings(file, plan.recorded)
    _, simultaneous, sequential, repeated, conditions = parts
    yield from _columns("simultaneous_recordings", simultaneous,
                        list(map(epoch_values, plan.epochs)))
    yield from _regions("simultaneous_recordings", simultaneous, "recordings", _in_runs(
        [len(plan.rows[epoch.number]) for epoch in plan.epochs]))
    yield from _columns("sequential_recordings", sequential, [
        {"stimulus_type": name} for name, _ in runs(plan)])
    yield from _regions("sequential_recordings", sequential, "simultaneous_recordings", _in_runs(
        [count for _, count in runs(plan)]))
    alike = repetitions(plan)
    yield from _regions("repetitions", repeated, "sequential_recordings", alike)
    yield from _regions("experimental_conditions", conditions, "repetitions", [range(len(alike))])


# ---- The file -------------------------------------------------------------------------------

def _whole(file: NWBFile, plan: Plan, metadata: FileMetadata) -> Iterator[str]:
    yield from _differs("session_start_time", file.session_start_time, metadata.start)
    for name in WHOLE_TEXTS:
        found, expected = getattr(file, name), metadata.values.get(name)
        listed = [expected] if isinstance(expected, str) and name == "experimenter" else expected
        found = list(found) if isinstance(listed, list) and found is not None else found
        yield from _differs(name, found, listed)
    for name, expected in metadata.subject.items():
        found = getattr(file.subject, name, None)
        if name != "date_of_birth":
            yield from _differs(f"subject/{name}", found, expected)
    for channel in {each.electrode for each in plan.series if each.electrode is not None}:
        electrode = file.icephys_electrodes.get(f"electrode_{channel}")
        for name, expected in metadata.electrode(channel).items():
            yield from _differs(f"electrode_{channel}/{name}", getattr(electrode, name, None),
                                expected)


def _differences(path: str | Path, recording: Recording, metadata: Given | None) -> Iterator[str]:
    notes = notes_of(path)
    if not notes:
        yield "found no notes of corvantis, expected those of a file that it wrote"
        return
    yield from _differs("sha256 of the recording", notes["sha256"], sha256(recording.path))
    resolved = FileMetadata(notes["metadata"]) if metadata is None else \
        metadata_of(metadata).of(recording.path)
    numbers = notes["epochs"]
    plan = make_plan(recording, resolved,
                     range(len(recording.epochs)) if numbers is None else numbers)
    with NWBHDF5IO(str(path), "r") as reader:
        file = reader.read()
        yield from _whole(file, plan, resolved)
        yield from _all_series(file, plan)
        yield from _tables(file, plan)


def verify(nwb: str | Path, recording: Recording | str | Path, metadata: Given | None = None,
           ) -> list[str]:
    """Compare an NWB file with its recording: every sample, as counts and in units, every rate,
    unit and time, every row of the tables.

    Args:
        nwb: a file that this package wrote.
        recording: the recording, of a file, or its path.
        metadata: what it was written with; without them what the file itself says of that.

    Returns:
        What differs, a line each with what was found and what is expected; nothing if all is right.
    """
    with opened(recording) as source, catch_warnings():
        simplefilter("ignore", CorvantisWarning)
        differences = _differences(nwb, source, metadata)
        found: list[str] = []
        try:
            found.extend(differences)
        except Exception as error:      # whatever pynwb raises of a file that it cannot read
            found.append(f"cannot be read: {type(error).__name__}: {error}")
        return found
