"""Recordings of Corvantis as numpy arrays in physical units.

    import corvantis

    with corvantis.open("cell.dat") as recording:
        for epoch in recording.epochs[2:5]:
            print(epoch.number, epoch.response.shape, epoch.units)
"""
from .epoch import Doubt, Epoch
from .epochs import Epochs
from .errors import CorvantisError, CorvantisWarning
from .identity import set_root
from .interface import DoubtReason, Weight
from .recording import Finding, Recording
from .recording import open_recording as open
from .units import Scale, Units

__version__ = "1.0.0"
__all__ = ["CorvantisError", "CorvantisWarning", "Doubt", "DoubtReason", "Epoch", "Epochs",
           "Finding", "Recording", "Scale", "Units", "Weight", "open", "set_root"]
