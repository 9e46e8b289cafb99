"""What all commands that work over an archive are told alike."""
from __future__ import annotations

import argparse


def add_options(parser: argparse.ArgumentParser) -> None:
    """Add `--scheduler` and `--processes`, whose values `index` and `map` take by these names."""
    parser.add_argument("--scheduler", metavar="ADDRESS",
                        help="work on the workers of this Dask scheduler")
    parser.add_argument("--processes", type=int, metavar="N",
                        help="on this machine (as many as processors)")
