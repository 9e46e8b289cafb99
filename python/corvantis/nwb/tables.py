"""NWB's five tables of intracellular recordings, and one for what no electrode recorded."""
from __future__ import annotations

from collections.abc import Iterable, Mapping, Sequence
from itertools import accumulate, groupby
from typing import Any

import numpy as np
from hdmf.common import DynamicTable, DynamicTableRegion, VectorData, VectorIndex
from pynwb import NWBFile
from pynwb.base import TimeSeriesReference, TimeSeriesReferenceVectorData
from pynwb.icephys import (ExperimentalConditionsTable, IntracellularElectrodesTable,
                           IntracellularRecordingsTable, IntracellularResponsesTable,
                           IntracellularStimuliTable, RepetitionsTable, SequentialRecordingsTable,
                           SimultaneousRecordingsTable)

from ..epoch import Epoch
from ..interface import EPOCH_HEADER, FLOAT, INT8, INT32, TEXT, UINT16, UINT32
from ..records import fields_of
from .plan import Plan, Row, Series, protocol

NONE = -1, -1   # where a row has no stimulus
OTHERS = "other_entries"
TYPES = {INT8: np.int8, UINT16: np.uint16, INT32: np.int32, UINT32: np.uint32, FLOAT: np.float32,
         TEXT: str}
ABOUT = {
    "epoch": "number of the epoch in the recording, from 0",
    "entry": "entry of the channel sequence, from 0",
    "input": "channel that the response came from",
    "output": "channel that the stimulus went to",
    "stimulus_in_words": "the stimulus, levels in the entry's unit; in full as JSON in the "
                         "comments of the series",
    "response": "name of the series in acquisition",
    "stimulus": "name of the series in stimulus; empty if there is none",
    "stimulus_doubt": "why what was played may differ from the recomputed stimulus; empty without "
                      "a doubt",
    "stimulus_problem": "why there is no stimulus; empty if there is one",
}


def _about(name: str) -> str:
    fields = fields_of(EPOCH_HEADER)
    return fields[name].explanation if name in fields else ABOUT[name]


def _column(name: str, values: Sequence[Any]) -> VectorData:
    """A column of the header's own type, or of integers and texts."""
    field = fields_of(EPOCH_HEADER).get(name)
    kind = None if field is None else TYPES[field.kind]
    data: Any = list(values) if kind is str or isinstance(values[0], str) else \
        np.array(values, dtype=kind)
    return VectorData(name=name, description=_about(name), data=data)


def _columns(rows: Sequence[Mapping[str, Any]]) -> list[VectorData]:
    return [_column(name, [row[name] for row in rows]) for name in rows[0]]


def reference(series: Series | None, other: Series) -> tuple[int, int, Series]:
    """What a row says of a series; without one NWB has -1, -1 and any series."""
    return (*NONE, other) if series is None else (0, series.points, series)


def references(rows: Iterable[Row]) -> dict[str, list[tuple[int, int, Series]]]:
    """The references of rows to series, by column."""
    rows = list(rows)
    return {"stimulus": [reference(row.stimulus, row.response) for row in rows],
            "response": [reference(row.response, row.response) for row in rows]}


def _reference_column(name: str, about: str, rows: Sequence[Row],
                      objects: Mapping[str, Any]) -> TimeSeriesReferenceVectorData:
    return TimeSeriesReferenceVectorData(name=name, description=about, data=[
        TimeSeriesReference(start, count, objects[series.name])
        for start, count, series in references(rows)[name]])


STIMULUS_COLUMN = "Column storing the reference to the recorded stimulus for the recording (rows)"
RESPONSE_COLUMN = "Column storing the reference to the recorded response for the recording (rows)"


def _recordings(rows: Sequence[Row], objects: Mapping[str, Any], electrodes: Mapping[int, Any],
                ) -> IntracellularRecordingsTable:
    used = VectorData(name="electrode", description="the electrode",
                      data=[electrodes[int(row.response.electrode or 0)] for row in rows])
    columns = _columns([row.values for row in rows])
    return IntracellularRecordingsTable(
        columns=columns, categories=["electrodes", "stimuli", "responses"], category_tables=[
            IntracellularElectrodesTable(columns=[used]),
            IntracellularStimuliTable(columns=[
                _reference_column("stimulus", STIMULUS_COLUMN, rows, objects)]),
            IntracellularResponsesTable(columns=[
                _reference_column("response", RESPONSE_COLUMN, rows, objects)])])


