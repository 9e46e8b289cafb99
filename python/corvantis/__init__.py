"""Recordings of Corvantis as numpy arrays in physical units.

    import corvantis

    with corvantis.open("cell.dat") as recording:
        for epoch in recording.epochs[2:5]:
            print(epoch.number, epoch.response.shape, epoch.units)
"""
from .epoch import Epoch
from .epochreader import CorvantisWarning
from .errors import CorvantisError
from .recording import Epochs, Recording
from .recording import open_recording as open
from .units import Scale, Units

__version__ = "1.0.0"
__all__ = ["CorvantisError", "CorvantisWarning", "Epoch", "Epochs", "Recording", "Scale", "Units",
           "open"]
