"""Spikes of a potential: found and described by eFEL, which is told the exact stimulus."""
from __future__ import annotations

import threading
from collections.abc import Iterator
from contextlib import contextmanager
from dataclasses import dataclass
from typing import Any

import efel
import numpy as np
from numpy.typing import NDArray

from ..steps import SPIKE_THRESHOLD, Course
from .missing import Missing, Value
from .traces import Trace

SLOPE = 10.0            # at which a spike begins [mV/ms]
SHAPE = ("threshold", "peak", "height", "width", "width_above_trough", "afterhyperpolarisation")
FEATURES = ["peak_indices", "AP_begin_indices", "min_AHP_indices", "spike_half_width"]
BEFORE, DURING, AFTER = "before", "during", "after"

_settings = threading.Lock()        # eFEL has one set of them for the whole process
Places = NDArray[np.int64]


@dataclass(frozen=True)
class Spike:
    """A spike: points at which it begins, peaks, and is lowest thereafter; its phase; its shape.

    Where it begins is its peak if eFEL does not find where the slope reaches the threshold.
    """

    begin: int
    peak: int
    phase: str | Missing
    shape: dict[str, Value]


@contextmanager
def _set(interval: float) -> Iterator[None]:
    """eFEL's settings for a sampling interval [ms]; those of the program come back."""
    wanted = {"Threshold": SPIKE_THRESHOLD, "DerivativeThreshold": SLOPE, "interp_step": interval,
              "strict_stiminterval": False}
    with _settings:
        before = {name: getattr(efel.get_settings(), name) for name in wanted}
        for name, value in wanted.items():
            efel.set_setting(name, value)
        try:
            yield
        finally:
            for name, value in before.items():
                efel.set_setting(name, value)


def _features(trace: Trace) -> dict[str, Any]:
    times = np.arange(len(trace.response)) * trace.interval
    course = trace.stimulus
    known = isinstance(course, Course)
    start, stop = (course.start, course.stop) if isinstance(course, Course) else (0, len(times))
    current = course.step.size if isinstance(course, Course) and course.step is not None else 0.0
    told = {"T": times, "V": trace.response, "stim_start": [start * trace.interval],
            "stim_end": [stop * trace.interval]}
    if known:
        told["stimulus_current"] = [current / 1e3]      # [nA]
    with _set(trace.interval):
        found: dict[str, Any] = efel.get_feature_values([told], FEATURES, raise_warnings=False)[0]
    return {name: np.empty(0) if values is None else values for name, values in found.items()}


def _last_within(places: Places, first: int, stop: int) -> int | None:
    within = places[(places >= first) & (places < stop)]
    return int(within[-1]) if len(within) else None


def _crossing(response: NDArray[np.float64], level: float, below: int, above: int) -> float | None:
    """Where between a point below a level and one above, the latter being the nearer to the peak,
    the response last crosses it [samples]."""
    step = 1 if below < above else -1
    for place in range(above, below, -step):
        inner, outer = response[place], response[place - step]
        if outer <= level < inner:
            return place - step * float((inner - level) / (inner - outer))
    return None


def _width(trace: Trace, begin: int, peak: int, stop: int) -> Value:
    half = (trace.response[begin] + trace.response[peak]) / 2
    rise = _crossing(trace.response, half, begin, peak)
    fall = _crossing(trace.response, half, stop - 1, peak)
    if rise is None or fall is None:
        return Missing("the potential does not fall to half the height before the next spike, or "
                       "the epoch's end")
    return (fall - rise) * trace.interval


def _trough(begin: int, trough: int | None, course: Course | Missing) -> int | Missing:
    """The trough, unless the end of the step that evoked the spike has to do with it."""
    if trough is None:
        return Missing("no trough behind the spike")
    if isinstance(course, Course) and begin < course.stop <= trough:
        return Missing("the stimulus ends before the trough")
    return trough


def _shape(trace: Trace, begin: int | None, peak: int, trough: int | Missing, stop: int,
           above_trough: float) -> dict[str, Value]:
    response = trace.response
    if clipped := trace.clipped_within(slice(peak if begin is None else begin, stop)):
        return {name: clipped for name in SHAPE}
    shape: dict[str, Value] = {"peak": float(response[peak])}
    shape["width_above_trough"] = trough if isinstance(trough, Missing) else above_trough \
        if np.isfinite(above_trough) else Missing("eFEL finds no half width")
    if begin is None:
        why = f"the slope does not stay above {SLOPE:g} mV/ms before the peak"
        return {**shape, **{name: Missing(why) for name in SHAPE if name not in shape}}
    threshold = float(response[begin])
    shape |= {"threshold": threshold, "height": float(response[peak]) - threshold,
              "width": _width(trace, begin, peak, stop)}
    shape["afterhyperpolarisation"] = trough if isinstance(trough, Missing) else \
        threshold - float(response[trough])
    return shape


def _phase(begin: int, course: Course | Missing) -> str | Missing:
    if isinstance(course, Missing):
        return course
    return BEFORE if begin < course.start else DURING if begin < course.stop else AFTER


def find_spikes(trace: Trace) -> list[Spike]:
    """The spikes of an entry whose response is a potential [mV], in their order."""
    if not np.any(trace.response > SPIKE_THRESHOLD) or np.all(trace.response > SPIKE_THRESHOLD):
        return []
    found = _features(trace)
    peaks: Places = found["peak_indices"].astype(np.int64)
    begins, troughs = (found[name].astype(np.int64)
                       for name in ("AP_begin_indices", "min_AHP_indices"))
    widths = found["spike_half_width"] if len(found["spike_half_width"]) == len(peaks) else \
        np.full(len(peaks), np.nan)
    borders = [0, *peaks.tolist(), len(trace.response)]
    spikes = []
    for before, peak, after, width in zip(borders, peaks.tolist(), borders[2:], widths.tolist()):
        begin = _last_within(begins, before, peak)
        trough = _trough(peak if begin is None else begin, _last_within(troughs, peak, after),
                         trace.stimulus)
        spikes.append(Spike(peak if begin is None else begin, peak,
                            _phase(peak if begin is None else begin, trace.stimulus),
                            _shape(trace, begin, peak, trough, after, width)))
    return spikes