def _ragged(name: str, about: str, counts: Iterable[int], target: DynamicTable,
            rows: Sequence[int] | None = None) -> list[Any]:
    """A column of rows of another table, so many for each row of this one."""
    ends = list(accumulate(counts))
    region = DynamicTableRegion(name=name, description=about, table=target,
                                data=list(range(ends[-1])) if rows is None else list(rows))
    return [VectorIndex(name=f"{name}_index", data=ends, target=region), region]


def epoch_values(epoch: Epoch) -> dict[str, Any]:
    """An epoch's columns: its number, and every field of its header that does not go by entry."""
    return {"epoch": epoch.number, **{name: getattr(epoch.header, name) for name, each in
                                      fields_of(EPOCH_HEADER).items() if not each.by_entry}}


def other_values(row: Row) -> dict[str, Any]:
    """The columns of an entry that no electrode recorded; its series stand there by name."""
    return {**row.values, "response": row.response.name,
            "stimulus": "" if row.stimulus is None else row.stimulus.name}


def runs(plan: Plan) -> list[tuple[str, int]]:
    """Runs of epochs of one protocol: its name, and how many there are."""
    def setting(epoch: Epoch) -> tuple[Any, ...]:
        return (protocol(epoch), epoch.points, epoch.header.samplingInterval, epoch.inputs,
                epoch.outputs)
    return [(key[0], len(list(group))) for key, group in groupby(plan.epochs, setting)]


def repetitions(plan: Plan) -> list[list[int]]:
    """Which runs are of the same protocol."""
    names = [name for name, _ in runs(plan)]
    return [[run for run, each in enumerate(names) if each == name]
            for name in dict.fromkeys(names)]


def add_tables(file: NWBFile, plan: Plan, objects: Mapping[str, Any],
               electrodes: Mapping[int, Any]) -> None:
    """Add the tables to a file.

    Args:
        objects: pynwb's series that rows refer to, by the names of the plan's.
        electrodes: pynwb's electrodes by input.
    """
    if plan.others:
        # Readers take for a series whatever stands in `acquisition`.
        file.add_analysis(DynamicTable(
            name=OTHERS, description="entries of the channel sequence that no electrode recorded",
            columns=_columns([other_values(row) for row in plan.others])))
    if not plan.recorded:
        return
    recordings = _recordings(plan.recorded, objects, electrodes)
    simultaneous = SimultaneousRecordingsTable(
        intracellular_recordings_table=recordings,
        columns=[*_ragged("recordings", "the entries of an epoch", [
            len(plan.rows[epoch.number]) for epoch in plan.epochs], recordings),
            *_columns([epoch_values(epoch) for epoch in plan.epochs])])
    sequential = SequentialRecordingsTable(
        simultaneous_recordings_table=simultaneous,
        columns=[*_ragged("simultaneous_recordings", "epochs that follow each other", [
            count for _, count in runs(plan)], simultaneous),
            VectorData(name="stimulus_type", description="the types of the stimuli of each entry",
                       data=[name for name, _ in runs(plan)])])
    alike = repetitions(plan)
    repeated = RepetitionsTable(sequential_recordings_table=sequential, columns=_ragged(
        "sequential_recordings", "runs of the same types of stimuli", map(len, alike), sequential,
        [run for each in alike for run in each]))
    conditions = ExperimentalConditionsTable(repetitions_table=repeated, columns=_ragged(
        "repetitions", "all of the recording, which says nothing of conditions", [len(alike)],
        repeated))
    file.intracellular_recordings = recordings
    file.icephys_simultaneous_recordings = simultaneous
    file.icephys_sequential_recordings = sequential
    file.icephys_repetitions = repeated
    file.icephys_experimental_conditions = conditions
