"""Figures of epochs: the response above, the recomputed stimulus below, on one time axis."""
from __future__ import annotations

import io
import textwrap
from collections.abc import Sequence
from dataclasses import dataclass

import matplotlib
import numpy as np
from matplotlib.axes import Axes
from matplotlib.colors import to_hex
from matplotlib.figure import Figure
from matplotlib.lines import Line2D

from . import scalebars
from .epoch import Epoch
from .epochs import in_ranges, undamaged
from .errors import CorvantisError
from .interface import CONDUCTANCE, NO_STIMULUS, RESPONSE, STIMULUS
from .progress import progress
from .recording import Recording
from .stimuli import has_conductances
from .units import Samples, axis_name
from .writing import write_whole

LINE_WIDTH = 0.8            # [pt]
LONGEST_IN_MILLISECONDS = 2.0   # [s]
MOST_BINS = 4000                # drawn of a curve, far more than a figure has dots across
MOST_IN_KEY = 8                 # epochs that are named beside their colour
CLEAR_OVER_EACH_OTHER = 10      # sweeps; more of them hide one another
ROW_HEIGHT = 0.45               # of a stacked sweep [inches]
TALLEST = 30.0                  # [inches]
STYLE = {"svg.fonttype": "none", "svg.hashsalt": "corvantis", "pdf.fonttype": 42, "font.size": 9,
         "font.family": "sans-serif", "axes.unicode_minus": True, "axes.linewidth": 0.8,
         "axes.spines.top": False, "axes.spines.right": False, "path.simplify_threshold": 0.1,
         "text.parse_math": False}      # units and comments stand for themselves


@dataclass
class Sweep:
    """What is drawn of one epoch: time [s], response, and one or two curves below it."""

    number: int
    time: Samples
    response: Samples
    below: list[Samples]


def label(direction: int, unit: str, gap: str = " ") -> str:
    """An axis label such as "Membrane Potential (mV)"; `gap` may be a new line."""
    name = axis_name(direction, unit)
    return f"{name}{gap}({unit})" if unit else name


def _below(epoch: Epoch, channel: int) -> list[Samples]:
    """Curves of the lower panel: conductances, the stimulus, or none where it is not known."""
    stimulus = epoch.stimuli[channel]
    if has_conductances(stimulus):
        return [stimulus.excitatory.astype(float), stimulus.inhibitory.astype(float)]
    try:
        return [epoch.read_stimulus(entry=channel)]
    except CorvantisError as error:
        if error.code != NO_STIMULUS:
            raise
        return []


def read_sweep(epoch: Epoch, channel: int, with_stimulus: bool = True) -> Sweep:
    """Read what is drawn of an epoch's sequence entry `channel`."""
    return Sweep(epoch.number, epoch.time, epoch.read(entry=channel),
                 _below(epoch, channel) if with_stimulus else [])


def common_unit(units: Sequence[str], what: str) -> str:
    """The unit of all of them, or ValueError."""
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


def thinned(curve: Samples, time: Samples, most: int = MOST_BINS) -> tuple[Samples, Samples]:
    """Time and curve; of a long one the lowest and highest sample of each stretch, so that no
    spike is lost."""
    size = len(curve) // most
    if size < 4:
        return time, curve
    whole = len(curve) // size * size
    stretches = curve[:whole].reshape(-1, size)
    places = np.sort(np.stack([stretches.argmin(axis=1), stretches.argmax(axis=1)]), axis=0)
    kept = (places + np.arange(0, whole, size)).T.ravel()
    kept = np.concatenate([kept, np.arange(whole, len(curve))])
    return time[kept], curve[kept]


def margins(axes: Axes, curves: list[Samples]) -> None:
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
            time, drawn = thinned(curve, sweep.time * scale)
            axes.plot(time, drawn, color=colour, linewidth=LINE_WIDTH, linestyle=style,
                      solid_joinstyle="round")
    margins(axes, [curve for several in curves for curve in several])


@dataclass
class Panels:
    """The two panels of a figure, with the units of their axes."""

    upper: Axes
    lower: Axes | None
    response_unit: str
    stimulus_unit: str
    time_unit: str
    lower_direction: int


