"""How recordings and epochs show themselves in a notebook: a table, of an epoch with a figure; or
the page, if asked for."""
from __future__ import annotations

import base64
import io
from collections.abc import Iterable
from html import escape
from pathlib import Path
from typing import TYPE_CHECKING

from .errors import CorvantisError
from .page import page_containing

if TYPE_CHECKING:
    from .epoch import Epoch
    from .recording import Recording

MOST_ROWS = 20
MOST_WITHIN = 32 << 20  # of a recording that a notebook keeps in its output [bytes]


def _table(heads: Iterable[str], rows: Iterable[Iterable[object]]) -> str:
    head = "".join(f"<th>{escape(each)}</th>" for each in heads)
    body = "".join("<tr>" + "".join(f"<td>{escape(str(each))}</td>" for each in row) + "</tr>"
                   for row in rows)
    return f"<table><thead><tr>{head}</tr></thead><tbody>{body}</tbody></table>"


def _row(epoch: Epoch) -> list[object]:
    if epoch.problem is not None:
        return [epoch.number, "", "", "", epoch.problem, ""]
    return [epoch.number, epoch.header.epochTime, epoch.points, f"{epoch.sampling_rate:g} Hz",
            " | ".join(epoch.stimulus_words), epoch.comment]


def recording_html(recording: Recording) -> str:
    """The first epochs as a table, and how many there are."""
    count = len(recording.epochs)
    shown = [recording.epochs[number] for number in range(min(count, MOST_ROWS))]
    more = f"<p>and {count - MOST_ROWS} more</p>" if count > MOST_ROWS else ""
    heads = "epoch", "time", "points", "rate", "stimulus", "comment"
    return f"<p>{escape(repr(recording))}</p>{_table(heads, map(_row, shown))}{more}"


def _figure(epoch: Epoch) -> str:
    """The epoch as a picture; nothing without matplotlib, or where it has nothing to draw."""
    try:
        from .plotting import plot_epochs
        drawn = io.BytesIO()
        plot_epochs([epoch]).savefig(drawn, format="png", dpi=80)
    except (ImportError, CorvantisError, ValueError, IndexError):
        return ""
    picture = base64.b64encode(drawn.getvalue()).decode()
    name = escape(f"epoch {epoch.number}: response above its stimulus", quote=True)
    return f'<img alt="{name}" src="data:image/png;base64,{picture}">'


def epoch_html(epoch: Epoch) -> str:
    """What an epoch is, and its figure."""
    if epoch.problem is not None:
        return f"<p>epoch {epoch.number}: {escape(epoch.problem)}</p>"
    rows = [[epoch.inputs[entry], epoch.units.response[entry], epoch.outputs[entry],
             epoch.units.stimulus[entry], words]
            for entry, words in enumerate(epoch.stimulus_words)]
    heads = "input", "unit", "output", "unit", "stimulus"
    text = f"epoch {epoch.number}: {epoch.points} points at {epoch.sampling_rate:g} Hz"
    return f"<p>{escape(text)}. {escape(epoch.comment)}</p>{_table(heads, rows)}{_figure(epoch)}"


class View:
    """The page that shows a recording, as the output of a notebook's cell.

    The recording lies within it, so that the notebook shows it wherever it is opened; the page may
    read nothing else, not even the notebook around it.
    """

    def __init__(self, path: str, shown: str, height: int) -> None:
        self._page = page_containing([Path(path)], MOST_WITHIN, shown)
        self._height = height
        self._name = Path(path).name

    def _repr_html_(self) -> str:
        page, name = escape(self._page, quote=True), escape(self._name, quote=True)
        return (f'<iframe title="{name}" width="100%" height="{self._height}" frameborder="0" '
                f'sandbox="allow-scripts allow-downloads" srcdoc="{page}"></iframe>')
