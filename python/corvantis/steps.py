"""The steps of an epoch's stimulus, found in the stimulus as it is recomputed."""
from __future__ import annotations

import ctypes
from collections import defaultdict
from collections.abc import Iterable
from dataclasses import dataclass

from .epoch import Epoch
from .errors import CorvantisError
from .interface import (NO_STIMULUS, SPIKE_THRESHOLD, STEADY_PART, CourseRecord, DoubtReason,
                        DoubtRecord, StepRecord)
from .units import Samples

__all__ = ["SPIKE_THRESHOLD", "STEADY_FRACTION", "Course", "Members", "StimulusStep", "course",
           "families_of_steps", "main_step", "slope_through_rest"]

MOST_STEPS = 512    # more than samples and the components of a sum can show
STEADY_FRACTION = 1 / STEADY_PART   # of a step, at its end


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
        family: a number that epochs share whose stimuli differ in nothing but the level of the
            longest step, their intervals and units being the same; 0 where that is not known.
    """

    holding: float
    start: int
    stop: int
    steps: tuple[StimulusStep, ...]
    unknown: str = ""
    family: int = 0

    @property
    def step(self) -> StimulusStep | None:
        """The longest step, of equal ones the first."""
        return max(self.steps, key=lambda step: step.points) if self.steps else None


def _step(record: StepRecord, holding: float) -> StimulusStep:
    return StimulusStep(record.before, record.start, record.stop, record.level, holding)


def course(epoch: Epoch, entry: int) -> Course:
    """How the stimulus of a sequence entry runs.

    Raises:
        CorvantisError: with code 2 where the stimulus cannot be computed.
        ValueError: if the epoch has no points.
    """
    if not epoch.points:
        raise ValueError(f"epoch {epoch.number} has no points")
    handle, found, doubt = epoch.recording.handle, CourseRecord(), DoubtRecord()
    steps = (StepRecord * MOST_STEPS)()
    handle.call(handle.library.CorvantisSteps, epoch.number, entry, ctypes.addressof(found), steps,
                MOST_STEPS, ctypes.addressof(doubt))
    follows = doubt.reason == DoubtReason.FOLLOWED_CELL
    return Course(found.holding, found.start, found.stop,
                  tuple(_step(each, found.holding) for each in steps[:found.steps]),
                  doubt.text.decode() if follows else "", found.family)


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
    groups: dict[int, Members] = defaultdict(list)
    for epoch in epochs:
        known = _known_course(epoch, entry)
        if known is not None and known.step is not None:
            groups[known.family].append((epoch, known.step))
    return list(groups.values())


def slope_through_rest(currents: Samples, shifts: Samples) -> float | None:
    """Slope of the line through 0 that comes nearest to shifts of the potential [unit of shifts by
    unit of currents]; None without currents."""
    power = float(currents @ currents)
    return float(currents @ shifts) / power if power > 0 else None