def _stacked(sweeps: list[Sweep]) -> list[Samples]:
    """Responses one below the other, farther apart than any of them is high."""
    heights = [float(np.ptp(sweep.response)) for sweep in sweeps if sweep.response.size]
    gap = 1.05 * max(heights, default=0.0) or 1.0
    return [sweep.response - gap * row for row, sweep in enumerate(sweeps)]


def draw_key(figure: Figure, numbers: Sequence[int], left: float, top: float) -> None:
    """The epochs' numbers beside their colours; of many epochs some."""
    if len(numbers) < 2:
        return
    shades = colours(len(numbers))
    shown = np.unique(np.linspace(0, len(numbers) - 1, MOST_IN_KEY).round().astype(int))
    lines = [Line2D([], [], color=shades[each], linewidth=1.5) for each in shown]
    figure.legend(lines, [str(numbers[each]) for each in shown], loc="upper left", ncol=len(lines),
                  bbox_to_anchor=(left, top), frameon=False, fontsize=8, handlelength=1.0,
                  handletextpad=0.4, columnspacing=1.2, borderpad=0.0, borderaxespad=0.0)


def _dress_axes(panels: Panels) -> None:
    response = label(RESPONSE, panels.response_unit)
    panels.upper.set_ylabel(response)
    bottom = panels.lower or panels.upper
    bottom.set_xlabel(f"Time ({panels.time_unit})")
    if panels.lower is not None:
        panels.lower.set_ylabel(label(panels.lower_direction, panels.stimulus_unit, "\n"))
        panels.upper.tick_params(labelbottom=False)
        panels.upper.figure.align_ylabels([panels.upper, panels.lower])


def _dress_bars(panels: Panels, sweeps: list[Sweep], stack: bool) -> None:
    bottom = panels.lower or panels.upper
    curves = [sweep.response for sweep in sweeps], [curve for s in sweeps for curve in s.below]
    units = panels.response_unit, panels.stimulus_unit
    for axes, unit, lines in zip((panels.upper, panels.lower), units, curves):
        if axes is None:
            continue
        scalebars.remove_axes(axes)
        in_rows = stack and axes is panels.upper
        scalebars.draw_vertical(axes, unit, 1.02, len(sweeps) if in_rows else 1)
        starts = [float(line[0]) for line in lines if line.size]
        if starts and not in_rows:
            scalebars.mark_level(axes, float(np.median(starts)), unit)
    scalebars.draw_horizontal(bottom, panels.time_unit, right=1.02)


def _name_rows(axes: Axes, sweeps: list[Sweep], curves: list[Samples], unit: str) -> None:
    """Stacked sweeps bear their numbers, and the level that each begins with."""
    low, high = axes.get_ylim()
    room = 0.05 * (high - low) * (1 - 1 / len(curves))     # that of all rows, made for one
    axes.set_ylim(low + room, high - room)
    for sweep, curve in zip(sweeps, curves):
        if curve.size:
            name = f"{sweep.number}: {sweep.response[0] + 0.0:.3g} {unit}"
            axes.text(-0.01, float(curve[0]), name.replace("-", "\N{MINUS SIGN}"), fontsize=8,
                      transform=axes.get_yaxis_transform(), va="center", ha="right", color="0.3")


def draw_panels(figure: Figure, cells: Sequence[object], epochs: Sequence[Epoch],
                sweeps: list[Sweep], channel: int = 0, axes: bool = False,
                stack: bool = False) -> Panels:
    """Draw sweeps into the cells of a grid: the upper one, and the lower one if there is any."""
    longest = max((epoch.duration for epoch in epochs), default=0.0)
    time_unit, scale = ("ms", 1e3) if longest <= LONGEST_IN_MILLISECONDS else ("s", 1.0)
    upper = figure.add_subplot(cells[0])
    conductance = any(len(sweep.below) > 1 for sweep in sweeps)
    lower = figure.add_subplot(cells[1], sharex=upper) if len(cells) > 1 else None
    responses = _stacked(sweeps) if stack else [sweep.response for sweep in sweeps]
    _draw(upper, sweeps, [[response] for response in responses], scale)
    if lower is not None:
        _draw(lower, sweeps, [sweep.below for sweep in sweeps], scale)
    upper.set_xlim(0, longest * scale or 1)
    panels = Panels(
        upper, lower,
        common_unit([epoch.units.response[channel] for epoch in epochs], "responses"),
        "nS" if conductance else
        common_unit([epoch.units.stimulus[channel] for epoch in epochs], "stimuli"),
        time_unit, CONDUCTANCE if conductance else STIMULUS)
    if axes:
        _dress_axes(panels)
    else:
        if stack:
            _name_rows(upper, sweeps, responses, panels.response_unit)
        _dress_bars(panels, sweeps, stack)
    return panels


