"""The columns of the tables of measurements: the one place where their names, units and
definitions stand. Documentation and the metadata of files come from here."""
from __future__ import annotations

from dataclasses import dataclass
from typing import Any

TEXT, WHOLE, NUMBER, TRUTH = "text", "whole number", "number", "true or false"
EPOCHS, FAMILIES, SPIKES = "epochs", "families", "spikes"


@dataclass(frozen=True)
class Column:
    """One column.

    Attributes:
        name: without unit, as reasons name it.
        unit: empty for a plain number or a text.
        kind: TEXT, WHOLE, NUMBER or TRUTH.
        group: columns that rest on the same part of an epoch.
        definition: how it is measured.
    """

    name: str
    unit: str
    kind: str
    group: str
    definition: str

    @property
    def heading(self) -> str:
        """Name and unit, as in the files, such as "input_resistance_MOhm"."""
        return "_".join(filter(None, (self.name, self.unit.replace("/", "_per_"))))


def _columns(group: str, *rows: tuple[str, str, str, str]) -> tuple[Column, ...]:
    return tuple(Column(name, unit, kind, group, definition)
                 for name, unit, kind, definition in rows)


def _place(*more: tuple[str, str, str, str]) -> tuple[Column, ...]:
    return _columns("place", ("file", "", TEXT, "name of the recording, below its archive's root"),
                    *more)


_EPOCH = ("epoch", "", WHOLE, "number of the epoch in the recording, from 0")
_ENTRY = ("entry", "", WHOLE, "entry of the channel sequence, from 0")
_CLAMP = ("clamp", "", TEXT, "`current` where a potential is recorded and a current is applied, "
          "`voltage` the other way round; by the units that the recording names")
REASONS = "reasons"
_REASONS = Column(REASONS, "", TEXT, "place",
                  "why columns are empty: `names: reason`, parted by `; `. A group's name stands "
                  "for all its columns, `all` for a file that could not be read")

_TIMING = _columns(
    "timing",
    ("start", "ms", NUMBER, "first point of the longest step, or of what is not the holding level, "
     "from the epoch's start"),
    ("duration", "ms", NUMBER, "from there to the end of the step, or of what is not the holding "
     "level; the whole epoch where the stimulus never leaves it"))
_SPIKE_SHAPE = (
    ("threshold", "mV", NUMBER, "potential where the spike begins: eFEL's AP_begin_voltage, where "
     "the slope reaches 10 mV/ms and stays there"),
    ("peak", "mV", NUMBER, "potential of the peak: eFEL's peak_indices, the highest point above "
     "-20 mV"),
    ("height", "mV", NUMBER, "from threshold to peak"),
    ("width", "ms", NUMBER, "at half the height above threshold, between samples by a straight "
     "line"),
    ("width_above_trough", "ms", NUMBER, "half way from the trough to the peak: eFEL's "
     "spike_half_width"),
    ("afterhyperpolarisation", "mV", NUMBER, "from threshold down to the trough behind the spike "
     "(eFEL's min_AHP_indices)"))

