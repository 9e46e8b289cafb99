"""Whether an epoch is fit for use: noise, drift, samples at the converter's limits."""
from __future__ import annotations

import numpy as np

from .fits import fit_line
from .missing import Missing, Value
from .traces import CURRENT_CLAMP, VOLTAGE_CLAMP, Trace

MOST_NOISE = {CURRENT_CLAMP: 1.0, VOLTAGE_CLAMP: 20.0}      # [mV], [pA]
MOST_DRIFT = {CURRENT_CLAMP: 5.0, VOLTAGE_CLAMP: 100.0}     # [mV], [pA]
NAMES = {CURRENT_CLAMP: ("noise", "drift", "shift"),
         VOLTAGE_CLAMP: ("current_noise", "current_drift", "current_shift")}


class FirstBaselines:
    """The first baseline of a recording for each entry, clamp and holding level."""

    def __init__(self) -> None:
        self._known: dict[tuple[object, ...], float] = {}

    def shift(self, trace: Trace, holding: float, baseline: float) -> float:
        """How far a baseline is from the first one."""
        return baseline - self._known.setdefault((trace.entry, trace.clamp, holding), baseline)


def _any_above(limit: float, *values: Value) -> Value:
    """Whether one of several values is beyond a limit."""
    known = [abs(float(value)) for value in values if not isinstance(value, Missing)]
    return max(known) > limit if known else values[0]


def quality(trace: Trace, points: slice | Missing, firsts: FirstBaselines) -> dict[str, Value]:
    """The columns of the groups of quality; `points` are the baseline."""
    values: dict[str, Value] = {"clipped": len(trace.clipped), "is_clipped": len(trace.clipped) > 0}
    for clamp, names in NAMES.items():
        if clamp != trace.clamp:
            values |= {name: Missing(f"{trace.clamp} clamp") for name in names}
    if isinstance(trace.clamp, Missing):
        why = trace.clamp
        return {**values, **{name: why for names in NAMES.values() for name in names},
                "is_noisy": why, "is_drifting": why}
    noise, drift, shift = _of_baseline(trace, points, firsts)
    values |= dict(zip(NAMES[trace.clamp], (noise, drift, shift)))
    return {**values, "is_noisy": _any_above(MOST_NOISE[trace.clamp], noise),
            "is_drifting": _any_above(MOST_DRIFT[trace.clamp], drift, shift)}


def _of_baseline(trace: Trace, points: slice | Missing,
                 firsts: FirstBaselines) -> tuple[Value, Value, Value]:
    if isinstance(points, Missing) or isinstance(trace.stimulus, Missing):
        why = points if isinstance(points, Missing) else Missing(trace.stimulus)
        return why, why, why
    before = trace.response[points]
    slope, residual = fit_line(np.arange(len(before), dtype=float), before)
    return (residual, slope * (len(before) - 1),
            firsts.shift(trace, trace.stimulus.holding, float(before.mean())))
