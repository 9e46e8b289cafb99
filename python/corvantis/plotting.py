"""Figures of epochs: the response above, the recomputed stimulus below, on one time axis."""
from __future__ import annotations

import textwrap
from collections.abc import Sequence
from dataclasses import dataclass

import matplotlib
import numpy as np
from matplotlib.axes import Axes
from matplotlib.colors import to_hex
from matplotlib.figure import Figure

from . import scalebars
from .epoch import Epoch
from .errors import STIMULUS_ERROR, CorvantisError
from .progress import progress
from .stimuli import DynamicClamp
from .units import Samples

LINE_WIDTH = 0.8            # [pt]
LONGEST_IN_MILLISECONDS = 2.0   # [s]
MOST_BINS = 4000                # drawn of a curve, far more than a figure has dots across
STYLE = {"svg.fonttype": "none", "svg.hashsalt": "corvantis", "pdf.fonttype": 42, "font.size": 9,
         "font.family": "sans-serif", "axes.unicode_minus": True, "axes.linewidth": 0.8,
         "axes.spines.top": False, "axes.spines.right": False, "path.simplify_threshold": 0.1}

RESPONSE_LABELS = {"mV": "Membrane Potential", "pA": "Clamp Current", "nA": "Clamp Current"}
STIMULUS_LABELS = {"pA": "Applied Current", "nA": "Applied Current", "mV": "Command Potential"}


@dataclass
class Sweep:
    """What is drawn of one epoch: time [s], response, and one or two curves below it."""

    number: int
    time: Samples
    response: Samples
    below: list[Samples]


def label(names: dict[str, str], unit: str, otherwise: str, gap: str = " ") -> str:
    """An axis label such as "Membrane Potential (mV)"; `gap` may be a new line."""
    return f"{names.get(unit, otherwise)}{gap}({unit})" if unit else otherwise


def _below(epoch: Epoch, channel: int) -> list[Samples]:
    """Curves of the lower panel: conductances, the stimulus, or none where it is not known."""
    stimulus = epoch.stimuli[channel]
    if isinstance(stimulus, DynamicClamp) and stimulus.excitatory is not None:
        assert stimulus.inhibitory is not None
        return [stimulus.excitatory.astype(float), stimulus.inhibitory.astype(float)]
    try:
        return [epoch.stimulus[:, channel]]
    except CorvantisError as error:
        if error.code != STIMULUS_ERROR:
            raise
        return []


def read_sweep(epoch: Epoch, channel: int) -> Sweep:
    """Read what is drawn of an epoch's sequence entry `channel`."""
    return Sweep(epoch.number, epoch.time, epoch.response[:, channel], _below(epoch, channel))


def _common_unit(units: Sequence[str], what: str) -> str:
    if len(set(units)) > 1:
        raise ValueError(f"{what} in different units ({', '.join(sorted(set(units)))}): "
                         "choose epochs of one kind")
    return units[0]


def colours(count: int) -> list[str]:
    """Black for one sweep, else the viridis map without its palest end."""
    if count == 1:
        return ["black"]
    shades = matplotlib.colormaps["viridis"](np.linspace(0, 0.82, count))
    return [to_hex(shade) for shade in shades]


def _thinned(curve: Samples, time: Samples) -> tuple[Samples, Samples]:
    """Time and curve; of a long one the lowest and highest sample of each stretch, so that no
    spike is lost."""
    size = len(curve) // MOST_BINS
    if size < 4:
        return time, curve
    whole = len(curve) // size * size
    stretches = curve[:whole].reshape(-1, size)
    places = np.sort(np.stack([stretches.argmin(axis=1), stretches.argmax(axis=1)]), axis=0)
    kept = (places + np.arange(0, whole, size)).T.ravel()
    kept = np.concatenate([kept, np.arange(whole, len(curve))])
    return time[kept], curve[kept]


def _margins(axes: Axes, curves: list[Samples]) -> None:
    """Limits with a little room; a flat line lies in the middle of one unit."""
    filled = [curve for curve in curves if curve.size]
    if not filled:
        return
    low = min(float(np.nanmin(curve)) for curve in filled)
    high = max(float(np.nanmax(curve)) for curve in filled)
    room = 0.06 * (high - low) or 0.5
    axes.set_ylim(low - room, high + room)


def _draw(axes: Axes, sweeps: list[Sweep], curves: list[list[Samples]], scale: float) -> None:
    """Overlay the sweeps; a second curve of the same sweep is dashed."""
    for sweep, colour, several in zip(sweeps, colours(len(sweeps)), curves):
        for curve, style in zip(several, ("-", (0, (3, 1.5)))):
            time, drawn = _thinned(curve, sweep.time * scale)
            axes.plot(time, drawn, color=colour, linewidth=LINE_WIDTH, linestyle=style,
                      solid_joinstyle="round")
    _margins(axes, [curve for several in curves for curve in several])


@dataclass
class Panels:
    """The two panels of a figure, with the units of their axes."""

    upper: Axes
    lower: Axes | None
    response_unit: str
    stimulus_unit: str
    time_unit: str
    stimulus_name: str


