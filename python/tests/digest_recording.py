"""Prints a digest of each epoch of a recording, as the Python that runs it reads them.

    digest_recording.py RECORDING
"""
import sys
from hashlib import sha256

import corvantis

with corvantis.open(sys.argv[1]) as recording:
    print(recording.comment)
    for epoch in recording.epochs:
        arrays = epoch.raw, epoch.raw_stimulus, epoch.response, epoch.stimulus
        print(epoch.number, epoch.comment, epoch.units, *epoch.response.shape,
              *(sha256(array.tobytes()).hexdigest() for array in arrays))
