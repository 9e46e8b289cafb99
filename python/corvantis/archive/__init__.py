"""Whole archives: a catalogue of thousands of recordings, and work over all of them.

    import corvantis.archive

    corvantis.archive.index("recordings", "catalogue")
    catalogue = corvantis.archive.open("catalogue")
    print(catalogue.query("SELECT file, count(*) FROM epochs WHERE temperature > 30 GROUP BY file"))

Needs what `pip install corvantis[archive]` installs, and for a cluster `corvantis[cluster]`.
"""
from .catalogue import Catalogue
from .catalogue import open_catalogue as open
from .indexing import IndexSummary, index
from .mapping import map, map_to

__all__ = ["Catalogue", "IndexSummary", "index", "map", "map_to", "open"]
