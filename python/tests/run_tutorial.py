"""Runs a tutorial: its shell and Python blocks in order, in a clean virtual environment.

    run_tutorial.py TUTORIAL --wheel WHEEL --recording FILE --images FOLDER [--update]

Blocks run in a folder that holds the wheel and the recording, as `demo.dat`. A `text` block must be
what the block before it prints. A Python block knows what the ones before it have defined. Every
picture that the page shows must come from the run and look like the one in FOLDER; `--update` puts
it there instead.
"""
import argparse
import contextlib
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

BLOCK = re.compile(r"^```(sh|python|text)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
PICTURE = re.compile(r"!\[[^]]*\]\(images/([^)]+)\)")
MOST_DIFFERENCE = 2.0   # mean over all dots [of 255]; fonts and lines vary between versions


def run_block(language, code, earlier, folder, environment):
    """What a block prints."""
    if language == "python":
        code = "\n".join(["import contextlib, io",
                          "with contextlib.redirect_stdout(io.StringIO()):", "    pass",
                          *("    " + line for line in "\n".join(earlier).splitlines()), code])
        command = ["python3", "-W", "error", "-c", code]
    else:
        command = ["bash", "-euo", "pipefail", "-c", code]
    done = subprocess.run(command, cwd=folder, env=environment, capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"this block failed:\n{code}\n{done.stdout}{done.stderr}")
    return done.stdout


def lines(text):
    return [line.rstrip() for line in text.strip().splitlines()]


def run_blocks(page, folder, environment):
    earlier, printed = [], ""
    for language, code in BLOCK.findall(page):
        if language == "text":
            if lines(printed) != lines(code):
                sys.exit(f"the page shows\n{code}\nbut the block before it prints\n{printed}")
            continue
        printed = run_block(language, code, earlier, folder, environment)
        if language == "python":
            earlier.append(code)


def difference(one, other):
    """Mean difference of two pictures; any size must agree."""
    import numpy as np
    from PIL import Image
    pictures = [np.asarray(Image.open(path).convert("RGB"), dtype=float) for path in (one, other)]
    if pictures[0].shape != pictures[1].shape:
        return float("inf")
    return float(np.abs(pictures[0] - pictures[1]).mean())


def keep(source, target):
    """A picture for the page: few colours are enough and make it small."""
    from PIL import Image
    target.parent.mkdir(exist_ok=True)
    Image.open(source).convert("RGB").quantize(64).save(target, optimize=True)


def check_pictures(page, folder, images, update):
    for name in PICTURE.findall(page):
        made, kept = folder / name, images / name
        if not made.exists():
            sys.exit(f"no block makes {name}")
        if update:
            keep(made, kept)
        elif not kept.exists() or difference(made, kept) > MOST_DIFFERENCE:
            sys.exit(f"{kept} is not the picture that the page's blocks make")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("tutorial", type=Path)
    parser.add_argument("--wheel", type=Path, required=True)
    parser.add_argument("--recording", type=Path, required=True)
    parser.add_argument("--images", type=Path, required=True)
    parser.add_argument("--update", action="store_true")
    options = parser.parse_args()
    page = options.tutorial.read_text()
    with contextlib.ExitStack() as stack:
        folder = Path(stack.enter_context(tempfile.TemporaryDirectory()))
        shutil.copy(options.wheel, folder)
        shutil.copy(options.recording, folder / "demo.dat")
        environment = {
            "HOME": str(folder), "LANG": "C.UTF-8", "MPLBACKEND": "agg",
            "PATH": os.pathsep.join([str(folder / "corvantis-env/bin"), "/usr/bin", "/bin"]),
            "PIP_NO_INDEX": "1", "PIP_DISABLE_PIP_VERSION_CHECK": "1",
        }
        run_blocks(page, folder, environment)
        check_pictures(page, folder, options.images, options.update)
    print(f"{options.tutorial.name}: {len(BLOCK.findall(page))} blocks, "
          f"{len(PICTURE.findall(page))} pictures")


if __name__ == "__main__":
    main()
