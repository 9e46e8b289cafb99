"""The commands: draw epochs of a file, and the curves of a family of steps."""
from __future__ import annotations

import argparse
import os
import signal
import sys
import threading
import warnings
from collections.abc import Callable, Iterator, Sequence
from contextlib import contextmanager
from typing import TYPE_CHECKING, Any

from .epoch import Epoch
from .epochs import undamaged
from .errors import CorvantisError, CorvantisWarning
from .recording import Recording, open_recording
from .steps import SPIKE_THRESHOLD

if TYPE_CHECKING:
    from matplotlib.figure import Figure

ENDING = ("SIGINT", "SIGTERM", "SIGHUP")    # as far as the system has them
FIGURES = ("png", "svg", "pdf")
TABLE = "csv"
DAMAGED, UNUSABLE = 1, 2    # exit status: epochs were left out; nothing could be done


def chosen_epochs(text: str | None, count: int) -> list[int]:
    """Epoch numbers of a choice such as "0,3-7", in its order; all without one.

    Raises:
        ValueError: for anything else, and for epochs that the file has not.
    """
    if text is None:
        return list(range(count))
    numbers: list[int] = []
    for part in text.split(","):
        first, dash, last = part.strip().partition("-")
        if not first.isdecimal() or (dash and not last.isdecimal()):
            raise ValueError(f"{text!r} is no choice of epochs such as 0,3-7")
        numbers += range(int(first), int(last if dash else first) + 1)
    if beyond := [number for number in numbers if number >= count]:
        raise ValueError(f"no epoch {beyond[0]}: the file has {count}, numbered from 0")
    return numbers


def _arguments(name: str, purpose: str, endings: Sequence[str], output: str,
               **named: Any) -> argparse.ArgumentParser:
    """Arguments of both; `named` says how the data file is to be named."""
    parser = argparse.ArgumentParser(prog=f"corvantis {name}", description=purpose)
    parser.set_defaults(endings=endings)
    parser.add_argument("file", help="data file", **named)
    parser.add_argument("-e", "--epoch", metavar="0,3-7", help="epochs, counted from 0 (all)")
    parser.add_argument("-c", "--channel", type=int, default=0, metavar="ENTRY",
                        help="entry of the channel sequence, counted from 0 (0)")
    parser.add_argument("-o", "--output", metavar="NAME", help=output)
    parser.add_argument("--axes", action="store_true", help="axes instead of scale bars")
    parser.add_argument("--force", action="store_true", help="replace an existing file")
    return parser


def _ending(name: str) -> str:
    return name.rsplit(".", 1)[-1].lower()


def _check_output(options: argparse.Namespace) -> None:
    name: str | None = options.output
    if name is None:
        return
    if _ending(name) not in options.endings:
        *most, last = (f".{ending}" for ending in options.endings)
        raise ValueError(f"{name}: a name ends in {', '.join(most)} or {last}")
    if os.path.exists(name) and not options.force:
        raise ValueError(f"{name} exists; --force replaces it")
    if os.path.exists(name) and options.file and os.path.samefile(name, options.file):
        raise ValueError(f"{name} is the recording itself")


def _epochs(recording: Recording, options: argparse.Namespace) -> list[Epoch]:
    """The chosen epochs that are not damaged; without a choice, those that have the channel."""
    channel: int = options.channel
    if channel < 0:
        raise ValueError("channels count from 0")
    chosen = [recording.epochs[number]
              for number in chosen_epochs(options.epoch, len(recording.epochs))]
    epochs = undamaged(chosen)
    options.damaged = len(epochs) < len(chosen)
    having = [epoch for epoch in epochs if channel < epoch.entries]
    if options.epoch is not None and len(having) < len(epochs):
        missing = next(epoch for epoch in epochs if epoch not in having)
        raise ValueError(f"epoch {missing.number} has no channel {channel}")
    return having


def _show(figure: Figure) -> None:
    """A window with the figure; it ends with the window."""
    from matplotlib import pyplot
    if pyplot.get_backend().lower() == "agg":
        raise ValueError("there is no display: name a figure with -o")
    window = pyplot.figure(figsize=tuple(figure.get_size_inches())).canvas.manager
    figure.set_canvas(window.canvas)
    window.canvas.figure = figure
    pyplot.show()


def _deliver(figure: Figure, output: str | None) -> None:
    if output is None:
        _show(figure)
        return
    from .plotting import save
    save(figure, output)


def _plot_query(options: argparse.Namespace) -> None:
    """Cells of a catalogue."""
    try:
        import duckdb

        from .archive import open as open_catalogue
    except ImportError as error:
        raise ValueError(f"{error.name or error} is missing; pip install corvantis[archive,plot]") \
            from None
    from .cell_figures import plot_query
    try:
        figure = plot_query(open_catalogue(options.catalogue), options.query, options.channel,
                            options.curves)
    except duckdb.Error as error:
        raise ValueError(f"--query: {error}") from None
    _deliver(figure, options.output)


