"""Voltage clamp: access resistance, membrane resistance and capacitance from a test pulse.

A cell of resistance Rm and capacitance Cm behind an access resistance Rs answers a step V with
I(t) = V / (Rs + Rm) + (V / Rs - V / (Rs + Rm)) exp(-t / tau), tau = Cm Rs Rm / (Rs + Rm).
"""
from __future__ import annotations

import numpy as np

from ..steps import Course, StimulusStep
from .columns import EPOCHS
from .fits import Exponential, fit_exponential
from .missing import Missing, Value, columns_of, none_of
from .traces import Trace

LARGEST = 20.0      # of a test pulse, which leaves the channels alone [mV]
SHORTEST = 2.0      # of it, and of what is before it [ms]
LEAST_BY_NOISE = 5.0

OF_PULSE = ("access_resistance", "membrane_resistance", "membrane_capacitance",
            "transient_time_constant", "transient_residual")


def test_pulse(trace: Trace) -> StimulusStep | None:
    """The smallest step of an epoch that is fit for it, of equal ones the first."""
    assert isinstance(trace.stimulus, Course)
    fit = [step for step in trace.stimulus.steps
           if 0 < abs(step.size) <= LARGEST and step.points * trace.interval >= SHORTEST]
    return min(fit, key=lambda step: abs(step.size)) if fit else None


def _fit_transient(trace: Trace, pulse: StimulusStep, base: float,
                   noise: float) -> Exponential | Missing:
    """The exponential behind the peak of the current, its time from the pulse's first point."""
    change = trace.response[pulse.start:pulse.stop] - base
    early = change[:trace.points(SHORTEST)] * np.sign(pulse.size)
    peak = int(np.argmax(early))
    if early[peak] < LEAST_BY_NOISE * noise or early[peak] <= 0:
        return Missing("the test pulse's transient does not stand out of the noise")
    times = np.arange(len(change) - peak) * trace.interval
    fit = fit_exponential(times, change[peak:])
    if isinstance(fit, Missing):
        return fit
    if fit.time_constant < trace.interval:
        return Missing("the transient is faster than the sampling")
    return Exponential(fit.end, fit.at(-peak * trace.interval) - fit.end, fit.time_constant,
                       fit.residual)


def _of_transient(size: float, fit: Exponential) -> dict[str, Value]:
    """Resistances [MOhm] and capacitance [pF] of a transient [pA, ms] after a step [mV]."""
    jump = fit.end + fit.size
    if not (jump / size > fit.end / size > 0):
        return none_of(OF_PULSE, "the current does not fall from its peak to a steady change in "
                       "the test pulse's direction")
    access = 1e3 * size / jump
    membrane = 1e3 * size / fit.end - access
    return {"access_resistance": access, "membrane_resistance": membrane,
            "membrane_capacitance": 1e3 * fit.time_constant * (1 / access + 1 / membrane),
            "transient_time_constant": fit.time_constant, "transient_residual": fit.residual}


def measure_test_pulse(trace: Trace) -> dict[str, Value]:
    """The columns of the group "test pulse"."""
    if isinstance(trace.stimulus, Missing):
        return none_of(columns_of(EPOCHS, "test pulse"), trace.stimulus)
    values: dict[str, Value] = {"command_potential": trace.stimulus.holding}
    pulse = test_pulse(trace)
    if pulse is None:
        return {**none_of(columns_of(EPOCHS, "test pulse"),
                          f"no step of {LARGEST:g} mV at most and {SHORTEST:g} ms at least"),
                **values}
    before = trace.response[trace.before(pulse)]
    if len(before) * trace.interval < SHORTEST:
        return {**none_of(columns_of(EPOCHS, "test pulse"),
                          f"less than {SHORTEST:g} ms before the test pulse"), **values}
    if clipped := trace.clipped_within(slice(trace.before(pulse).start, pulse.stop)):
        return {**none_of(columns_of(EPOCHS, "test pulse"), clipped), **values}
    base = float(before.mean())
    values |= {"clamp_current": base, "test_pulse": pulse.size}
    fit = _fit_transient(trace, pulse, base, float(before.std()))
    return values | (none_of(OF_PULSE, fit) if isinstance(fit, Missing) else
                     _of_transient(pulse.size, fit))
