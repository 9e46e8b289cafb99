"""Measurements against published models, closed forms and IPFX; what cannot be measured; files."""
import contextlib
import io
import json
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

import efel
import numpy as np
import pyarrow.parquet as pq
import pytest
from PIL import Image

import corvantis
from corvantis import commands
from corvantis.measure import measure
from corvantis.measure.columns import COLUMNS, as_markdown
from corvantis.measure_command import measure as command

HERE = Path(__file__).parent
DOCUMENT = HERE.parents[2] / "docs/measurements.md"


def record(folder, what):
    subprocess.run([sys.executable, HERE / "record_cells.py", folder, what], check=True,
                   stdout=subprocess.DEVNULL)
    return folder


@pytest.fixture(scope="session")
def known(tmp_path_factory, build):
    folder = record(tmp_path_factory.mktemp("known"), "known")
    subprocess.run([build / "examples/record-demo", folder / "demo.dat"], check=True,
                   stdout=subprocess.DEVNULL)
    return folder


@pytest.fixture(scope="session")
def cells(tmp_path_factory):
    return record(tmp_path_factory.mktemp("cells"), "30")


@pytest.fixture(scope="session")
def few(cells, tmp_path_factory):
    """Ten of the cells."""
    folder = tmp_path_factory.mktemp("few")
    for path in sorted(cells.glob("*.dat"))[:10]:
        shutil.copy(path, folder)
    return folder


def measured(path, **options):
    with corvantis.open(path) as recording:
        return measure(recording, **options)


def column(rows, name):
    return [row[name] for row in rows]


def test_published_models(known):
    """Rest, resistance at rest, rheobase and counts as published; the demo's neuron fires once
    from 46 pA on, and once after a step of -100 pA."""
    for name, rest, resistance, rheobase, counts in (
            ("regular", -70.5712, 32.135, 560.42, [0, 0, 0, 0, 1, 5, 9, 29, 70]),
            ("fast", -70.0, 47.273, 384.18, [0, 0, 0, 0, 4, 49, 94, 128]),
            ("demo", -65.0, None, 46, [0, 0, 1, 1, 31, 35, 40, 44])):
        found = measured(known / f"{name}.dat")
        family = found.families[-1]
        steps = [row for row in found.epochs if row["duration_ms"] in (500, 1000)
                 and row["entry"] == 0 and "pulse" in row["stimulus"]][:len(counts)]
        assert column(steps, "spikes") == counts
        assert family["resting_potential_mV"] == pytest.approx(rest, abs=2e-3)
        assert family["silent_current_pA"] < rheobase <= family["rheobase_pA"]
        if resistance:
            assert steps[1]["input_resistance_MOhm"] == pytest.approx(resistance, rel=2e-3)
    assert column(steps, "spikes_after")[:2] == [1, 0]
    assert family["epochs"] == "2-9"
    shock, after = found.epochs[1], found.spikes[0]
    assert shock["rate_Hz"] is None and shock["spikes_after"] == 1 and after["phase"] == "after"


def test_closed_forms_of_the_passive_cell(known):
    """Charge through an access resistance; a membrane of 200 MOhm and 20 ms in noise."""
    found = measured(known / "passive.dat")
    for row, (access, membrane, capacitance) in zip(found.epochs, ((10, 200, 100), (20, 100, 30))):
        assert [row[f"{name}"] for name in ("access_resistance_MOhm", "membrane_resistance_MOhm",
                                            "membrane_capacitance_pF")] == \
            pytest.approx([access, membrane, capacitance], rel=6e-4)
        assert row["transient_residual_pA"] < 0.0625 / 2    # of the converter's step
    free, held, unnamed, clipped, flat = found.epochs[2:]
    for row in (free, held):
        assert row["input_resistance_MOhm"] == pytest.approx(200, rel=1e-3)
        assert row["time_constant_ms"] == pytest.approx(20, rel=5e-3)
        assert row["time_constant_residual_mV"] == pytest.approx(0.05, rel=0.05)
        assert row["sag_ratio"] == pytest.approx(0, abs=0.005)
    assert free["resting_potential_mV"] == pytest.approx(-70, abs=0.01)
    assert held["resting_potential_mV"] is None and "10 pA is applied" in held["reasons"]
    assert unnamed["clamp"] is None and "the unit has no name" in unnamed["reasons"]
    assert clipped["is_clipped"] and clipped["input_resistance_MOhm"] is None
    assert flat["step_current_pA"] == 0 and "the step has no height" in flat["reasons"]


