"""Figures of many cells from a query over a catalogue: sweeps, or spike rate against current."""
from __future__ import annotations

import math
from collections.abc import Iterable, Mapping, Sequence
from typing import TYPE_CHECKING, Any

import matplotlib
import numpy as np
from matplotlib.axes import Axes
from matplotlib.collections import LineCollection
from matplotlib.figure import Figure

from . import scalebars
from .epoch import Epoch
from .families import measure
from .interface import RESPONSE, STIMULUS
from .plotting import (LONGEST_IN_MILLISECONDS, STYLE, Sweep, colours, common_unit, label, margins,
                       read_sweep, thinned)
from .units import axis_name

if TYPE_CHECKING:
    from .archive import Catalogue

Curve = tuple[list[float], list[float]]     # levels and rates
MOST_CELLS = 120
MOST_TOGETHER = 8                           # cells whose curves are told apart in one panel
PANEL = 1.3, 1.0                            # width and height [inches]
BINS = 400                                  # drawn of a sweep in a small panel
CURVE_COLUMNS = "step_current_pA", "rate_Hz"


def cells_of(files: Iterable[str], named: Sequence[str] | None) -> list[str]:
    """The cell of each row: as the query names it, else the file without its ending."""
    return list(named) if named is not None else \
        [file.rsplit("/", 1)[-1].rsplit(".", 1)[0] for file in files]


def _grouped(cells: Sequence[str], items: Iterable[Any]) -> dict[str, list[Any]]:
    groups: dict[str, list[Any]] = {}
    for cell, item in zip(cells, items):
        groups.setdefault(cell, []).append(item)
    if not groups:
        raise ValueError("the query gives no rows")
    if len(groups) > MOST_CELLS:
        raise ValueError(f"{len(groups)} cells are too many for one figure: let the query choose "
                         f"{MOST_CELLS} at most")
    return groups


def _curve(points: Iterable[tuple[float | None, float | None]]) -> Curve:
    """Mean rate at each level, from points of which none is missing."""
    rates: dict[float, list[float]] = {}
    for level, rate in points:
        if level is not None and rate is not None:
            rates.setdefault(level, []).append(rate)
    levels = sorted(rates)
    return levels, [float(np.mean(rates[level])) for level in levels]


def _grid(count: int) -> tuple[Figure, list[Axes]]:
    """Small panels with common axes, wider than high all together."""
    columns = min(count, math.ceil(math.sqrt(1.4 * count)))
    rows = math.ceil(count / columns)
    size = max(PANEL[0] * columns + 0.8, 3.0), PANEL[1] * rows + 0.7
    figure = Figure(figsize=size)
    panels = figure.subplots(rows, columns, sharex=True, sharey=True, squeeze=False,
                             gridspec_kw={"left": 0.7 / size[0], "right": 1 - 0.1 / size[0],
                                          "bottom": 0.5 / size[1], "top": 1 - 0.45 / size[1],
                                          "hspace": 0.3, "wspace": 0.12})
    for unused in panels.flat[count:]:
        unused.set_visible(False)
    for above in panels.flat[max(0, count - columns):(rows - 1) * columns]:
        above.tick_params(labelbottom=True)     # nothing is below it
    return figure, list(panels.flat[:count])


def _name(axes: Axes, cell: str) -> None:
    axes.set_title(cell if len(cell) <= 18 else f"{cell[:17]}\N{HORIZONTAL ELLIPSIS}", fontsize=7,
                   pad=2, loc="left")


def _together(curves: Mapping[str, Curve]) -> tuple[Figure, Axes]:
    figure = Figure(figsize=(5.6, 3.8))
    axes = figure.add_subplot()
    for (cell, curve), colour in zip(curves.items(), colours(len(curves))):
        axes.plot(*curve, "o-", color=colour, markersize=3.5, linewidth=0.9, label=cell)
    axes.legend(frameon=False, fontsize=8)
    return figure, axes


def _side_by_side(curves: Mapping[str, Curve]) -> Figure:
    """Each cell in black before all others in grey."""
    figure, panels = _grid(len(curves))
    lines = [np.transpose(curve) for curve in curves.values() if curve[0]]
    for axes, (cell, curve) in zip(panels, curves.items()):
        axes.add_collection(LineCollection(lines, colors="0.85", linewidths=0.5))
        axes.plot(*curve, "o-", color="black", markersize=1.8, linewidth=0.8)
        axes.tick_params(labelsize=7, length=2)
        _name(axes, cell)
    return figure


