"""Fits of exponentials and straight lines, with what they leave over."""
from __future__ import annotations

import warnings
from dataclasses import dataclass

import numpy as np
from scipy.optimize import OptimizeWarning, curve_fit

from ..units import Samples
from .missing import Missing

FEWEST_POINTS = 5
MOST_STEPS = 200    # of the search


@dataclass(frozen=True)
class Exponential:
    """end + size * exp(-time / time_constant); residual is the root of the mean squared distance
    [unit of the values]."""

    end: float
    size: float
    time_constant: float
    residual: float

    def at(self, time: float) -> float:
        """Its value at a time."""
        return self.end + self.size * float(np.exp(-time / self.time_constant))


def _exponential(time: Samples, end: float, size: float, rate: float) -> Samples:
    values: Samples = end + size * np.exp(-time * rate)
    return values


def _first_guess(time: Samples, values: Samples) -> tuple[float, float, float]:
    end = float(values[-max(1, len(values) // 10):].mean())
    size = float(values[0]) - end
    near = np.flatnonzero(np.abs(values - end) < abs(size) / np.e)
    after = float(time[near[0]]) if len(near) and near[0] else float(time[-1]) / 3
    return end, size, 1 / after


def fit_exponential(time: Samples, values: Samples) -> Exponential | Missing:
    """The exponential that fits best.

    Args:
        time: of the values, from 0 [any unit].
        values: likewise [any unit].
    """
    if len(values) < FEWEST_POINTS:
        return Missing(f"an exponential needs {FEWEST_POINTS} points, there are {len(values)}")
    try:
        with warnings.catch_warnings():
            warnings.simplefilter("ignore", OptimizeWarning)
            (end, size, rate), _ = curve_fit(_exponential, time, values,
                                             _first_guess(time, values), maxfev=MOST_STEPS * 4)
    except RuntimeError:
        return Missing("no exponential fits")
    if not (np.isfinite([end, size, rate]).all() and rate * time[-1] > 1):
        return Missing(f"no exponential fits: the response does not settle within "
                       f"{float(time[-1]):.3g} ms")
    distance = values - _exponential(time, end, size, rate)
    return Exponential(float(end), float(size), 1 / float(rate),
                       float(np.sqrt(np.mean(distance ** 2))))


def fit_line(places: Samples, values: Samples) -> tuple[float, float]:
    """Slope of the straight line that fits best, and the root of the mean squared distance."""
    matrix = np.stack([places, np.ones_like(places)], axis=1)
    (slope, offset), *_ = np.linalg.lstsq(matrix, values, rcond=None)
    return float(slope), float(np.sqrt(np.mean((values - slope * places - offset) ** 2)))


def running_mean(values: Samples, points: int) -> Samples:
    """Means of so many neighbours each, shape (len(values) - points + 1,)."""
    sums = np.concatenate([[0.0], np.cumsum(values - values[0])])
    means: Samples = (sums[points:] - sums[:-points]) / points + values[0]
    return means
