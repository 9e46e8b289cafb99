"""Scale bars: an L at the lower right whose arms have round lengths, instead of axes."""
from __future__ import annotations

import math

from matplotlib.axes import Axes

GAP = 0.02          # between a bar and its label [of the axes]
LINE_WIDTH = 1.2    # [pt]
LABEL_SIZE = 8      # [pt]


def round_length(span: float) -> float:
    """The length of 1, 2 or 5 times a power of ten that comes nearest to a fifth of a span."""
    if not (span > 0 and math.isfinite(span)):
        return 1.0
    wanted = span / 5
    power = 10.0 ** math.floor(math.log10(wanted))
    return min((factor * power for factor in (1, 2, 5, 10)),
               key=lambda length: abs(math.log(length / wanted)))


def _label(length: float, unit: str) -> str:
    return f"{length:g} {unit}".rstrip().replace("-", "\N{MINUS SIGN}")


def draw_vertical(axes: Axes, unit: str, right: float, rows: int = 1) -> float:
    """The vertical arm, at a fraction of the axes' width and fit for one of their rows; returns
    its length [unit]."""
    low, high = axes.get_ylim()
    length = round_length((high - low) / rows * min(rows, 3))
    top = length / (high - low)
    axes.plot([right, right], [0, top], transform=axes.transAxes, color="black",
              linewidth=LINE_WIDTH, clip_on=False, solid_capstyle="butt")
    axes.text(right + GAP / 2, top / 2, _label(length, unit), transform=axes.transAxes,
              fontsize=LABEL_SIZE, va="center", ha="left")
    return length


def draw_horizontal(axes: Axes, unit: str, right: float) -> float:
    """The horizontal arm, ending where the vertical one stands; returns its length [unit]."""
    left, end = axes.get_xlim()
    length = round_length(end - left)
    start = right - length / (end - left)
    axes.plot([start, right], [0, 0], transform=axes.transAxes, color="black",
              linewidth=LINE_WIDTH, clip_on=False, solid_capstyle="butt")
    axes.text((start + right) / 2, -GAP, _label(length, unit), transform=axes.transAxes,
              fontsize=LABEL_SIZE, va="top", ha="center")
    return length


def mark_level(axes: Axes, level: float, unit: str) -> None:
    """A dashed line at the level that the traces start from, with its value."""
    axes.axhline(level, color="0.6", linewidth=0.6, dashes=(5, 4), zorder=0)
    axes.text(-0.01, level, _label(float(f"{level:.3g}") + 0.0, unit), fontsize=LABEL_SIZE,
              transform=axes.get_yaxis_transform(), va="center", ha="right", color="0.3")


def remove_axes(axes: Axes) -> None:
    """No frame, no ticks."""
    for spine in axes.spines.values():
        spine.set_visible(False)
    axes.set(xticks=[], yticks=[])
    axes.tick_params(which="both", bottom=False, left=False)
