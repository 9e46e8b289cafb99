"""The page on archives: its blocks run in order and print what it says."""
import contextlib
import io
import os
import re
import subprocess
import sys
from pathlib import Path

import pytest

from corvantis.archive import columns

sys.path.insert(0, str(Path(__file__).parents[1]))
PAGE = Path(__file__).parents[3] / "docs/archives.md"
BLOCK = re.compile(r"^```(sh|python|text)\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def record(folder):
    """30 cells, that is 30 times the model neuron, each with six steps, in three days."""
    from rig import CLAMP, Rig, pulse
    for cell in range(30):
        path = Path(folder, f"day{cell // 10 + 1}", f"cell{cell:02}.dat")
        path.parent.mkdir(parents=True, exist_ok=True)
        rig = Rig(str(path))
        for level in range(-100, 500, 100):
            rig.epoch([pulse(8 * level, 4000)], interval=50, points=4000,
                      temperature=30 + cell % 5, **CLAMP)
        rig.do("ITCCloseFile")


def as_rows(schema):
    return "".join(f"| `{each.name}` | {each.type} | {each.metadata[columns.MEANING].decode()} |\n"
                   for each in schema)


def test_the_page_runs(tmp_path, build, monkeypatch):
    subprocess.run([sys.executable, __file__, tmp_path / "cells"], check=True,
                   stdout=subprocess.DEVNULL)
    programs = tmp_path / "bin"
    programs.mkdir()
    for name in ("index",):
        program = programs / f"corvantis-{name}"
        program.write_text(f'#!/bin/sh\nexec "{sys.executable}" -m corvantis {name} "$@"\n')
        program.chmod(0o755)
    paths = f"{build / 'tools'}:{programs}:{Path(sys.executable).parent}:/usr/bin:/bin"
    environment = {**os.environ, "PATH": paths, "LANG": "C.UTF-8", "MPLBACKEND": "agg"}
    monkeypatch.chdir(tmp_path)
    printed, names = "", {"__name__": "__main__"}
    for language, code in BLOCK.findall(PAGE.read_text()):
        if language == "text":
            assert printed == code
            continue
        if language == "python":
            with contextlib.redirect_stdout(io.StringIO()) as said:
                exec(code, names)
            printed = said.getvalue()
            continue
        printed = subprocess.run(["bash", "-euo", "pipefail", "-c", code], env=environment,
                                 check=True, text=True, stdout=subprocess.PIPE).stdout


@pytest.mark.parametrize("schema", [columns.files_schema, columns.epochs_schema])
def test_the_page_has_all_columns(schema):
    assert as_rows(schema()) in PAGE.read_text()


if __name__ == "__main__":
    record(sys.argv[1])
