"""Current clamp: rest, input resistance, time constant and sag of one epoch."""
from __future__ import annotations

import numpy as np

from ..steps import STEADY_FRACTION, Course, StimulusStep
from ..units import Samples
from .columns import EPOCHS
from .fits import fit_exponential, running_mean
from .missing import Missing, Value, columns_of, none_of
from .spikes import Spike
from .traces import SHORTEST_BASELINE, Trace

SHORTEST_STEP = 10.0        # [ms]
LEAST_DEFLECTION = 1.0      # [mV]
LEAST_BY_NOISE = 5.0        # times the baseline's standard deviation
SMOOTHED, AVERAGED = 1.0, 5.0   # widths of the means by which the farthest potential is found [ms]

NO_STEP = "the stimulus has no step from its holding level and back to it"


def _spikes_within(spikes: list[Spike], first: int, stop: int) -> bool:
    return any(first <= spike.begin < stop or first <= spike.peak < stop for spike in spikes)


def baseline_points(trace: Trace, spikes: list[Spike]) -> slice | Missing:
    """The points before an epoch's step, or all where the stimulus never changes."""
    stimulus = trace.stimulus
    if isinstance(stimulus, Missing):
        return stimulus
    if stimulus.step is not None:
        where = trace.before(stimulus.step)
    else:
        where = slice(0, stimulus.start or len(trace.response))
    if (where.stop - where.start) * trace.interval < SHORTEST_BASELINE:
        return Missing(f"less than {SHORTEST_BASELINE:g} ms before the step")
    if _spikes_within(spikes, where.start, where.stop):
        return Missing("spikes before the step")
    return trace.clipped_within(where) or where


def rest(trace: Trace, points: slice | Missing) -> dict[str, Value]:
    """Baseline and resting potential."""
    if isinstance(points, Missing):
        return none_of(columns_of(EPOCHS, "rest"), points)
    assert isinstance(trace.stimulus, Course)
    baseline, holding = float(trace.response[points].mean()), trace.stimulus.holding
    return {"baseline": baseline, "resting_potential":
            baseline if holding == 0 else Missing(f"a current of {holding:.6g} pA is applied")}


def _steady(trace: Trace, step: StimulusStep, spikes: list[Spike]) -> dict[str, Value]:
    first = step.stop - max(1, round(STEADY_FRACTION * step.points))
    if _spikes_within(spikes, first, step.stop):
        return none_of(("steady_potential", "steady_residual"), "spikes in the step's last fifth")
    last = trace.response[first:step.stop]
    return {"steady_potential": float(last.mean()), "steady_residual": float(last.std())}


def _farthest(trace: Trace, step: StimulusStep) -> tuple[int, float]:
    """Where a response to a step downwards turns, from the step's first point, and its mean there.
    """
    during: Samples = trace.response[step.start:step.stop]
    width = min(trace.points(SMOOTHED), len(during))
    middle = int(np.argmin(running_mean(during, width))) + width // 2
    half = trace.points(AVERAGED) // 2
    return middle, float(during[max(0, middle - half):middle + half + 1].mean())


def _charging(trace: Trace, step: StimulusStep, baseline: float, noise: float,
              steady: Value) -> dict[str, Value]:
    """Time constant and sag."""
    names = ("time_constant", "time_constant_residual", "farthest_potential", "sag", "sag_ratio")
    if step.size >= 0:
        return none_of(names, "the step does not hyperpolarise")
    turn, farthest = _farthest(trace, step)
    least = max(LEAST_DEFLECTION, LEAST_BY_NOISE * noise)
    if baseline - farthest < least:
        return none_of(names, f"the step moves the potential by less than {least:.3g} mV")
    sag: Value = steady if isinstance(steady, Missing) else float(steady) - farthest
    ratio: Value = sag if isinstance(sag, Missing) else float(sag) / (baseline - farthest)
    values: dict[str, Value] = {"farthest_potential": farthest, "sag": sag, "sag_ratio": ratio}
    fit = fit_exponential(np.arange(turn + 1) * trace.interval,
                          trace.response[step.start:step.start + turn + 1])
    if isinstance(fit, Missing):
        return {**values, **none_of(names[:2], fit)}
    return {**values, "time_constant": fit.time_constant, "time_constant_residual": fit.residual}


def _capacitance(time_constant: Value, resistance: Value) -> Value:
    for value in (time_constant, resistance):
        if isinstance(value, Missing):
            return value
    return 1e3 * float(time_constant) / float(resistance)


def passive(trace: Trace, spikes: list[Spike], points: slice | Missing) -> dict[str, Value]:
    """The columns of the group "passive"."""
    names = columns_of(EPOCHS, "passive")
    if isinstance(trace.stimulus, Missing):
        return none_of(names, trace.stimulus)
    step = trace.stimulus.step
    if step is None:
        return none_of(names, NO_STEP)
    if isinstance(points, Missing):
        return none_of(names, points)
    if step.points * trace.interval < SHORTEST_STEP:
        return none_of(names, f"the step is shorter than {SHORTEST_STEP:g} ms")
    if step.size == 0:
        return none_of(names, "the step has no height")
    if clipped := trace.clipped_within(slice(step.start, step.stop)):
        return none_of(names, clipped)
    values = _steady(trace, step, spikes)
    if _spikes_within(spikes, step.start, step.stop):
        return {**none_of(names, "spikes during the step"), **values}
    before = trace.response[points]
    baseline = float(before.mean())
    values |= _charging(trace, step, baseline, float(before.std()), values["steady_potential"])
    values["input_resistance"] = \
        1e3 * (float(values["steady_potential"]) - baseline) / step.size
    values["capacitance"] = _capacitance(values["time_constant"], values["input_resistance"])
    return values
