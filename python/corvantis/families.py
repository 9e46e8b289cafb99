"""Families of steps: current-voltage and spike-rate curves of epochs with pulses of many sizes."""
from __future__ import annotations

import ctypes
from collections.abc import Iterable, Sequence
from dataclasses import dataclass

import matplotlib
import numpy as np
from matplotlib.axes import Axes
from matplotlib.figure import Figure

from .epoch import Epoch
from .epochs import in_ranges, undamaged
from .interface import RESPONSE, STIMULUS, Quantity, StepRecord, StepResponse
from .plotting import STYLE, draw_key, draw_panels, label, read_sweep
from .progress import progress
from .recording import Recording
from .steps import (SPIKE_THRESHOLD, Members, StimulusStep, families_of_steps, main_step,
                    slope_through_rest)


@dataclass(frozen=True)
class Step:
    """What was measured in one epoch.

    Attributes:
        level: stimulus during the step [stimulus unit].
        holding: stimulus before it [stimulus unit].
        baseline: mean response before the step [response unit].
        peak: response during the step that is farthest from the baseline [response unit].
        steady: mean response over the last fifth of the step [response unit].
        settled: whether that last part is free of spikes.
        spikes: upward crossings of the threshold during the step; 0 in voltage clamp.
        rate: spikes divided by the step's length [Hz]; one over the mean interval between spikes
            differs, as the time before the first and behind the last one does not count there.
    """

    epoch: int
    level: float
    holding: float
    baseline: float
    peak: float
    steady: float
    settled: bool
    spikes: int
    rate: float


@dataclass(frozen=True)
class Family:
    """Steps of one timing, by level, with the units of their levels and responses."""

    epochs: list[Epoch]
    steps: list[Step]
    channel: int
    stimulus_unit: str
    response_unit: str
    counts_spikes: bool     #: the response is a potential, in which spikes are looked for

    @property
    def settled(self) -> list[Step]:
        """The steps that end in a steady state."""
        return [step for step in self.steps if step.settled]

    @property
    def input_resistance(self) -> float | None:
        """Slope of the line through the resting point that fits the steady states best [MOhm].

        Sum of (current * shift) over sum of (current squared), of all steps that end in a steady
        state: the current from the holding level, the shift from the step's own baseline. It
        depends on the steps where the membrane rectifies. None in voltage clamp and in other units
        than pA and mV.
        """
        if (self.stimulus_unit, self.response_unit) != ("pA", "mV"):
            return None
        slope = slope_through_rest(
            np.array([step.level - step.holding for step in self.settled]),
            np.array([step.steady - step.baseline for step in self.settled]))
        return None if slope is None else 1e3 * slope

    @property
    def examples(self) -> list[Epoch]:
        """Epochs that show the family: all, or of spiking ones the lowest, the highest that is
        silent and the lowest that fires throughout."""
        silent = [step.epoch for step in self.steps if step.spikes == 0]
        firing = [step.epoch for step in self.steps if not step.settled]
        if not firing or len(self.steps) < 4:
            return self.epochs
        shown = {self.steps[0].epoch, *silent[-1:], firing[0]}
        return [epoch for epoch in self.epochs if epoch.number in shown]


def _measured(epoch: Epoch, step: StimulusStep, channel: int, threshold: float) -> Step:
    handle, found = epoch.recording.handle, StepResponse()
    asked = StepRecord(step.before, step.start, step.stop, step.level)
    handle.call(handle.library.CorvantisMeasureStep, epoch.number, channel,
                ctypes.addressof(asked), threshold, ctypes.addressof(found))
    spikes = max(found.spikes, 0)
    return Step(epoch.number, step.level, step.holding, found.baseline, found.peak, found.steady,
                found.late == 0, spikes, spikes * epoch.sampling_rate / step.points)


def measure(epoch: Epoch, channel: int = 0, threshold: float = SPIKE_THRESHOLD) -> Step:
    """Measure the response to the longest step of an epoch."""
    known = main_step(epoch, channel)
    if known is None:
        raise ValueError(f"epoch {epoch.number} has no step")
    return _measured(epoch, known, channel, threshold)


