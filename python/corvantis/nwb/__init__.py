"""Recordings as NWB files, for archives; needs `pip install 'corvantis[nwb]'`.

    import corvantis.nwb

    corvantis.nwb.write("cell5.dat", "cell5.nwb", "LAB.yaml")
    corvantis.nwb.verify("cell5.nwb", "cell5.dat")
"""
from .documents import MetadataError
from .metadata import Metadata, metadata_of
from .naming import target
from .template import template
from .verification import verify
from .writing import Written, write

__all__ = ["Metadata", "MetadataError", "Written", "metadata_of", "target", "template",
           "verify", "write"]
