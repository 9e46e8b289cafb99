"""Draws the figure that each protocol of this folder should give: draw.py RECORDINGS FIGURE

RECORDINGS is a folder with NAME.dat for each NAME.json:
    for each in *.json; do corvantis record $each -o RECORDINGS/${each%.json}.dat; done
"""
import sys
from pathlib import Path

import numpy as np
from matplotlib.figure import Figure

import corvantis
from corvantis.families import find_family

SHADES = "viridis"


def traces(axes, epochs, first=0.0, last=None):
    """Responses over each other, from the first epoch dark to the last one light."""
    from matplotlib import colormaps
    colours = colormaps[SHADES](np.linspace(0, 0.85, len(epochs)))
    for epoch, colour in zip(epochs, colours):
        time = 1000 * epoch.time
        shown = (time >= first) & (time <= (time[-1] if last is None else last))
        axes.plot(time[shown], epoch.response[shown, 0], color=colour, linewidth=0.7)
    axes.set(xlabel="Time (ms)", ylabel=epochs[0].units.response[0])


def curve(axes, levels, values, labels):
    axes.plot(levels, values, "o-", markersize=3, linewidth=0.8)
    axes.set(xlabel=labels[0], ylabel=labels[1])


def window(epoch, first, last):
    """The response between two times [ms]."""
    time = 1000 * epoch.time
    return epoch.response[(time >= first) & (time < last), 0]


def value(epoch):
    """The number that the epoch's comment ends with."""
    return float(epoch.comment.rsplit(maxsplit=2)[-2])


def over_each_other(recording, axes):
    traces(axes, recording.epochs)


def rates(recording, axes):
    family = find_family(recording.epochs)
    curve(axes, [step.level for step in family.steps], [step.rate for step in family.steps],
          ("Current (pA)", "Spikes (Hz)"))


def rheobase(recording, axes):
    traces(axes, sorted(recording.epochs, key=value))


def raster(recording, axes):
    for number, epoch in enumerate(recording.epochs):
        above = epoch.response[:, 0] > -20
        times = 1000 * epoch.time[1:][above[1:] & ~above[:-1]]
        axes.vlines(times, number + 0.6, number + 1.4, linewidth=0.8)
    axes.set(xlabel="Time (ms)", ylabel="Play", ylim=(0.4, len(recording.epochs) + 0.6))


def without_leak(plays):
    """The step behind its leak plays, which are turned round: their sum has no leak [nA]."""
    return sum(play.response[:, 0] - window(play, 0, 5).mean() for play in plays) / 1000


def currents(recording, axes):
    plays = 5
    for first in range(0, len(recording.epochs), plays):
        epochs = recording.epochs[first:first + plays]
        axes.plot(1000 * epochs[0].time, without_leak(epochs), linewidth=0.7)
    axes.set(xlabel="Time (ms)", ylabel="Current (nA)", xlim=(4, 16))


def inward(epoch, first, last):
    """The largest inward current between two times [pA], 0 where outward current outweighs it."""
    return max(0.0, -window(epoch, first, last).min())


def availability(recording, axes):
    """The potassium conductance at the end of a step, and the sodium current that is left behind a
    prepulse, each of its largest."""
    epochs = {kind: [epoch for epoch in recording.epochs if epoch.comment.startswith(kind)]
              for kind in ("activation", "inactivation")}
    potassium = [window(epoch, 18, 20).mean() / (value(epoch) + 77)
                 for epoch in epochs["activation"]]
    sodium = [inward(epoch, 55.2, 58) for epoch in epochs["inactivation"]]
    for (kind, chosen), answers in zip(epochs.items(), (potassium, sodium)):
        axes.plot([value(epoch) for epoch in chosen], np.array(answers) / max(answers), "o-",
                  markersize=3, linewidth=0.8, label=kind)
    axes.set(xlabel="Potential (mV)", ylabel="Of the largest")
    axes.legend(frameon=False, fontsize=6)


def recovery(recording, axes):
    gaps = [value(epoch) for epoch in recording.epochs]
    ratios = [inward(epoch, 15.2 + gap, 19 + gap) / inward(epoch, 5.2, 9)
              for epoch, gap in zip(recording.epochs, gaps)]
    curve(axes, gaps, ratios, ("Gap (ms)", "Second of first peak"))


def seal(recording, axes):
    traces(axes, recording.epochs[:1])


def impedance(recording, axes):
    """Of the second half of each sine, when the answer is steady."""
    periods = [value(epoch) * (1000 if epoch.comment.endswith(" s") else 1)
               for epoch in recording.epochs]
    answers = [np.ptp(window(epoch, 1000, 2000)) for epoch in recording.epochs]
    currents = [np.ptp(epoch.stimulus[:, 0]) for epoch in recording.epochs]
    curve(axes, [1000 / period for period in periods], 1000 * np.divide(answers, currents),
          ("Frequency (Hz)", "Impedance (MOhm)"))
    axes.set_xscale("log")


PANELS = {
    "f-i": rates, "rheobase": rheobase, "ramp": over_each_other, "frozen-noise": raster,
    "input-resistance": over_each_other, "i-v": currents, "activation": availability,
    "recovery": recovery, "seal-test": seal, "dynamic-clamp": over_each_other,
    "chirp": impedance, "paired-pulses": over_each_other,
}


def main(folder, output):
    figure = Figure(figsize=(10, 9), layout="constrained")
    for axes, (name, draw) in zip(figure.subplots(4, 3).flat, PANELS.items()):
        with corvantis.open(Path(folder) / f"{name}.dat") as recording:
            draw(recording, axes)
        axes.set_title(name, fontsize=9, loc="left")
        axes.spines[["top", "right"]].set_visible(False)
    figure.savefig(output, dpi=100)


if __name__ == "__main__":
    main(*sys.argv[1:])
