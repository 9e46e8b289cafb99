"""The command `corvantis view`: recordings in the browser."""
from __future__ import annotations

import argparse
import os
import sys
import webbrowser
from collections.abc import Sequence
from pathlib import Path
from typing import Any

from .commands import UNUSABLE
from .page import page_containing, page_showing
from .serving import Server, is_readable_file
from .writing import write_whole


def _options(arguments: Sequence[str] | None) -> argparse.Namespace:
    parser = argparse.ArgumentParser(
        prog="corvantis view",
        description="Show recordings in the browser, which reads them from here and computes their "
        "stimuli itself. Nothing leaves this computer. Ends with Ctrl-C.")
    parser.add_argument("files", nargs="+", metavar="FILE", type=Path, help="data files")
    parser.add_argument("--export", metavar="PAGE",
                        help="write one HTML file with the recordings in it, and end")
    parser.add_argument("--force", action="store_true", help="replace an existing file")
    parser.add_argument("--follow", action="store_true",
                        help="show epochs as another program saves them")
    parser.add_argument("--no-browser", action="store_true", help="print the address alone")
    return parser.parse_args(arguments)


def _export(options: argparse.Namespace) -> None:
    name: str = options.export
    if os.path.exists(name):
        if not options.force:
            raise ValueError(f"{name} exists; --force replaces it")
        if any(os.path.samefile(name, file) for file in options.files):
            raise ValueError(f"{name} is the recording itself")
    write_whole(name, page_containing(options.files).encode())


def _serve(options: argparse.Namespace) -> None:
    files = [file.resolve() for file in options.files]
    served = [{"name": file.name, "address": str(number)} for number, file in enumerate(files)]
    shown: dict[str, Any] = {"served": served, "follow": options.follow}
    with Server(page_showing(shown), files) as server:
        print(server.address, flush=True)
        if not options.no_browser:
            webbrowser.open(server.address)
        server.serve_forever()


def view(arguments: Sequence[str] | None = None) -> int:
    """`corvantis view`: recordings in the browser, or as one file to mail."""
    options = _options(arguments)
    try:
        for file in options.files:
            if not is_readable_file(file):
                raise ValueError(f"{file}: no file that can be read")
        if options.export is not None:
            _export(options)
        else:
            _serve(options)
    except KeyboardInterrupt:
        return 0
    except (OSError, ValueError) as error:
        print(f"corvantis view: {error}", file=sys.stderr)
        return UNUSABLE
    return 0
