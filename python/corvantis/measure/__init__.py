"""Measurements of epochs, families of steps and spikes, into tables.

    import corvantis.measure

    with corvantis.open("cell.dat") as recording:
        measurements = corvantis.measure.measure(recording)
    print(measurements.families[0]["input_resistance_MOhm"], measurements.families[0]["reasons"])

Needs what `pip install corvantis[measure]` installs. `corvantis.measure.columns.COLUMNS` says what
each column is.
"""
from .recordings import Measurements, measure

__all__ = ["Measurements", "measure"]
