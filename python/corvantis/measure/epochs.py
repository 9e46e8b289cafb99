"""One row for each entry of an epoch, and one for each of its spikes."""
from __future__ import annotations

from dataclasses import dataclass
from itertools import pairwise

import numpy as np

from ..epoch import Epoch
from .columns import COLUMNS, EPOCHS, REASONS, SPIKES
from .missing import Missing, Row, Value, columns_of, none_of, row
from .passive import SHORTEST_STEP, baseline_points, passive, rest
from .quality import FirstBaselines, quality
from .spikes import AFTER, BEFORE, DURING, Spike, find_spikes
from .testpulse import measure_test_pulse
from .traces import CURRENT_CLAMP, Trace, read_trace

OF_CURRENT_CLAMP = ("current", "rest", "passive", "spikes", "first spike", "intervals")


@dataclass(frozen=True)
class Measured:
    """What was measured of one entry of an epoch: its row, those of its spikes, and the values by
    name that families rest on."""

    epoch: int
    row: Row
    spikes: list[Row]
    values: dict[str, Value]


def _timing(trace: Trace) -> dict[str, Value]:
    course = trace.stimulus
    if isinstance(course, Missing):
        return none_of(columns_of(EPOCHS, "timing"), course)
    start, stop = (course.start, course.stop) if course.step is None else \
        (course.step.start, course.step.stop)
    return {"start": start * trace.interval, "duration": (stop - start) * trace.interval}


def _current(trace: Trace) -> dict[str, Value]:
    course = trace.stimulus
    if isinstance(course, Missing):
        return none_of(columns_of(EPOCHS, "current"), course)
    return {"holding_current": course.holding, "step_current": Missing("the stimulus has no step")
            if course.step is None else course.step.level}


def _intervals(peaks: list[float]) -> dict[str, Value]:
    """Of the peaks [ms] during the stimulus."""
    between = np.diff(peaks)
    names = columns_of(EPOCHS, "intervals")
    values = none_of(names, "fewer than two spikes during the stimulus")
    if len(between):
        values = none_of(names, "fewer than three spikes during the stimulus")
        values |= {"first_interval": float(between[0]), "mean_interval": float(between.mean())}
    if len(between) > 1:
        changes = np.diff(between) / (between[1:] + between[:-1])
        values |= {"interval_variation": float(between.std(ddof=1) / between.mean()),
                   "adaptation": float(changes.mean())}
    return values


def _rate(spikes: int, duration: float) -> Value:
    if duration < SHORTEST_STEP:
        return Missing(f"the stimulus is shorter than {SHORTEST_STEP:g} ms")
    return 1e3 * spikes / duration


def _spiking(trace: Trace, spikes: list[Spike]) -> dict[str, Value]:
    if isinstance(trace.stimulus, Missing):
        return none_of(columns_of(EPOCHS, "spikes", "first spike", "intervals"), trace.stimulus)
    during = [spike for spike in spikes if spike.phase == DURING]
    place = _timing(trace)
    counts = {phase: sum(spike.phase == phase for spike in spikes) for phase in (BEFORE, AFTER)}
    values: dict[str, Value] = {
        "spikes": len(during), "rate": _rate(len(during), float(place["duration"])),
        "spikes_before": counts[BEFORE], "spikes_after": counts[AFTER]}
    values |= _intervals([spike.peak * trace.interval for spike in during])
    if not during:
        return {**values, **none_of(columns_of(EPOCHS, "first spike"),
                                    "no spike during the stimulus")}
    return {**values, **during[0].shape,
            "latency": during[0].peak * trace.interval - float(place["start"])}


def _of_current_clamp(trace: Trace, spikes: list[Spike],
                      points: slice | Missing) -> dict[str, Value]:
    return {**_current(trace), **rest(trace, points), **passive(trace, spikes, points),
            **_spiking(trace, spikes), **none_of(columns_of(EPOCHS, "test pulse"), "current clamp")}


def _values(trace: Trace, spikes: list[Spike], firsts: FirstBaselines) -> dict[str, Value]:
    values: dict[str, Value] = {"clamp": trace.clamp, **_timing(trace)}
    if isinstance(trace.clamp, Missing):
        return {**values, **none_of(columns_of(EPOCHS, *OF_CURRENT_CLAMP, "test pulse"),
                                    trace.clamp), **quality(trace, trace.clamp, firsts)}
    points = baseline_points(trace, spikes)
    if trace.clamp == CURRENT_CLAMP:
        values |= _of_current_clamp(trace, spikes, points)
    else:
        values |= none_of(columns_of(EPOCHS, *OF_CURRENT_CLAMP), "voltage clamp")
        values |= measure_test_pulse(trace)
    return {**values, **quality(trace, points, firsts)}


def _spike_rows(trace: Trace, place: dict[str, Value], spikes: list[Spike]) -> list[Row]:
    before: list[Spike | None] = [None, *spikes]
    rows = []
    for number, (last, spike) in enumerate(pairwise(before)):
        assert spike is not None
        same = last is not None and last.phase == spike.phase
        interval: Value = Missing("the first spike of its phase") if last is None or not same else \
            (spike.peak - last.peak) * trace.interval
        rows.append(row(SPIKES, {**place, "spike": number, "phase": spike.phase,
                                 "time": spike.peak * trace.interval, "interval": interval,
                                 **spike.shape}))
    return rows


def measure_entry(file: str, epoch: Epoch, entry: int, firsts: FirstBaselines) -> Measured:
    """Measure one entry of an epoch that is not damaged."""
    trace = read_trace(epoch, entry)
    spikes = find_spikes(trace) if trace.clamp == CURRENT_CLAMP else []
    place: dict[str, Value] = {"file": file, "epoch": epoch.number, "entry": entry}
    values: dict[str, Value] = {**place, "stimulus": epoch.stimulus_words[entry],
                                **_values(trace, spikes, firsts)}
    return Measured(epoch.number, row(EPOCHS, values), _spike_rows(trace, place, spikes), values)


def damaged(file: str, epoch: Epoch) -> Row:
    """The row of a damaged epoch."""
    names = [each.name for each in COLUMNS[EPOCHS] if each.name != REASONS]
    return row(EPOCHS, {**none_of(names, str(epoch.problem)), "file": file, "epoch": epoch.number})
