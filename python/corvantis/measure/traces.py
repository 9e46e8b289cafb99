"""What is measured of an epoch: the trace of one sequence entry in mV or pA, and its stimulus."""
from __future__ import annotations

from dataclasses import dataclass
from typing import Union

import numpy as np
from numpy.typing import NDArray

from ..epoch import Epoch
from ..errors import CorvantisError
from ..interface import NO_STIMULUS, Quantity
from ..steps import Course, StimulusStep, course
from ..units import Counts, Samples, Scale
from .missing import Missing

CURRENT_CLAMP, VOLTAGE_CLAMP = "current", "voltage"
CLAMPS = {(Quantity.POTENTIAL, Quantity.CURRENT): CURRENT_CLAMP,
          (Quantity.CURRENT, Quantity.POTENTIAL): VOLTAGE_CLAMP}
FACTORS = {Quantity.POTENTIAL: 1e3, Quantity.CURRENT: 1e12}     # from SI to mV and pA
SHORTEST_BASELINE = 5.0     # [ms]
LIMITS = np.iinfo(np.int16).min, np.iinfo(np.int16).max


@dataclass(frozen=True)
class Trace:
    """One sequence entry of an epoch.

    Attributes:
        response: [mV] in current clamp, [pA] in voltage clamp.
        interval: between points [ms].
        stimulus: its course in [pA] or [mV], or why that is not known.
        clipped: points whose samples are at the converter's limits.
    """

    epoch: Epoch
    entry: int
    clamp: Union[str, Missing]
    response: Samples
    interval: float
    stimulus: Union[Course, Missing]
    clipped: NDArray[np.int64]

    def clipped_within(self, where: slice) -> Missing | None:
        """Why nothing can be measured of these points."""
        number = int(np.count_nonzero((self.clipped >= where.start) & (self.clipped < where.stop)))
        return Missing(f"{number} samples at the converter's limits") if number else None

    def points(self, duration: float) -> int:
        """Points in a duration [ms], at least one."""
        return max(1, round(duration / self.interval))

    def before(self, step: StimulusStep) -> slice:
        """The points at the holding level before a step; behind another step their later half."""
        first = step.before if step.before == 0 else (step.before + step.start) // 2
        return slice(first, step.start)


def _clamp(response: Scale, stimulus: Scale) -> str | Missing:
    known = CLAMPS.get((response.quantity, stimulus.quantity))
    return known or Missing(f"the response is {response.formula}, the stimulus {stimulus.formula}: "
                            "neither current nor voltage clamp")


def _in_usual_units(level: float, scale: Scale) -> float:
    return level * scale.si * FACTORS[scale.quantity]


def _stimulus(epoch: Epoch, entry: int) -> Course | Missing:
    try:
        known = course(epoch, entry)
    except CorvantisError as error:
        if error.code != NO_STIMULUS:
            raise
        return Missing(f"the stimulus is not known: {error.detail or error.meaning}")
    if known.unknown:
        return Missing(known.unknown)
    scale = epoch.stimulus_scales[entry]
    steps = tuple(StimulusStep(each.before, each.start, each.stop,
                               _in_usual_units(each.level, scale),
                               _in_usual_units(each.holding, scale)) for each in known.steps)
    return Course(_in_usual_units(known.holding, scale), known.start, known.stop, steps)


def read_trace(epoch: Epoch, entry: int) -> Trace:
    """Read an entry of an epoch that is not damaged."""
    raw: Counts = epoch.read(entry=entry, raw=True)
    response = epoch.response_scales[entry]
    clamp: str | Missing = _clamp(response, epoch.stimulus_scales[entry])
    if not len(raw):
        clamp = Missing("the epoch has no points")
    elif not epoch.sampling_rate > 0:
        clamp = Missing("the recording states no sampling interval")
    usable = not isinstance(clamp, Missing)
    return Trace(epoch, entry, clamp,
                 response(raw) * (response.si * FACTORS[response.quantity] if usable else 1.0),
                 1e3 / epoch.sampling_rate, _stimulus(epoch, entry) if usable else Missing(clamp),
                 np.flatnonzero((raw == LIMITS[0]) | (raw == LIMITS[1])))
