"""Figures and commands: what is drawn, where it goes, and what the exit status says."""
import re
import subprocess
import sys

import matplotlib
import numpy as np
import pytest

import corvantis
from corvantis import commands
from corvantis.families import count_spikes, find_family
from corvantis.plotting import _thinned, plot_epochs
from corvantis.scalebars import round_length


def test_choice_of_epochs():
    for text, numbers in ((None, [0, 1, 2, 3]), ("0,2-3", [0, 2, 3]), ("2-2, 0", [2, 0]),
                          ("2-1", [])):
        assert commands.chosen_epochs(text, 4) == numbers
    for text in ("", "a", "1-", "-1", "0,,1", "4", "2-9", "1.0"):
        with pytest.raises(ValueError):
            commands.chosen_epochs(text, 4)


def test_panels_and_scale_bars(recorded):
    with corvantis.open(recorded("steps")) as recording:
        figure = plot_epochs(recording.epochs)
    upper, lower = figure.axes
    heights = [axes.get_position().height for axes in (upper, lower)]
    assert heights[0] / heights[1] == pytest.approx(3)
    assert upper.get_shared_x_axes().joined(upper, lower)
    sweeps = [[line for line in axes.lines if len(line.get_xdata()) > 2] for axes in figure.axes]
    assert len(sweeps[0]) == len(sweeps[1]) == 3
    for above, below in zip(*sweeps):
        assert above.get_color() == below.get_color()
    assert set(sweeps[1][2].get_ydata()) == {0.0, 200.0}
    assert {text.get_text() for axes in figure.axes for text in axes.texts} - {""} \
        == {"−65 mV", "0 pA", "20 mV", "50 pA", "50 ms"}
    assert not upper.get_xticks().size
    assert [round_length(span) for span in (600, 0.9, 5, 0)] == pytest.approx([100, 0.2, 1, 1])


def test_axes_conductances_and_missing_stimuli(recorded):
    with corvantis.open(recorded("steps")) as recording:
        upper, lower = plot_epochs(recording.epochs[1:2], axes=True).axes
    assert upper.get_ylabel() == "Membrane Potential (mV)"
    assert lower.get_ylabel() == "Applied Current\n(pA)" and lower.get_xlabel() == "Time (ms)"
    assert upper.lines[0].get_color() == "black"
    assert upper.figure._suptitle.get_text() == "Epoch 1: step 1"
    with corvantis.open(recorded("types")) as recording:
        figure = plot_epochs([recording.epochs[8]], axes=True)
        assert figure.axes[1].get_ylabel() == "Conductance\n(nS)" and len(figure.axes[1].lines) == 2
    with corvantis.open(recorded("unstored")) as recording:
        assert len(plot_epochs([recording.epochs[4]]).axes) == 1
    with corvantis.open(recorded("odd")) as recording:
        assert len(plot_epochs([recording.epochs[0]]).axes) == 2
        with pytest.raises(ValueError, match="different units"):
            plot_epochs(recording.epochs[1:])


def test_long_sweeps_keep_every_spike():
    curve = np.zeros(1_000_003)
    curve[[5, 123_456, 1_000_001]] = 100, -50, 70
    time, drawn = _thinned(curve, np.arange(curve.size, dtype=float))
    assert len(drawn) < 10_000 and np.all(np.diff(time) >= 0)
    np.testing.assert_array_equal(curve[time.astype(int)], drawn)
    assert {100, -50, 70} <= set(drawn)


# Text stays text.
@pytest.mark.parametrize("ending, content", [("png", b"^\x89PNG"), ("pdf", b"^%PDF"),
                                             ("svg", rb"<text[^>]*>20 mV</text>")])
def test_plot_command_writes_figures(ending, content, recorded, tmp_path):
    name = tmp_path / f"figure.{ending}"
    assert commands.plot([str(recorded("steps")), "-e", "0-2", "-o", str(name)]) == 0
    written = name.read_bytes()
    assert re.search(content, written)
    assert commands.plot([str(recorded("steps")), "-o", str(name)]) == 2
    assert name.read_bytes() == written
    assert commands.plot([str(recorded("steps")), "-e", "1", "-o", str(name), "--force"]) == 0
    assert name.read_bytes() != written


@pytest.mark.parametrize("arguments", ["-o a.jpg", "-e 9 -o a.png", "", "-c 4 -o a.png",
                                       "-c -1 -o a.png"])
def test_bad_arguments_have_status_two(arguments, recorded, capsys, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    matplotlib.use("agg")       # without a display
    assert commands.plot([str(recorded("steps")), *arguments.split()]) == 2
    captured = capsys.readouterr()
    assert captured.err.startswith("corvantis plot: ") and captured.out == ""
    assert list(tmp_path.iterdir()) == []


def test_module_as_a_command(recorded, tmp_path):
    def run(*arguments):
        return subprocess.run([sys.executable, "-m", "corvantis", *arguments],
                              capture_output=True, text=True)
    assert run().returncode == run("dance").returncode == 2 and run("--help").returncode == 0
    missing = run("plot", str(tmp_path / "missing.dat"), "-o", "x.png")
    assert missing.returncode == 2 and "missing.dat" in missing.stderr
    done = run("families", str(recorded("steps")), "-o", str(tmp_path / "family.png"))
    assert done.returncode == 0 and done.stderr == "" and (tmp_path / "family.png").exists()
    assert done.stdout.splitlines()[0].startswith("epoch\tlevel_pA\tbaseline_mV")
    assert len(done.stdout.splitlines()) == 4


def test_family_of_steps(recorded):
    with corvantis.open(recorded("steps")) as recording:
        family = find_family(recording.epochs)
        response = recording.epochs[0].response[:, 0]
    assert [(step.level, step.holding) for step in family.steps] == [(-100, 0), (50, 0), (200, 0)]
    assert [step.baseline for step in family.steps] == pytest.approx([-65] * 3, abs=0.05)
    # A step of 50 pA fires the model once, 200 pA at 68 Hz; hyperpolarisation not at all.
    assert [step.spikes for step in family.steps[:2]] == [0, 1]
    assert family.steps[2].rate == pytest.approx(68, abs=10)
    assert family.steps[0].steady == pytest.approx(response[2800:3000].mean(), abs=0.05)
    # About 43 MOhm at rest, and more below it.
    assert 43 < family.input_resistance < 80
    with corvantis.open(recorded("types")) as recording:
        with pytest.raises(ValueError, match="no family"):
            find_family(recording.epochs)
    trace = np.array([-65, 30, -65, -20, -19, -21, 10, 10, -65], dtype=float)
    assert count_spikes(trace, -20.0) == 3
