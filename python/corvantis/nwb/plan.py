"""What of a recording goes where in an NWB file: the series and the rows of the tables.

Nothing here knows of pynwb: the writer makes a file of this, and `verify` holds a file against it.
"""
from __future__ import annotations

import json
from collections.abc import Callable, Iterator, Sequence
from dataclasses import dataclass, field
from functools import partial
from pathlib import Path
from typing import Any

import numpy as np

from ..epoch import Epoch
from ..errors import CorvantisError
from ..interface import EPOCH_HEADER, NO_STIMULUS, DoubtReason
from ..recording import Recording
from ..records import fields_of
from ..units import Scale
from .clamp import (PLAIN, SI_UNITS, Clamp, clamp_of, contradiction, has_no_stimulus,
                    is_dynamic_clamp)
from .metadata import FileMetadata

RESPONSE, STIMULUS = "acquisition", "stimulus"
NANO = 1e-9     # conductances are stored in nS


@dataclass(frozen=True)
class Series:
    """One series: all that is to be written of it.

    Attributes:
        group: "acquisition" or "stimulus".
        kind: NWB's type.
        read: gives the data, as recorded or recomputed; `epoch.response` and `epoch.stimulus` in
            SI are these times `conversion`.
        unit: of the data times `conversion`.
        rate, start: sampling rate [Hz] and time of the first point [s].
        electrode: input channel of the electrode; None for what no electrode recorded.
        gain: of a response [V per V or A], for information.
        values: gives the data times `conversion` by the library's own way to units, for `verify`.
    """

    name: str
    group: str
    kind: str
    epoch: int
    entry: int
    read: Callable[[], Any]
    points: int
    unit: str
    conversion: float
    resolution: float
    rate: float
    start: float
    description: str
    comments: str
    electrode: int | None = None
    stimulus_description: str | None = None
    gain: float | None = None
    values: Callable[[], Any] | None = None


@dataclass(frozen=True)
class Row:
    """A row of a table for entries: of one entry of one epoch."""

    values: dict[str, Any]
    response: Series
    stimulus: Series | None


@dataclass
class Plan:
    """What goes into one file.

    Attributes:
        epochs: those that are written.
        series: all series, in the order of epochs and entries.
        rows, others: entries that an electrode recorded, and the others, by epoch.
        damaged: what is wrong with the epochs that are left out, by number.
        warnings: what a person should know of the file.
    """

    recording: Recording
    epochs: list[Epoch] = field(default_factory=list)
    series: list[Series] = field(default_factory=list)
    rows: dict[int, list[Row]] = field(default_factory=dict)
    others: list[Row] = field(default_factory=list)
    damaged: dict[int, str] = field(default_factory=dict)
    warnings: list[str] = field(default_factory=list)

    @property
    def recorded(self) -> list[Row]:
        """The entries that an electrode recorded, of all epochs."""
        return [row for epoch in self.epochs for row in self.rows[epoch.number]]


def protocol(epoch: Epoch) -> str:
    """The types of an epoch's stimuli in words."""
    def name(stimulus: Any) -> str:
        parts = [name(each) for each in getattr(stimulus, "components", ())]
        return f"{stimulus.name} ({', '.join(parts)})" if parts else str(stimulus.name)
    return " + ".join(map(name, epoch.parameters)) or "no stimulus"


def _words_of(data: Any, scale: Scale) -> Any:
    return data.view(np.uint16) if scale.is_word else data


