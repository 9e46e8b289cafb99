"""Draws every cell's response to two steps, of `cell-sheet responses`: draw.py PROGRAM PICTURE."""
import subprocess
import sys

import matplotlib

matplotlib.use("svg" if sys.argv[2].endswith(".svg") else "agg")
from matplotlib import pyplot  # noqa: E402


def responses(program):
    """Times [ms] and potentials [mV] by model and command [pA]."""
    text = subprocess.run([program, "responses"], check=True, capture_output=True, text=True).stdout
    found = {}
    for line in text.splitlines():
        model, command, time, potential = line.split()
        times, potentials = found.setdefault(model, {}).setdefault(float(command), ([], []))
        times.append(float(time))
        potentials.append(float(potential))
    return found


def main(program, picture):
    found = responses(program)
    figure, places = pyplot.subplots(7, 2, figsize=(10, 14), sharex=True, layout="constrained")
    for place, (model, commands) in zip(places.flat, found.items()):
        for colour, (command, trace) in zip(("#7a8aa0", "#b5402a"), commands.items()):
            place.plot(*trace, color=colour, linewidth=0.7)
        place.axvspan(0, 400, color="#f2f0ea", zorder=-1)
        lower, upper = commands
        place.set_title(f"{model}, {lower:g} and {upper:g} pA", loc="left", fontsize=10)
        place.set_xlim(-50, 450)
    figure.supxlabel("time from the step [ms]")
    figure.supylabel("membrane potential [mV]")
    figure.savefig(picture, dpi=90)


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