def _plot(options: argparse.Namespace) -> None:
    if (options.catalogue is None) != (options.query is None) or \
            (options.file is None) == (options.catalogue is None):
        raise ValueError("name a data file, or --catalogue with a --query")
    if options.catalogue is not None:
        _plot_query(options)
        return
    from .plotting import CLEAR_OVER_EACH_OTHER, plot_epochs
    _check_output(options)
    with open_recording(options.file) as recording:
        epochs = _epochs(recording, options)
        if len(epochs) > CLEAR_OVER_EACH_OTHER and not options.stack:
            print(f"corvantis plot: {len(epochs)} epochs over each other; --stack draws them one "
                  "below the other, -e 0,3-7 chooses some", file=sys.stderr)
        figure = plot_epochs(epochs, options.channel, options.axes, stack=options.stack)
        _deliver(figure, options.output)


def _families(options: argparse.Namespace) -> None:
    from .families import as_text, find_family, plot_family
    from .writing import write_whole
    _check_output(options)
    with open_recording(options.file) as recording:
        family = find_family(_epochs(recording, options), options.channel, options.threshold)
        print("\n".join(as_text(family)))
        if options.output is None:
            return
        if _ending(options.output) == TABLE:
            write_whole(options.output, "\n".join([*as_text(family, ","), ""]).encode())
        else:
            _deliver(plot_family(family, options.axes), options.output)


def _end(number: int, _: object) -> None:
    """End as a signal wants it, but tidily."""
    sys.exit(128 + number)


@contextmanager
def _ended_by_signals() -> Iterator[None]:
    before = {}
    if threading.current_thread() is threading.main_thread():
        before = {number: signal.signal(number, _end)
                  for number in (getattr(signal, name, None) for name in ENDING)
                  if number and signal.getsignal(number) not in (signal.SIG_IGN, None)}
    try:
        yield
    finally:
        for number, handler in before.items():
            signal.signal(number, handler)


def _run(work: Callable[[argparse.Namespace], None], options: argparse.Namespace,
         name: str) -> int:
    def say(message: Warning | str, *_: object, **__: object) -> None:
        print(f"corvantis {name}: {message}", file=sys.stderr)

    options.damaged = options.failed = False
    try:
        with _ended_by_signals(), warnings.catch_warnings():
            warnings.simplefilter("always", CorvantisWarning)
            warnings.showwarning = say
            work(options)
    except ModuleNotFoundError as error:
        print(f"corvantis {name}: {error.name} is not installed; it comes with corvantis[plot]",
              file=sys.stderr)
        return UNUSABLE
    except (CorvantisError, OSError, ValueError) as error:
        print(f"corvantis {name}: {error}", file=sys.stderr)
        return UNUSABLE
    if options.failed:
        return UNUSABLE
    return DAMAGED if options.damaged else 0


def plot(arguments: Sequence[str] | None = None) -> int:
    """`corvantis plot`: draw epochs, response above stimulus."""
    parser = _arguments("plot", "Draw epochs: the response above, its stimulus below.", FIGURES,
                        "figure to write, by its ending as png, svg or pdf (a window)", nargs="?")
    parser.add_argument("--stack", action="store_true", help="responses one below the other")
    parser.add_argument("--catalogue", metavar="CATALOGUE",
                        help="draw cells of this catalogue instead of one file's epochs")
    parser.add_argument("--query", metavar="SQL",
                        help="which: gives file and epoch, or file, step_current_pA and rate_Hz "
                        "of a table of measurements; and cell, if files are not the cells")
    parser.add_argument("--curves", action="store_true",
                        help="of the query's epochs the spike rate against the step's current")
    return _run(_plot, parser.parse_args(arguments), "plot")


def nwb(arguments: Sequence[str] | None = None) -> int:
    """`corvantis nwb`: write recordings as NWB files for archives."""
    try:
        from .nwb.command import describe, work
    except ModuleNotFoundError as error:
        if (error.name or "").startswith("corvantis"):
            raise
        print(f"corvantis nwb: {error.name} is not installed; it comes with corvantis[nwb]",
              file=sys.stderr)
        return UNUSABLE
    given = sys.argv[1:] if arguments is None else arguments
    return _run(work, describe(given), "nwb")


def families(arguments: Sequence[str] | None = None) -> int:
    """`corvantis families`: measure a family of steps; print and draw its curves."""
    parser = _arguments("families", "Measure the largest family of steps of the same timing: print "
                        "current-voltage and spike-rate curves, and write them with -o.",
                        [*FIGURES, TABLE], "figure (png, svg, pdf) or table for a spreadsheet "
                        "(csv) to write, by its ending")
    parser.epilog = ("steady: mean of the step's last fifth. rate: spikes by the step's length. "
                     "Input resistance: slope of the line through rest that fits the steady states "
                     "best, of steps that end without spikes.")
    parser.add_argument("--threshold", type=float, default=SPIKE_THRESHOLD, metavar="MV",
                        help=f"a spike crosses it upwards ({SPIKE_THRESHOLD:g})")
    return _run(_families, parser.parse_args(arguments), "families")
