"""Model neurons whose figures are published: cells in current and in voltage clamp.

M. Pospischil et al., "Minimal Hodgkin-Huxley type models for different classes of cortical and
thalamic neurons", Biol. Cybern. 99:427 (2008), with the parameters of the authors' public programs:
a regular spiking and a fast spiking cell, 36 degC, 1 uF/cm2.
"""
from dataclasses import dataclass

import numpy as np

INTERVAL = 0.04     # of the integration and of samples [ms]
VT = -55.0          # [mV]


@dataclass(frozen=True)
class Cell:
    """Area [um2]; conductances [mS/cm2]; reversal potential of the leak [mV]."""

    area: float
    leak: float
    potassium: float
    muscarinic: float
    rest: float = -70.0


REGULAR = Cell(np.pi * 96 * 96, 0.1, 5, 0.07)
FAST = Cell(np.pi * 67 * 67, 0.15, 10, 0)


def _linear(x):
    with np.errstate(invalid="ignore", divide="ignore"):
        return np.where(np.abs(x) < 1e-6, 1 + x / 2, x / -np.expm1(-x))


def _gates(v):
    """Steady states and decay over an interval of m, h, n and p."""
    u = v - VT
    rates = [(1.28 * _linear((u - 13) / 4), 1.4 * _linear((40 - u) / 5)),
             (0.128 * np.exp((17 - u) / 18), 4 / (1 + np.exp((40 - u) / 5))),
             (0.16 * _linear((u - 15) / 5), 0.5 * np.exp((10 - u) / 40))]
    steady = [a / (a + b) for a, b in rates] + [1 / (1 + np.exp(-(v + 35) / 10))]
    decay = [a + b for a, b in rates] + [
        (3.3 * np.exp((v + 35) / 20) + np.exp(-(v + 35) / 20)) / 1000]
    return np.array(steady), np.exp(-INTERVAL * np.array(decay))


def _conductances(gates, leak, potassium, muscarinic, rest):
    """Total [mS/cm2] and the current that the reversal potentials drive [uA/cm2]."""
    m, h, n, p = gates
    sodium, delayed, slow = 50 * m**3 * h, potassium * n**4, muscarinic * p
    return leak + sodium + delayed + slow, leak * rest + 50 * sodium - 100 * (delayed + slow)


def _resting(membrane):
    """Potentials at which no current flows, by bisection [mV]."""
    low, high = np.full((2, len(membrane[0])), [[-90.0], [-60.0]])
    for _ in range(50):
        middle = (low + high) / 2
        total, driven = _conductances(_gates(middle)[0], *membrane)
        inward = driven > total * middle
        low, high = np.where(inward, middle, low), np.where(inward, high, middle)
    return low


def potentials(cells, currents):
    """Membrane potentials, shape (points, cells) [mV], of cells with as many currents,
    shape (points, cells) [pA], from rest.

    Gates and potential are taken half an interval apart, each exactly for constant others.
    """
    area, *membrane = np.array([(cell.area, cell.leak, cell.potassium, cell.muscarinic, cell.rest)
                                for cell in cells]).T
    v, out = _resting(membrane), np.empty(currents.shape)
    gates = _gates(v)[0]
    for point, current in enumerate(currents * 100 / area):
        out[point] = v
        steady, decay = _gates(v)
        gates = steady + (gates - steady) * decay
        total, driven = _conductances(gates, *membrane)
        limit = (driven + current) / total
        v = limit + (v - limit) * np.exp(-total * INTERVAL)
    return out


def clamp_currents(times, size, access, membrane, capacitance):
    """Current [pA] after a step of the potential [mV] at time 0 [ms], of a passive cell behind an
    access resistance, both [MOhm], with a capacitance [pF]; exact."""
    steady, jump = 1e3 * size / (access + membrane), 1e3 * size / access
    constant = 1e-3 * capacitance * access * membrane / (access + membrane)
    return steady + (jump - steady) * np.exp(-times / constant)
