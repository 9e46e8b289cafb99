"""Runs tutorials: their shell and Python blocks in order, in a clean virtual environment.

    run_tutorial.py TUTORIAL[,TUTORIAL...] WHEEL RECORDING IMAGES [update]

They run beside the wheel and the recording, `demo.dat`, and know what blocks before them defined; a
tutorial has what those before it made. Programs that the wheel lacks are looked for in the folder
TUTORIAL_PROGRAMS, if it is set. A `text` block must be what the one before it prints, and every
picture look like that in IMAGES, where `update` puts it instead.
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

import numpy as np
from PIL import Image

BLOCK = re.compile(r"^```(sh|python|text)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
PICTURE = re.compile(r"!\[[^]]*\]\(images/([^)]+)\)")
MOST_DIFFERENCE = 2.0   # mean over all dots [of 255]; fonts and lines vary between versions
QUIETLY = "import contextlib, io\nwith contextlib.redirect_stdout(io.StringIO()):\n    pass\n"


def with_packages(folder):
    """Lets programs and packages of another environment be found, as if they had been installed."""
    other = os.environ.get("TUTORIAL_ENVIRONMENT")
    if other is None:
        return {}
    packages = next(Path(other).glob("lib/python3*/site-packages"))
    return {"PATH": f"{folder}/corvantis-env/bin:{other}/bin:/usr/bin:/bin",
            "PYTHONPATH": str(packages), "DANDI_NO_ET": "1", "NO_ET": "1"}


def run_blocks(page, folder):
    environment = {"HOME": folder, "LANG": "C.UTF-8", "MPLBACKEND": "agg", "PIP_NO_INDEX": "1",
                   "PATH": f"{folder}/corvantis-env/bin:/usr/bin:/bin", **with_packages(folder)}
    environment["PATH"] += ":" + os.environ.get("TUTORIAL_PROGRAMS", "/bin")
    earlier, printed = "", ""
    for language, code in BLOCK.findall(page):
        if language == "text":
            shown = [line.rstrip() for line in printed.splitlines()]
            assert shown == code.splitlines(), f"the block before prints\n{printed}\nnot\n{code}"
            continue
        command = "bash", "-euo", "pipefail", "-c", code
        if language == "python":
            command = "python3", "-W", "error", "-c", QUIETLY + earlier + code
            earlier += re.sub("^", "    ", code, flags=re.MULTILINE) + "\n"
        printed = subprocess.run(command, cwd=folder, env=environment, stdout=subprocess.PIPE,
                                 text=True, check=True).stdout


def check_picture(made, kept, update):
    picture = Image.open(made).convert("RGB")
    if update:      # few colours are enough and make it small
        picture.quantize(64).save(kept, optimize=True)
    dots = [np.asarray(each, dtype=float) for each in (picture, Image.open(kept).convert("RGB"))]
    assert dots[0].shape == dots[1].shape and np.abs(dots[0] - dots[1]).mean() <= MOST_DIFFERENCE, \
        f"{kept} is not the picture that the page's blocks make"


tutorials = [Path(each).read_text() for each in sys.argv[1].split(",")]
wheel, recording, images, *update = map(Path, sys.argv[2:])
with tempfile.TemporaryDirectory() as folder:
    shutil.copy(wheel, folder)
    shutil.copy(recording, Path(folder, "demo.dat"))
    for tutorial in tutorials:
        run_blocks(tutorial, folder)
        for name in PICTURE.findall(tutorial):
            check_picture(Path(folder, name), images / name, update)
