"""Prints what IPFX measures of the recordings that tests compare with, as JSON:

    compare_ipfx.py FILE... > ipfx.json

To be run by hand where IPFX 2.1.2 is installed, which needs an older pandas than the tests have.
"""
import json
import sys
from pathlib import Path

import numpy as np
from ipfx import subthresh_features
from ipfx.feature_extractor import SpikeFeatureExtractor, SpikeTrainFeatureExtractor

import corvantis
from corvantis.steps import main_step


def as_ipfx_wants(epoch):
    """Times [s], potential [mV], current [pA], first and last time of the step."""
    step = main_step(epoch, 0)
    times = epoch.time
    return (times, epoch.read(entry=0), epoch.read_stimulus(entry=0), step,
            step.start / epoch.sampling_rate, step.stop / epoch.sampling_rate)


def of_epoch(epoch):
    times, potential, current, step, start, stop = as_ipfx_wants(epoch)
    before = start - times[0]
    kilohertz = min(10.0, epoch.sampling_rate / 2e3 - 0.1)
    found = SpikeFeatureExtractor(start, stop, filter=kilohertz).process(times, potential, current)
    train = SpikeTrainFeatureExtractor(start, stop).process(times, potential, current, found)
    values = {"level": step.level, "spikes": len(found), "rate": train["avg_rate"],
              "baseline": subthresh_features.baseline_voltage(times, potential, start,
                                                              min(before, 0.1))}
    if len(found):
        first = found.iloc[0]
        values |= {"latency": 1e3 * train["latency"], "threshold": first["threshold_v"],
                   "peak": first["peak_v"], "width": 1e3 * first["width"],
                   "trough": first["trough_v"]}
    if len(found) > 2:
        values |= {"adaptation": train["adapt"], "mean_interval": 1e3 * train["mean_isi"],
                   "first_interval": 1e3 * train["first_isi"], "interval_variation":
                   train["isi_cv"]}
    if step.size < 0 and not len(found):
        told = times, potential, current, start, stop
        values |= {"sag_ratio": subthresh_features.sag(*told, baseline_interval=0.03),
                   "time_constant": 1e3 * subthresh_features.time_constant(
                       *told, baseline_interval=min(before, 0.1)),
                   "input_resistance": subthresh_features.input_resistance(
                       [times], [current], [potential], start, stop, min(before, 0.1))}
    return {name: round(float(value), 6) for name, value in values.items() if np.isfinite(value)}


results = {}
for name in sys.argv[1:]:
    with corvantis.open(name) as recording:
        results[Path(name).name] = {epoch.number: of_epoch(epoch) for epoch in recording.epochs
                                    if main_step(epoch, 0) is not None and epoch.entries == 1
                                    and main_step(epoch, 0).points > 1000}
json.dump(results, sys.stdout, indent=1)
print()