def find_family(epochs: Iterable[Epoch] | Recording, channel: int = 0,
                threshold: float = SPIKE_THRESHOLD) -> Family:
    """The largest group of epochs, or of a recording's, with steps of the same timing, measured.

    Raises:
        ValueError: if no two epochs have steps of the same timing and different levels.
    """
    groups = families_of_steps(
        undamaged(epochs.epochs if isinstance(epochs, Recording) else epochs), channel)
    largest: Members = max(groups, key=len, default=[])
    steps = sorted((_measured(epoch, step, channel, threshold)
                    for epoch, step in progress(largest, "measuring")),
                   key=lambda step: step.level)
    if len({step.level for step in steps}) < 2:
        raise ValueError("no family: two epochs with steps of the same timing are needed")
    by_number = {epoch.number: epoch for epoch, _ in largest}
    first = largest[0][0]
    return Family([by_number[step.epoch] for step in steps], steps, channel,
                  first.units.stimulus[channel], first.units.response[channel],
                  first.response_scales[channel].quantity == Quantity.POTENTIAL)


def _voltage_panel(axes: Axes, family: Family) -> None:
    """Steady state, and in voltage clamp also the peak, against the level."""
    levels = [step.level for step in family.settled]
    axes.plot(levels, [step.steady for step in family.settled], "o-", color="black", markersize=4,
              linewidth=0.8, label="steady state")
    if not family.counts_spikes:
        axes.plot(levels, [step.peak for step in family.settled], "s--", color="0.5", markersize=4,
                  linewidth=0.8, label="peak")
        axes.legend(frameon=False, fontsize=8)
    axes.set_xlabel(label(STIMULUS, family.stimulus_unit))
    axes.set_ylabel(label(RESPONSE, family.response_unit, "\n"))
    if family.input_resistance is not None:
        resistance = f"{family.input_resistance:.0f} M\N{GREEK CAPITAL LETTER OMEGA}"
        axes.set_title(f"input resistance {resistance}\n(line through rest, {len(levels)} steps)",
                       fontsize=8)


def _rate_panel(axes: Axes, family: Family) -> None:
    axes.plot([step.level for step in family.steps], [step.rate for step in family.steps], "o-",
              color="black", markersize=4, linewidth=0.8)
    axes.set_xlabel(label(STIMULUS, family.stimulus_unit))
    axes.set_ylabel("Spike Rate\n(Hz)")
    axes.set_ylim(bottom=-0.03 * max(1.0, axes.get_ylim()[1]))


def plot_family(family: Family, axes: bool = False) -> Figure:
    """Draw a family: its sweeps at the left, its curves at the right.

    Args:
        axes: ticks and labels instead of scale bars at the sweeps.
    """
    shown = family.examples
    sweeps = [read_sweep(epoch, family.channel) for epoch in shown]
    with matplotlib.rc_context(STYLE):
        figure = Figure(figsize=(8.4, 4.0))
        left = figure.add_gridspec(2, 1, left=0.09, right=0.57, bottom=0.14, top=0.9,
                                   height_ratios=[3, 1], hspace=0.1)
        draw_panels(figure, [left[0], left[1]], shown, sweeps, family.channel, axes)
        panels = [_voltage_panel] + [_rate_panel] * family.counts_spikes
        right = figure.add_gridspec(len(panels), 1, left=0.76, right=0.98, bottom=0.14, top=0.9,
                                    hspace=0.55)
        numbers = [epoch.number for epoch in shown]
        count = f"{len(shown)} of {len(family.epochs)}" if len(shown) < len(family.epochs) else \
            str(len(shown))
        figure.text(0.09, 0.975, f"{count} epochs: {in_ranges(numbers)}", fontsize=9)
        draw_key(figure, numbers, 0.09, 0.955)
        for row, draw in enumerate(panels):
            draw(figure.add_subplot(right[row]), family)
        return figure


def as_text(family: Family, separator: str = "\t") -> Sequence[str]:
    """The measurements as lines of a table."""
    stimulus, response = family.stimulus_unit, family.response_unit
    names = ["epoch", f"level_{stimulus}", f"baseline_{response}", f"peak_{response}",
             f"steady_{response}"] + ["spikes", "rate_Hz"] * family.counts_spikes
    rows = [[str(step.epoch), *(f"{value:.6g}" for value in (step.level, step.baseline, step.peak,
                                                             step.steady)),
             *[str(step.spikes), f"{step.rate:.4g}"] * family.counts_spikes]
            for step in family.steps]
    return [separator.join(row) for row in [names, *rows]]
