"""What an archive needs beyond the package, and how to get it."""
from __future__ import annotations

import importlib.util

EXTRAS = {"archive": ("pyarrow", "duckdb", "fsspec", "loky"), "cluster": ("distributed",)}


def require(extra: str) -> None:
    """Raise ImportError, which says what to install, unless all of an extra is there."""
    if missing := [name for name in EXTRAS[extra] if importlib.util.find_spec(name) is None]:
        raise ImportError(f"{missing[0]} is not installed; it comes with corvantis[{extra}]")
