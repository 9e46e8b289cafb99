"""Figures and commands: what is drawn, where it goes, and what the exit status says."""
import os
import re
import subprocess

import matplotlib
import numpy as np
import pytest

import corvantis
from corvantis import commands
from corvantis.families import find_family
from corvantis.plotting import thinned, plot_epochs, write_whole


def test_panels_scale_bars_and_keys(recorded):
    with corvantis.open(recorded("steps")) as recording:
        figure, stacked = plot_epochs(recording), plot_epochs(recording.epochs, stack=True)
        upper, lower = plot_epochs(recording.epochs[1:2], axes=True).axes
    assert upper.get_ylabel() == "Membrane Potential (mV)" and lower.get_xlabel() == "Time (ms)"
    key = figure.legends[0]
    assert [text.get_text() for text in key.get_texts()] == ["0", "1", "2"]
    below = [line for line in figure.axes[1].lines if len(line.get_xdata()) > 2]
    assert [line.get_color() for line in below] == [line.get_color() for line in key.get_lines()]
    assert set(below[2].get_ydata()) == {0.0, 200.0}
    for drawn, names in ((figure, {"−65 mV", "20 mV"}),
                         (stacked, {"0: −65 mV", "1: −65 mV", "2: −65 mV", "100 mV"})):
        assert {text.get_text() for axes in drawn.axes for text in axes.texts} - {""} \
            == names | {"0 pA", "50 pA", "50 ms"}


def test_conductances_missing_stimuli_and_what_makes_no_figure(recorded):
    with corvantis.open(recorded("types")) as recording:
        lower = plot_epochs([recording.epochs[6]], axes=True).axes[1]
        assert lower.get_ylabel() == "Conductance\n(nS)" and len(lower.lines) == 2
        with pytest.raises(ValueError, match="no family"):
            find_family(recording.epochs[:4])
    with corvantis.open(recorded("unstored")) as recording:
        assert len(plot_epochs([recording.epochs[4]]).axes) == 1
    with corvantis.open(recorded("odd")) as recording:
        assert len(plot_epochs([recording.epochs[0]]).axes) == 2
        with pytest.raises(ValueError, match="different units"):
            plot_epochs(recording.epochs[1:3])


def test_long_sweeps_keep_every_spike():
    curve = np.zeros(1_000_003)
    curve[[5, 123_456, 1_000_001]] = 100, -50, 70
    time, drawn = thinned(curve, np.arange(curve.size, dtype=float))
    assert len(drawn) < 10_000 and np.all(np.diff(time) >= 0) and {100, -50, 70} <= set(drawn)
    np.testing.assert_array_equal(curve[time.astype(int)], drawn)


# Text stays text, and a unit is no formula.
@pytest.mark.parametrize("ending, content", [("png", b"^\x89PNG"), ("pdf", b"^%PDF"),
                                             ("svg", rb"<text[^>]*>[^<]*\$\\frac\{\$</text>")])
def test_plot_command_writes_whole_figures(ending, content, recorded, tmp_path):
    name = tmp_path / f"figure.{ending}"
    odd = [str(recorded("odd")), "-e", "2", "-o", str(name)]
    assert commands.plot(odd) == 0 and commands.plot(odd) == 2
    assert re.search(content, name.read_bytes())
    assert commands.plot([*odd, "--axes", "--force"]) == 0
    with pytest.raises(TypeError):
        write_whole(str(name), "no bytes")
    assert os.listdir(tmp_path) == [name.name] and name.stat().st_size


def test_bad_arguments_have_status_two(recorded, capsys, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    matplotlib.use("agg")       # without a display
    for line in ("-o a.jpg", "-o a.csv", "-e 9 -o a.png", "", "-c 4 -o a.png", "-c -1 -o a.png",
                 "--axes --stack -o a.png", "-e a -o a.png", "-e 1- -o a.png", "-e 0,,1 -o a.png"):
        assert commands.plot([str(recorded("steps")), *line.split()]) == 2
        assert capsys.readouterr().err.startswith("corvantis plot: ")
    assert list(tmp_path.iterdir()) == []


def test_commands_of_an_installation(recorded, build, tmp_path):
    """Of what the library says, nothing reaches standard output."""
    def run(*arguments):
        return subprocess.run(arguments, capture_output=True, text=True, cwd=tmp_path,
                              env={"PATH": "/usr/bin:/bin"})
    run("cmake", "--install", build, "--prefix", tmp_path / "prefix")
    program = tmp_path / "prefix/bin/corvantis"
    missing = run(program, "plot", "missing.dat", "-o", "x.png")
    assert missing.returncode == 2 and "missing.dat" in missing.stderr
    for command, name in (([f"{program}-families"], "a.png"), ([program, "families"], "a.csv")):
        done = run(*command, recorded("steps"), "-e", "0,1-2", "-o", name)
        assert done.returncode == 0 and done.stderr == "" and (tmp_path / name).exists()
    assert [line.split("\t")[0] for line in done.stdout.splitlines()] == ["epoch", "0", "1", "2"]
    assert (tmp_path / "a.csv").read_text() == done.stdout.replace("\t", ",")


def test_family_of_steps(recorded):
    with corvantis.open(recorded("steps")) as recording:
        family = find_family(recording)
        response = recording.epochs[1].response[:, 0]
    assert [(step.level, step.holding) for step in family.steps] == [(-100, 0), (50, 0), (200, 0)]
    # A step of 50 pA fires the model once, 200 pA at 68 Hz; hyperpolarisation not at all.
    assert [step.rate for step in family.steps] == pytest.approx([0, 10, 70])
    assert family.steps[1].steady == pytest.approx(response[2800:3000].mean(), abs=0.05)
    # About 43 MOhm at rest, and more below it.
    assert 43 < family.input_resistance < 80


def test_notebooks_show_a_table_and_a_figure_of_hostile_texts(recorded, tmp_path):
    content = bytearray(recorded("steps").read_bytes())
    place = content.index(b"step 1")
    content[place:place + 6] = b"<b>&x\0"
    path = tmp_path / "<i>.dat"
    path.write_bytes(content)
    with corvantis.open(path) as recording:
        shown, epoch = recording._repr_html_(), recording.epochs[1]._repr_html_()
    assert shown.count("<tr>") == 4 and "&lt;b&gt;&amp;x" in shown and "<i>" not in shown
    assert "&lt;b&gt;&amp;x" in epoch and "pulse 50 pA on 0 pA, 100 ms after 50 ms" in epoch
    assert epoch.count("<img ") == 1
