"""Whole archives: a catalogue of thousands of recordings, and work over all of them.

    import corvantis.archive

    corvantis.archive.index("recordings", "catalogue")
    catalogue = corvantis.archive.open("catalogue")
    print(catalogue.query("SELECT file, count(*) FROM epochs WHERE temperature > 30 GROUP BY file"))

Needs what `pip install corvantis[archive]` installs, and for a cluster `corvantis[cluster]`.
"""
from .needs import require

require("archive")

from .catalogue import Catalogue    # noqa: E402
from .catalogue import open_catalogue as open     # noqa: E402
from .indexing import IndexSummary, index     # noqa: E402
from .locations import open_ranges      # noqa: E402
from .mapping import map, map_to        # noqa: E402

__all__ = ["Catalogue", "IndexSummary", "index", "map", "map_to", "open", "open_ranges"]