def _title(epochs: Sequence[Epoch]) -> str:
    """Which epochs are shown, and the comment of a single one."""
    if len(epochs) > 1:
        text = f"{len(epochs)} epochs: {in_ranges([epoch.number for epoch in epochs])}"
    else:
        comment = epochs[0].comment
        text = f"Epoch {epochs[0].number}" + (f": {comment}" if comment else "")
    return textwrap.fill(text, 84, max_lines=2, placeholder=" \N{HORIZONTAL ELLIPSIS}")


def plot_epochs(epochs: Sequence[Epoch] | Recording, channel: int = 0, axes: bool = False,
                title: str | None = None, stack: bool = False) -> Figure:
    """Draw epochs over each other, or one below the other.

    Args:
        epochs: one or more epochs whose arrays have the same units, or a whole recording.
        channel: sequence entry to draw.
        axes: ticks and labels instead of scale bars.
        title: text above the figure; by default the epochs' numbers, or the epoch's comment.
        stack: responses one below the other, each with its epoch's number and first value.

    Returns:
        The figure: response above, recomputed stimulus below (conductances of a dynamic clamp:
        excitatory drawn through, inhibitory dashed), heights 3 to 1. Text stays text in SVG, PDF.
    """
    epochs = undamaged(epochs.epochs if isinstance(epochs, Recording) else epochs)
    if not epochs:
        raise ValueError("no epochs to draw")
    if axes and stack:
        raise ValueError("stacked sweeps have no common axis: leave out either")
    sweeps = [read_sweep(epoch, channel) for epoch in progress(epochs, "reading")]
    with matplotlib.rc_context(STYLE):
        rows = len(sweeps) if stack else 0
        height = min(max(3.8, 1.5 + ROW_HEIGHT * rows), TALLEST)
        figure = Figure(figsize=(5.6, height))
        with_stimulus = any(sweep.below for sweep in sweeps)
        left, right = (0.14, 0.97) if axes else (0.11, 0.88)
        ratio = 3 * max(1.0, (height - 1.5) / 2.3)
        keyed = len(sweeps) > 1 and not stack
        grid = figure.add_gridspec(2 if with_stimulus else 1, 1, left=left, right=right,
                                   bottom=(0.49 if axes else 0.3) / height,
                                   top=1 - (0.6 if keyed else 0.34) / height,
                                   hspace=0.1, height_ratios=[ratio, 1] if with_stimulus else None)
        cells = [grid[row] for row in range(grid.nrows)]
        draw_panels(figure, cells, epochs, sweeps, channel, axes, stack)
        figure.suptitle(_title(epochs) if title is None else title, fontsize=9, x=left,
                        y=1 - 0.06 / height, ha="left", va="top")
        if keyed:
            draw_key(figure, [sweep.number for sweep in sweeps], left, 1 - 0.32 / height)
        return figure


def save(figure: Figure, path: str) -> None:
    """Write a figure as PNG, SVG or PDF, by the name's ending, without a date in it."""
    metadata: dict[str, dict[str, None]] = {"svg": {"Date": None}, "pdf": {"CreationDate": None}}
    ending = path.rsplit(".", 1)[-1].lower()
    drawn = io.BytesIO()
    with matplotlib.rc_context(STYLE):
        figure.savefig(drawn, format=ending, dpi=150, bbox_inches="tight", pad_inches=0.08,
                       metadata=metadata.get(ending))
    write_whole(path, drawn.getvalue())