COLUMNS: dict[str, tuple[Column, ...]] = {
    EPOCHS: (
        *_place(_EPOCH, _ENTRY, _CLAMP, ("stimulus", "", TEXT, "the stimulus in words")),
        *_TIMING,
        *_columns(
            "current",
            ("holding_current", "pA", NUMBER, "current clamp: applied current that the epoch "
             "begins with"),
            ("step_current", "pA", NUMBER, "applied current during the longest step, the holding "
             "current included")),
        *_columns(
            "rest",
            ("baseline", "mV", NUMBER, "mean potential before the step, back to the epoch's start "
             "or to the middle of the time since an earlier step; without spikes, at least 5 ms"),
            ("resting_potential", "mV", NUMBER, "the baseline where no current is applied")),
        *_columns(
            "passive",
            ("steady_potential", "mV", NUMBER, "mean of the step's last fifth, if it is free of "
             "spikes"),
            ("steady_residual", "mV", NUMBER, "standard deviation of that last fifth about its "
             "mean"),
            ("input_resistance", "MOhm", NUMBER, "(steady potential - baseline) / (step current - "
             "holding current), of a step of at least 10 ms without spikes"),
            ("time_constant", "ms", NUMBER, "of the exponential that fits the response best from "
             "the first point of a hyperpolarising step to the farthest potential"),
            ("time_constant_residual", "mV", NUMBER, "root of the mean squared distance from that "
             "exponential"),
            ("capacitance", "pF", NUMBER, "time constant / input resistance"),
            ("farthest_potential", "mV", NUMBER, "mean of 5 ms about the lowest value that a "
             "running mean of 1 ms has during a hyperpolarising step"),
            ("sag", "mV", NUMBER, "steady potential - farthest potential"),
            ("sag_ratio", "", NUMBER, "sag / (baseline - farthest potential)")),
        *_columns(
            "spikes",
            ("spikes", "", WHOLE, "spikes that begin between the first point of the stimulus and "
             "its end"),
            ("rate", "Hz", NUMBER, "spikes / duration, of a stimulus of at least 10 ms"),
            ("spikes_before", "", WHOLE, "spikes that begin before the stimulus"),
            ("spikes_after", "", WHOLE, "spikes that begin behind it, such as rebound spikes")),
        *_columns(
            "first spike",
            ("latency", "ms", NUMBER, "from the stimulus's first point to the peak of the first "
             "spike"),
            *_SPIKE_SHAPE),
        *_columns(
            "intervals",
            ("first_interval", "ms", NUMBER, "from the first peak during the stimulus to the "
             "second"),
            ("mean_interval", "ms", NUMBER, "mean of the intervals between peaks during the "
             "stimulus, the first one included"),
            ("interval_variation", "", NUMBER, "standard deviation of these intervals (n - 1) / "
             "their mean, of at least two"),
            ("adaptation", "", NUMBER, "mean of (next interval - interval) / (next interval + "
             "interval); 0 for a regular train, above 0 where it slows down")),
        *_columns(
            "test pulse",
            ("command_potential", "mV", NUMBER, "voltage clamp: commanded potential that the epoch "
             "begins with; an amplifier may add its own"),
            ("clamp_current", "pA", NUMBER, "mean current before the test pulse"),
            ("test_pulse", "mV", NUMBER, "size of the test pulse: the smallest step of the epoch, "
             "of 20 mV at most"),
            ("access_resistance", "MOhm", NUMBER, "test pulse / jump of the current at its first "
             "point, to which the exponential that fits the transient is drawn back"),
            ("membrane_resistance", "MOhm", NUMBER, "test pulse / steady change of the current "
             "(that exponential's end), less the access resistance"),
            ("membrane_capacitance", "pF", NUMBER, "the transient's time constant * (1 / access "
             "resistance + 1 / membrane resistance)"),
            ("transient_time_constant", "ms", NUMBER, "of the exponential that fits the current "
             "best, from its peak to the test pulse's end"),
            ("transient_residual", "pA", NUMBER, "root of the mean squared distance from that "
             "exponential")),
        *_columns(
            "potential quality",
            ("noise", "mV", NUMBER, "current clamp: standard deviation of the baseline about the "
             "straight line that fits it best"),
            ("drift", "mV", NUMBER, "change of that line over the baseline"),
            ("shift", "mV", NUMBER, "baseline less that of the recording's first epoch in the same "
             "entry and clamp with the same holding level")),
        *_columns(
            "current quality",
            ("current_noise", "pA", NUMBER, "voltage clamp: as noise"),
            ("current_drift", "pA", NUMBER, "as drift"),
            ("current_shift", "pA", NUMBER, "as shift")),
        *_columns(
            "quality",
            ("clipped", "", WHOLE, "samples at the converter's limits, -32768 and 32767 counts"),
            ("is_clipped", "", TRUTH, "whether there are such samples"),
            ("is_noisy", "", TRUTH, "noise above 1 mV, or 20 pA in voltage clamp"),
            ("is_drifting", "", TRUTH, "drift or shift of more than 5 mV, or 100 pA in voltage "
             "clamp, up or down")),
        _REASONS),
    FAMILIES: (
        *_place(("family", "", WHOLE, "number of the family in the recording, from 0: epochs of "
                 "one entry whose stimuli differ in nothing but the level of the longest step, "
                 "which has two values at least"),
                _ENTRY, _CLAMP, ("epochs", "", TEXT, "numbers of its epochs")),
        *_columns(
            "timing",
            ("steps", "", WHOLE, "how many epochs it has"),
            ("start", "ms", NUMBER, "first point of the step, from the epoch's start"),
            ("duration", "ms", NUMBER, "length of the step")),
        *_columns(
            "current",
            ("lowest_current", "pA", NUMBER, "current clamp: lowest step current"),
            ("highest_current", "pA", NUMBER, "highest step current")),
        *_columns(
            "passive",
            ("resting_potential", "mV", NUMBER, "mean of its epochs' resting potentials"),
            ("resting_range", "mV", NUMBER, "highest less lowest of these"),
            ("input_resistance", "MOhm", NUMBER, "slope of the line through rest that fits the "
             "steady potentials best, of all steps whose last fifth is free of spikes: "
             "sum(I * dV) / sum(I * I)"),
            ("input_resistance_residual", "mV", NUMBER, "root of the mean squared distance from "
             "that line"),
            ("time_constant", "ms", NUMBER, "median of its epochs' time constants"),
            ("sag_ratio", "", NUMBER, "that of its most negative step")),
        *_columns(
            "spikes",
            ("rheobase", "pA", NUMBER, "lowest step current with a spike during the step"),
            ("silent_current", "pA", NUMBER, "highest step current below the rheobase; the true "
             "rheobase lies between both"),
            ("slope", "Hz/pA", NUMBER, "f-I slope: of the straight line that fits rate against "
             "step current best, of steps with spikes"),
            ("slope_residual", "Hz", NUMBER, "root of the mean squared distance from that line, of "
             "three steps at least"),
            ("highest_rate", "Hz", NUMBER, "highest rate of its epochs")),
        *_columns("first spike", *((name, unit, kind, f"at the rheobase: {text}")
                                   for name, unit, kind, text in _SPIKE_SHAPE)),
        *_columns(
            "test pulse",
            ("access_resistance", "MOhm", NUMBER, "voltage clamp: median of its epochs' access "
             "resistances"),
            ("access_resistance_range", "MOhm", NUMBER, "highest less lowest of these"),
            ("membrane_capacitance", "pF", NUMBER, "median of its epochs' membrane capacitances")),
        _REASONS),
    SPIKES: (
        *_place(_EPOCH, _ENTRY, ("spike", "", WHOLE, "number of the spike in the epoch and entry, "
                                 "from 0")),
        *_columns("timing", ("phase", "", TEXT, "whether the spike begins `before`, `during` or "
                             "`after` the stimulus")),
        *_columns(
            "spike",
            ("time", "ms", NUMBER, "of the peak, from the epoch's start"),
            *_SPIKE_SHAPE,
            ("interval", "ms", NUMBER, "from the peak of the spike before, in the same phase")),
        _REASONS),
}


def as_markdown(table: str) -> str:
    """The columns of a table for the documentation."""
    rows: list[tuple[Any, ...]] = [("Column", "Unit", "Group", "Definition"), ("---",) * 4]
    rows += [(f"`{each.heading}`", each.unit, each.group, each.definition)
             for each in COLUMNS[table]]
    return "\n".join(f"| {' | '.join(row)} |" for row in rows)


if __name__ == "__main__":
    print("\n\n".join(f"### {table}\n\n{as_markdown(table)}" for table in COLUMNS))