def _dress_axes(panels: Panels) -> None:
    response = label(RESPONSE_LABELS, panels.response_unit, "Response")
    panels.upper.set_ylabel(response)
    bottom = panels.lower or panels.upper
    bottom.set_xlabel(f"Time ({panels.time_unit})")
    if panels.lower is not None:
        names = {} if panels.stimulus_name == "Conductance" else STIMULUS_LABELS
        panels.lower.set_ylabel(label(names, panels.stimulus_unit, panels.stimulus_name, "\n"))
        panels.upper.tick_params(labelbottom=False)
        panels.upper.figure.align_ylabels([panels.upper, panels.lower])


def _dress_bars(panels: Panels, sweeps: list[Sweep]) -> None:
    bottom = panels.lower or panels.upper
    curves = [sweep.response for sweep in sweeps], [curve for s in sweeps for curve in s.below]
    units = panels.response_unit, panels.stimulus_unit
    for axes, unit, lines in zip((panels.upper, panels.lower), units, curves):
        if axes is None:
            continue
        scalebars.remove_axes(axes)
        scalebars.draw_vertical(axes, unit, right=1.02)
        starts = [float(line[0]) for line in lines if line.size]
        if starts:
            scalebars.mark_level(axes, float(np.median(starts)), unit)
    scalebars.draw_horizontal(bottom, panels.time_unit, right=1.02)


def draw_panels(figure: Figure, cells: Sequence[object], epochs: Sequence[Epoch],
                sweeps: list[Sweep], channel: int = 0, axes: bool = False) -> Panels:
    """Draw sweeps into the cells of a grid: the upper one, and the lower one if there is any."""
    longest = max((epoch.duration for epoch in epochs), default=0.0)
    time_unit, scale = ("ms", 1e3) if longest <= LONGEST_IN_MILLISECONDS else ("s", 1.0)
    upper = figure.add_subplot(cells[0])
    conductance = any(len(sweep.below) > 1 for sweep in sweeps)
    lower = figure.add_subplot(cells[1], sharex=upper) if len(cells) > 1 else None
    _draw(upper, sweeps, [[sweep.response] for sweep in sweeps], scale)
    if lower is not None:
        _draw(lower, sweeps, [sweep.below for sweep in sweeps], scale)
    upper.set_xlim(0, longest * scale or 1)
    panels = Panels(
        upper, lower,
        _common_unit([epoch.units.response[channel] for epoch in epochs], "responses"),
        "nS" if conductance else
        _common_unit([epoch.units.stimulus[channel] for epoch in epochs], "stimuli"),
        time_unit, "Conductance" if conductance else "Stimulus")
    if axes:
        _dress_axes(panels)
    else:
        _dress_bars(panels, sweeps)
    return panels


def _title(epochs: Sequence[Epoch]) -> str:
    """Which epochs are shown, and the comment of a single one."""
    if len(epochs) > 1:
        return f"{len(epochs)} epochs, {epochs[0].number} to {epochs[-1].number}"
    text = f"Epoch {epochs[0].number}" + (f": {epochs[0].comment}" if epochs[0].comment else "")
    return textwrap.fill(text, 84, max_lines=2, placeholder=" \N{HORIZONTAL ELLIPSIS}")


def plot_epochs(epochs: Sequence[Epoch], channel: int = 0, axes: bool = False,
                title: str | None = None) -> Figure:
    """Draw epochs over each other.

    Args:
        epochs: one or more epochs whose arrays have the same units.
        channel: sequence entry to draw.
        axes: ticks and labels instead of scale bars.
        title: text above the figure; by default the epochs' numbers, or the epoch's comment.

    Returns:
        The figure: response above, recomputed stimulus below (conductances of a dynamic clamp:
        excitatory drawn through, inhibitory dashed), heights 3 to 1. Text stays text in SVG, PDF.
    """
    if not epochs:
        raise ValueError("no epochs to draw")
    sweeps = [read_sweep(epoch, channel) for epoch in progress(epochs, "reading")]
    with matplotlib.rc_context(STYLE):
        figure = Figure(figsize=(5.6, 3.8))
        with_stimulus = any(sweep.below for sweep in sweeps)
        left, right = (0.14, 0.97) if axes else (0.11, 0.88)
        grid = figure.add_gridspec(2 if with_stimulus else 1, 1, left=left, right=right,
                                   bottom=0.13 if axes else 0.08, top=0.91, hspace=0.1,
                                   height_ratios=[3, 1] if with_stimulus else None)
        cells = [grid[row] for row in range(grid.nrows)]
        draw_panels(figure, cells, epochs, sweeps, channel, axes)
        figure.suptitle(_title(epochs) if title is None else title, fontsize=9, x=left, y=0.985,
                        ha="left", va="top")
        return figure


def save(figure: Figure, path: str) -> None:
    """Write a figure as PNG, SVG or PDF, by the name's ending, without a date in it."""
    metadata: dict[str, dict[str, None]] = {"svg": {"Date": None}, "pdf": {"CreationDate": None}}
    with matplotlib.rc_context(STYLE):
        figure.savefig(path, dpi=150, bbox_inches="tight", pad_inches=0.08,
                       metadata=metadata.get(path.rsplit(".", 1)[-1].lower()))