class _Entry:
    """One sequence entry of an epoch on its way into a plan."""

    def __init__(self, plan: Plan, epoch: Epoch, entry: int, metadata: FileMetadata) -> None:
        self.plan, self.epoch, self.entry = plan, epoch, entry
        self.clamp: Clamp = clamp_of(epoch, entry, metadata.modes)
        self.electrode = epoch.input_channels[entry] if self.clamp.is_patch else None
        self.start = metadata.seconds(epoch) + epoch.entry_delays[entry]
        self.words = epoch.stimulus_words[entry]
        self.doubt, self.problem = "", ""
        try:
            doubt = epoch.entry_doubt(entry)
        except CorvantisError as error:
            if error.code != NO_STIMULUS:
                raise
            self.problem = str(error).removeprefix(f"{epoch.recording.path}: ")
            self._warn(f"no stimulus: {self.problem}")
        else:
            self.doubt = "" if doubt is None else doubt.text
            if doubt is not None and doubt.reason != DoubtReason.RESTS_ON_ORDER \
                    and not is_dynamic_clamp(epoch.parameters[entry]):
                self._warn(f"stimulus in doubt: {doubt.text}")
        if text := contradiction(epoch, entry, metadata.modes):
            self._warn(text)

    def _warn(self, text: str) -> None:
        self.plan.warnings.append(f"epoch {self.epoch.number}, entry {self.entry}: {text}")

    def _comments(self) -> str:
        """As JSON; Neo makes its blocks and segments of the first two."""
        return json.dumps({
            "block": Path(self.epoch.recording.path).name, "segment": f"epoch {self.epoch.number}",
            "epoch": self.epoch.number, "entry": self.entry,
            "stimulus": json.loads(self.epoch.stimulus_json(self.entry))}, ensure_ascii=False)

    def _series(self, name: str, group: str, kind: str, scale: Scale, read: Callable[[], Any],
                **more: Any) -> Series:
        """A series of the recording's own counts; `more` are those fields that differ."""
        epoch, width = self.epoch, len(str(max(len(self.plan.recording.epochs) - 1, 0)))
        patch = kind != PLAIN
        unit = SI_UNITS.get(scale.quantity, scale.unit)
        fields: dict[str, Any] = {
            "name": f"epoch_{epoch.number:0{width}}_entry_{self.entry}_{name}", "group": group,
            "kind": kind, "epoch": epoch.number, "entry": self.entry, "read": read,
            "points": epoch.points, "unit": unit, "conversion": scale.si_per_count,
            "resolution": -1.0 if scale.is_word else abs(scale.si_per_count),
            "rate": epoch.sampling_rate, "start": self.start, "comments": self._comments(),
            "electrode": self.electrode if patch else None,
            "stimulus_description": self.words if patch else None}
        return Series(**{**fields, **more})

    def response(self) -> Series:
        """What was acquired."""
        epoch, scale = self.epoch, self.epoch.response_scales[self.entry]
        more: dict[str, Any] = {}
        if self.clamp.is_patch:
            more["gain"] = scale.gain / scale.si
        if self.clamp.response == "IZeroClampSeries":
            more["stimulus_description"] = "N/A"
        return self._series(
            "response", RESPONSE, self.clamp.response, scale,
            lambda: _words_of(epoch.read(entry=self.entry, raw=True), scale),
            description=f"{epoch.inputs[self.entry]}: {scale.formula}",
            values=lambda: epoch.read(entry=self.entry) * scale.si, **more)

    def stimulus(self) -> Series | None:
        """What was played, if the file says so and it did not follow the cell."""
        epoch, scale = self.epoch, self.epoch.stimulus_scales[self.entry]
        if self.problem or is_dynamic_clamp(epoch.parameters[self.entry]) \
                or has_no_stimulus(epoch, self.entry):
            return None
        return self._series(
            "stimulus", STIMULUS, self.clamp.stimulus, scale,
            lambda: _words_of(epoch.read_stimulus(entry=self.entry, raw=True), scale),
            description=f"{epoch.outputs[self.entry]}: {scale.formula}",
            values=lambda: epoch.read_stimulus(entry=self.entry) * scale.si)

    def conductances(self) -> Iterator[Series]:
        """Of a dynamic clamp: what it was given, in siemens."""
        if not is_dynamic_clamp(self.epoch.parameters[self.entry]):
            return
        stimulus = self.epoch.stimuli[self.entry]
        for name in ("excitatory", "inhibitory"):
            values, reversal = getattr(stimulus, name), getattr(stimulus, f"{name}Reversal")
            yield self._series(
                f"{name}_conductance", STIMULUS, PLAIN, Scale("nS", ""), partial(np.array, values),
                values=partial(np.multiply, values, NANO), unit="siemens", conversion=NANO,
                resolution=-1.0, description=f"{name} conductance of the dynamic clamp, reversal "
                                             f"potential {reversal:g} mV")

    def values(self) -> dict[str, Any]:
        """The entry's columns but for references."""
        epoch, entry = self.epoch, self.entry
        return {"epoch": epoch.number, "entry": entry, "input": epoch.inputs[entry],
                "output": epoch.outputs[entry], "stimulus_in_words": self.words,
                "stimulus_doubt": self.doubt, "stimulus_problem": self.problem,
                **{name: getattr(epoch.header, name)[entry] for name in by_entry()}}


def by_entry() -> Sequence[str]:
    """Names of the header's fields that go by entry."""
    return [name for name, each in fields_of(EPOCH_HEADER).items() if each.by_entry]


def _add_epoch(plan: Plan, epoch: Epoch, metadata: FileMetadata) -> None:
    plan.epochs.append(epoch)
    rows = plan.rows[epoch.number] = []
    if not epoch.points or not epoch.entries or not epoch.sampling_rate > 0:
        plan.warnings.append(f"epoch {epoch.number}: no series, because it has {epoch.points} "
                             f"points of {epoch.entries} entries each "
                             f"{epoch.header.samplingInterval} µs")
        return
    for entry in range(epoch.entries):
        each = _Entry(plan, epoch, entry, metadata)
        response, stimulus = each.response(), each.stimulus()
        row = Row(each.values(), response, stimulus)
        plan.series += [response, *filter(None, [stimulus]), *each.conductances()]
        (rows if each.clamp.is_patch else plan.others).append(row)


def make_plan(recording: Recording, metadata: FileMetadata, numbers: Sequence[int]) -> Plan:
    """What goes into the file of these epochs of a recording."""
    plan = Plan(recording)
    for number in numbers:
        epoch = recording.epochs[number]
        if epoch.problem is None:
            _add_epoch(plan, epoch, metadata)
        else:
            plan.damaged[number] = epoch.problem
            plan.warnings.append(f"left out: {epoch.problem.removeprefix(recording.path + ': ')}")
    return plan
