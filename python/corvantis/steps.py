"""The steps of an epoch's stimulus, found in the stimulus as it is recomputed."""
from __future__ import annotations

from collections import defaultdict
from collections.abc import Iterable, Iterator
from dataclasses import dataclass

import numpy as np

from .epoch import Epoch
from .errors import CorvantisError
from .interface import NO_STIMULUS, DoubtReason
from .stimuli import Stimulus
from .units import Counts, Samples

MOST_STRETCHES = 65     # of one level, in a stimulus that is made of steps
SPIKE_THRESHOLD = -20.0     # what rises above it is a spike [mV]
STEADY_FRACTION = 0.2   # the last part of a step, over which the steady state is the mean


@dataclass(frozen=True)
class StimulusStep:
    """A step from the holding level and back to it, or to the epoch's end.

    Attributes:
        before: point from which on the stimulus is at the holding level before it.
        start: its first point.
        stop: the point behind its last one.
        level: stimulus during it [unit of the entry's stimulus].
        holding: stimulus before it [likewise].
    """

    before: int
    start: int
    stop: int
    level: float
    holding: float

    @property
    def points(self) -> int:
        """Its length [samples]."""
        return self.stop - self.start

    @property
    def size(self) -> float:
        """Level above the holding level [unit of the entry's stimulus]."""
        return self.level - self.holding


@dataclass(frozen=True)
class Course:
    """How a stimulus runs.

    Attributes:
        holding: its first value [unit of the entry's stimulus].
        start: first point at another level; 0 if there is none.
        stop: the point behind the last one at another level; the epoch's end if there is none.
        steps: its steps, in their order; a pulse of no height is one, too.
        unknown: why what was played is not known, since it followed the cell; or empty.
    """

    holding: float
    start: int
    stop: int
    steps: tuple[StimulusStep, ...]
    unknown: str = ""

    @property
    def step(self) -> StimulusStep | None:
        """The longest step, of equal ones the first."""
        return max(self.steps, key=lambda step: step.points) if self.steps else None


def _pulses(stimulus: Stimulus) -> Iterator[Stimulus]:
    """The pulses that a stimulus is, or has among its components."""
    for each in getattr(stimulus, "components", (stimulus,)):
        if each.name == "pulse":
            yield each


def _stretches(counts: Counts) -> list[tuple[int, int]]:
    """Where the level stays the same: first points, and those behind the last; none if many."""
    changes = np.flatnonzero(np.diff(counts)) + 1
    if len(changes) >= MOST_STRETCHES:
        return []
    borders = [0, *changes.tolist(), len(counts)]
    return list(zip(borders, borders[1:]))


def _steps(counts: Counts, pulses: list[Stimulus]) -> list[tuple[int, int]]:
    """First points of steps, and those behind the last. What a pulse without points before it steps
    from is not known."""
    if any(pulse.prePoints == 0 and pulse.points > 0 and pulse.amplitude for pulse in pulses):
        return []
    held, end = counts[0], len(counts)
    steps = [(start, stop) for start, stop in _stretches(counts)
             if counts[start] != held and counts[start - 1] == held
             and (stop == end or counts[stop] == held)]
    flat = [(pulse.prePoints, min(pulse.prePoints + pulse.points, end)) for pulse in pulses]
    return sorted({*steps, *((start, stop) for start, stop in flat
                             if 0 < start < stop and np.all(counts[start:stop] == held))})


def course(epoch: Epoch, entry: int) -> Course:
    """How the stimulus of a sequence entry runs.

    Raises:
        CorvantisError: with code 2 where the stimulus cannot be computed.
        ValueError: if the epoch has no points.
    """
    counts, doubt = epoch.compute_stimulus(entry=entry, raw=True)
    if not len(counts):
        raise ValueError(f"epoch {epoch.number} has no points")
    scale = epoch.stimulus_scales[entry]
    away = np.flatnonzero(counts != counts[0])
    holding = float(scale(counts[0]))
    steps = [StimulusStep(int(away[away < start].max(initial=-1)) + 1, start, stop,
                          float(scale(counts[start])), holding)
             for start, stop in _steps(counts, list(_pulses(epoch.parameters[entry])))]
    reaches = (int(away[0]), int(away[-1]) + 1) if len(away) else (0, len(counts))
    follows = doubt is not None and doubt.reason == DoubtReason.FOLLOWED_CELL
    return Course(holding, *reaches, tuple(steps), doubt.text if doubt and follows else "")


Members = list[tuple[Epoch, StimulusStep]]


def main_step(epoch: Epoch, entry: int) -> StimulusStep | None:
    """The longest step of an epoch whose stimulus is known."""
    known = _known_course(epoch, entry)
    return None if known is None else known.step


def _known_course(epoch: Epoch, entry: int) -> Course | None:
    if entry >= epoch.entries or not epoch.points:
        return None
    try:
        known = course(epoch, entry)
    except CorvantisError as error:
        if error.code != NO_STIMULUS:
            raise
        return None
    return None if known.unknown else known


def families_of_steps(epochs: Iterable[Epoch], entry: int = 0) -> list[Members]:
    """Epochs with steps, in groups whose stimuli differ in nothing but the level of the longest
    step; in the order of their first epochs, each with that step."""
    groups: dict[tuple[object, ...], Members] = defaultdict(list)
    for epoch in epochs:
        known = _known_course(epoch, entry)
        step = known.step if known is not None else None
        if known is None or step is None:
            continue
        others = tuple(each for each in known.steps if each is not step)
        key = (step.start, step.points, known.holding, others, epoch.sampling_rate,
               epoch.units.response[entry], epoch.units.stimulus[entry])
        groups[key].append((epoch, step))
    return list(groups.values())


def slope_through_rest(currents: Samples, shifts: Samples) -> float | None:
    """Slope of the line through 0 that comes nearest to shifts of the potential [unit of shifts by
    unit of currents]; None without currents."""
    power = float(currents @ currents)
    return float(currents @ shifts) / power if power > 0 else None