# IPFX's own way: its result to ours, and what may be between them.
SAME = {"spikes": ("spikes", 0), "baseline": ("baseline_mV", 1e-3), "peak": ("peak_mV", 1e-3),
        "width": ("width_above_trough_ms", 0.1), "mean_interval": ("mean_interval_ms", 0.02),
        "adaptation": ("adaptation", 1e-3)}


def test_as_ipfx_measures(known):
    compared = 0
    for name, epochs in json.loads((HERE / "ipfx.json").read_text()).items():
        rows = {row["epoch"]: row for row in measured(known / name).epochs}
        for number, theirs in epochs.items():
            ours = rows[int(number)]
            for key, (heading, difference) in SAME.items():
                if key in theirs:
                    assert ours[heading] == pytest.approx(theirs[key], abs=difference), (name, key)
                    compared += 1
            if "time_constant" in theirs and ours["time_constant_ms"] is not None:
                assert ours["time_constant_ms"] == pytest.approx(theirs["time_constant"], rel=0.02)
                assert ours["sag_ratio"] == pytest.approx(theirs["sag_ratio"], abs=0.01)
    assert compared > 60


@pytest.mark.parametrize("recipe", ["types", "unstored", "odd", "steps"])
def test_whatever_is_empty_has_a_reason(recipe, recorded, tmp_path):
    cut = tmp_path / "cut.dat"
    whole = recorded(recipe).read_bytes()
    cut.write_bytes(whole[:len(whole) * 3 // 4])
    for path in (recorded(recipe), cut):
        for table, rows in measured(path).tables.items():
            for row in rows:
                reasons = row["reasons"]
                for each in COLUMNS[table]:
                    assert row[each.heading] is not None or each.name in reasons \
                        or each.group in reasons, (table, each.name, reasons)


def test_settings_of_efel_stay(known):
    efel.set_setting("Threshold", 11.0)
    measured(known / "demo.dat", epochs=[7])
    assert efel.get_settings().Threshold == 11.0
    efel.reset()


def test_files_a_folder_and_a_catalogue_give_the_same_tables(few, known, tmp_path, capsys):
    from corvantis.archive import index
    index(few, tmp_path / "catalogue", processes=1)
    for name, *source in (("folder", few, "--processes", 1), ("catalogue", tmp_path / "catalogue")):
        assert command([*map(str, source), "-o", str(tmp_path / name)]) == 0
    assert "140 epochs, 10 families" in capsys.readouterr().out
    folder, catalogue = tmp_path / "folder", tmp_path / "catalogue"
    for table in COLUMNS:
        made = [(tmp_path / name / f"{table}.csv").read_text() for name in ("folder", "catalogue")]
        assert made[0] == made[1]
        schema = pq.read_schema(folder / f"{table}.parquet")
        assert schema.names == made[0].splitlines()[0].split(",")
    field = pq.read_schema(folder / "families.parquet").field("input_resistance_MOhm")
    assert field.metadata[b"unit"] == b"MOhm" and b"slope" in field.metadata[b"definition"]
    assert (folder / "columns.csv").read_text().count("\n") == 1 + sum(map(len, COLUMNS.values()))
    one = tmp_path / "one"
    files = [str(few / "cell03.dat"), str(tmp_path / "none.dat")]
    assert command([*files, "-o", str(one)]) == 1
    rows = pq.read_table(one / "epochs.parquet").to_pylist()
    assert len(rows) == 15 and "none.dat: No such file" in rows[-1]["reasons"]
    capsys.readouterr()
    for arguments, said in (
            ([str(catalogue), "-o", str(one)], "--force"),
            ([str(catalogue), "-o", str(tmp_path / "x"), "--where", "nix"], "--where"),
            ([str(few), files[0], "-o", str(tmp_path / "x")], "name one folder"),
            ([files[0], "--where", "epoch > 1", "-o", str(tmp_path / "x")], "corvantis index")):
        assert command(arguments) == 2
        assert said in capsys.readouterr().err


def test_figures_of_many_cells(few, tmp_path, capsys):
    from corvantis.archive import index
    from corvantis.archive import open as open_catalogue
    from corvantis.cell_figures import plot_query
    index(few, tmp_path / "catalogue", processes=1)
    catalogue = open_catalogue(tmp_path / "catalogue")
    every = "SELECT file, epoch FROM epochs WHERE epoch > 0 ORDER BY ALL"
    curves = plot_query(catalogue, every, curves=True)
    panels = [axes for axes in curves.axes if axes.get_visible()]
    assert [axes.get_title(loc="left") for axes in panels] == [f"cell{k:02}" for k in range(10)]
    assert list(panels[0].lines[0].get_xdata()) == list(range(-100, 501, 50))
    fifty = "SELECT 'cell ' || epoch || file AS cell, file, epoch FROM epochs WHERE epoch > 8"
    assert plot_query(catalogue, fifty).texts[0].get_text().startswith("50 sweeps of 50 cells")
    figure = tmp_path / "figure.svg"
    told = ["--catalogue", str(tmp_path / "catalogue"), "-o", str(figure), "--query"]
    assert commands.plot([*told, every + " LIMIT 26"]) == 0 and figure.stat().st_size
    for query, said in (("SELECT file FROM epochs", "must give"), ("SELECT", "--query"),
                        ("SELECT file, epoch FROM epochs WHERE false", "no rows"),
                        ("SELECT file, epoch FROM epochs", "different units"),
                        ("SELECT file, epoch, file || epoch AS cell FROM epochs", "too many")):
        assert commands.plot([*told, query, "--force"]) == 2
        assert said in capsys.readouterr().err


@pytest.mark.parametrize("table", COLUMNS)
def test_documentation_has_the_columns(table):
    assert as_markdown(table) in DOCUMENT.read_text(), "python3 -m corvantis.measure.columns"


BLOCK = re.compile(r"^```(sh|python|text)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
MOST_DIFFERENCE = 4.0   # mean over all dots [of 255]; the page's pictures are smaller


def test_the_page_runs(cells, tmp_path, monkeypatch):
    shutil.copytree(cells, tmp_path / "cells", ignore=shutil.ignore_patterns("*.npz"))
    program = tmp_path / "corvantis"
    program.write_text(f'#!/bin/sh\nexec "{sys.executable}" -m corvantis "$@"\n')
    program.chmod(0o755)
    monkeypatch.chdir(tmp_path)
    monkeypatch.setenv("PATH", f"{tmp_path}:{os.environ['PATH']}")
    printed, names = "", {}
    for language, code in BLOCK.findall(DOCUMENT.read_text()):
        if language == "text":
            assert printed == code
        elif language == "python":
            with contextlib.redirect_stdout(io.StringIO()) as said:
                exec(code, names)
            printed = said.getvalue()
        else:
            printed = subprocess.run(["bash", "-euc", code], check=True, text=True,
                                     stdout=subprocess.PIPE).stdout
    for name in ("rates.png", "cells.png"):
        kept = Image.open(DOCUMENT.parent / "images" / name).convert("RGB")
        made = Image.open(name).convert("RGB").resize(kept.size, Image.Resampling.LANCZOS)
        difference = np.abs(np.asarray(made, float) - np.asarray(kept, float))
        assert difference.mean() <= MOST_DIFFERENCE
