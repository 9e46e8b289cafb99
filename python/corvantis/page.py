"""The page that shows recordings: found, and given what it is to show.

The page is one HTML file, `viewer.html`, made by scripts/build-page. It shows what a list within it
names: recordings that lie within it too, or that its server gives.
"""
from __future__ import annotations

import base64
import gzip
import json
import os
import re
from collections.abc import Sequence
from pathlib import Path
from typing import Any

VARIABLE = "CORVANTIS_PAGE"
NAME = "viewer.html"
LIST = re.compile(r'(<script type="application/json" id="recordings">)\s*{}\s*(</script>)')
MOST_WITHIN = 256 << 20     # of all recordings in a page, which a browser reads whole [bytes]


def page() -> str:
    """The page, showing nothing yet.

    Raises:
        ValueError: if it was not built.
    """
    path = Path(os.environ.get(VARIABLE) or Path(__file__).with_name(NAME))
    try:
        text = path.read_text(encoding="utf-8")
    except FileNotFoundError:
        raise ValueError("the page is not there: scripts/build-page builds it (needs Node.js 20.19 "
                         f"or newer, with npm); set {VARIABLE} to its path") from None
    if len(LIST.findall(text)) != 1:
        raise ValueError(f"{path} is not the page")
    return text


def page_showing(shown: dict[str, Any]) -> str:
    """The page with the list of what it is to show."""
    listed = json.dumps(shown).replace("<", "\\u003c")
    return LIST.sub(lambda found: found[1] + listed + found[2], page())


def page_containing(files: Sequence[Path], most: int = MOST_WITHIN, shown: str = "") -> str:
    """The page with whole recordings in it, which needs neither server nor network.

    Args:
        most: their size [bytes].
        shown: what it shows first, as the part of its address behind "#"; its own address goes
            before.

    Raises:
        ValueError: if they are too large for that, or the page was not built.
    """
    size = sum(file.stat().st_size for file in files)
    if size > most:
        raise ValueError(f"{size} bytes are too many for one page ({most}); "
                         "`corvantis view` without --export reads them by ranges")
    within = [{"name": file.name,
               "content": base64.b64encode(gzip.compress(file.read_bytes(), mtime=0)).decode()}
              for file in files]
    return page_showing({"within": within, "shown": shown})