def plot_curves(curves: Mapping[str, Curve], unit: str = "pA") -> Figure:
    """Spike rate [Hz] against the step's level, by cell; of many cells in panels of their own."""
    x, y = label(STIMULUS, unit), "Spike Rate (Hz)"
    with matplotlib.rc_context(STYLE):
        if len(curves) <= MOST_TOGETHER:
            figure, axes = _together(curves)
            axes.set(xlabel=x, ylabel=y)
        else:
            figure = _side_by_side(curves)
            _around(figure, x, y)
            figure.suptitle(f"{len(curves)} cells", fontsize=9, x=0.01, y=0.995, ha="left")
        return figure


def _around(figure: Figure, x: str, y: str) -> None:
    """Labels of all panels' axes."""
    width, height = figure.get_size_inches()
    figure.supxlabel(x, fontsize=9, y=0.08 / height)
    figure.supylabel(y, fontsize=9, x=0.08 / width)


def _draw_sweeps(axes: Axes, sweeps: Sequence[Sweep], scale: float) -> None:
    """The first ones on top, which spikes of later ones would hide."""
    for order, (sweep, colour) in enumerate(zip(sweeps, colours(len(sweeps)))):
        time, drawn = thinned(sweep.response, sweep.time * scale, BINS)
        axes.plot(time, drawn, color=colour, linewidth=0.5, zorder=2 - order / len(sweeps))


def plot_sweeps(cells: Mapping[str, Sequence[Epoch]], channel: int = 0) -> Figure:
    """The sweeps of each cell over each other in a panel of their own, all at one scale."""
    epochs = [epoch for some in cells.values() for epoch in some]
    unit = common_unit([epoch.units.response[channel] for epoch in epochs], "responses")
    longest = max(epoch.duration for epoch in epochs)
    time_unit, scale = ("ms", 1e3) if longest <= LONGEST_IN_MILLISECONDS else ("s", 1.0)
    with matplotlib.rc_context(STYLE):
        figure, panels = _grid(len(cells))
        shown = []
        for axes, (cell, some) in zip(panels, cells.items()):
            sweeps = [read_sweep(epoch, channel, with_stimulus=False) for epoch in some]
            _draw_sweeps(axes, sweeps, scale)
            shown += [np.array([sweep.response.min(), sweep.response.max()]) for sweep in sweeps
                      if sweep.response.size]
            _name(axes, cell)
            scalebars.remove_axes(axes)
        margins(panels[0], shown)
        panels[0].set_xlim(0, longest * scale or 1)
        scalebars.draw_vertical(panels[-1], unit, 1.02)
        scalebars.draw_horizontal(panels[-1], time_unit, right=1.02)
        name = axis_name(RESPONSE, unit)
        figure.suptitle(f"{len(epochs)} sweeps of {len(cells)} cells: {name}, all at one scale",
                        fontsize=9, x=0.01, y=0.995, ha="left")
        return figure


def _measured(catalogue: Catalogue, rows: Any, channel: int) -> Iterable[tuple[float, float]]:
    for epoch in catalogue.open_epochs(rows):
        step = measure(epoch, channel)
        yield step.level, step.rate


def plot_query(catalogue: Catalogue, query: str, channel: int = 0, curves: bool = False) -> Figure:
    """Draw what a query gives.

    Args:
        catalogue: an open catalogue.
        query: whose rows have `file` and `epoch`, or `file`, `step_current_pA` and `rate_Hz` as a
            table of measurements has them; and `cell`, if files are not the cells.
        channel: sequence entry.
        curves: rates against currents instead of sweeps, of rows with `file` and `epoch`.

    Raises:
        ValueError: for rows without these columns, too many cells, or epochs without a step.
    """
    rows = catalogue.table(query)
    names = rows.column_names

    def column(name: str) -> list[Any]:
        values: list[Any] = rows[name].to_pylist()
        return values

    if "file" not in names or not ({"epoch"} <= set(names) or set(CURVE_COLUMNS) <= set(names)):
        raise ValueError(f"the query gives {', '.join(names)}: it must give file and epoch, or "
                         f"file, {' and '.join(CURVE_COLUMNS)}")
    cells = cells_of(column("file"), column("cell") if "cell" in names else None)
    if set(CURVE_COLUMNS) <= set(names):
        points: Iterable[Any] = zip(*map(column, CURVE_COLUMNS))
    elif curves:
        points = _measured(catalogue, rows, channel)
    else:
        return plot_sweeps(_grouped(cells, catalogue.open_epochs(rows)), channel)
    return plot_curves({cell: _curve(some) for cell, some in _grouped(cells, points).items()})
