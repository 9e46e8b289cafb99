"""One row for each epoch, and stimuli in words."""
from __future__ import annotations

from collections.abc import Iterable
from typing import TYPE_CHECKING, Any

from .stimuli import Stimulus, is_computed
from .units import Scale

if TYPE_CHECKING:
    from .epoch import Epoch

MILLISECONDS = {"period": "period", "halfPeriod": "half period", "segmentPoints": "segments of"}
PLAIN = {"seed": "seed", "cutoffFrequency": "cut-off [Hz]", "filterOrder": "order"}


def _amount(value: float, unit: str) -> str:
    return f"{value:.6g} {unit}".rstrip()


def in_words(stimulus: Stimulus, scale: Scale, interval: int) -> str:
    """A stimulus in words, such as "pulse 100 pA on -40 pA, 500 ms after 100 ms".

    Args:
        scale: the scale of the stimulus's sequence entry.
        interval: the epoch's sampling interval [µs].
    """
    values = vars(stimulus)
    if "components" in values:
        parts = [in_words(each, scale, interval) for each in stimulus.components]
        return f"sum of ({'; '.join(parts)})"
    text = stimulus.name
    if "amplitude" in values:
        text += (f" {_amount(float(scale(values['amplitude'])), scale.unit)}"
                 f" on {_amount(float(scale(values['mean'])), scale.unit)}")
    details = [f"{values['points'] * interval / 1000:g} ms after "
               f"{values.get('prePoints', 0) * interval / 1000:g} ms"] if "points" in values else []
    details += [f"{words} {values[name] * interval / 1000:g} ms"
                for name, words in MILLISECONDS.items() if name in values]
    details += [f"{words} {values[name]}" for name, words in PLAIN.items() if name in values]
    return ", ".join([text, *details]) + ("" if is_computed(stimulus) else ", waveform not stored")


def row(epoch: Epoch) -> dict[str, Any]:
    """What is known of an epoch without reading its samples; lists have an item for each entry."""
    header, entries = epoch.header, epoch.entries
    words = [in_words(stimulus, scale, header.samplingInterval)
             for stimulus, scale in zip(epoch.parameters, epoch.stimulus_scales)]
    return {
        "epoch": epoch.number,
        "time": header.epochTime,
        "points": epoch.points,
        "sampling_rate": epoch.sampling_rate,
        "duration": epoch.duration,
        "inputs": epoch.inputs,
        "outputs": epoch.outputs,
        "response_units": list(epoch.units.response),
        "stimulus_units": list(epoch.units.stimulus),
        "stimulus": words,
        "comment": epoch.comment,
        **{name: list(getattr(header, name)[:entries])
           for name in ("stimType", "ampGain", "ampValue", "ampCode", "ampMode", "convFactor",
                        "meanOutput", "ndf", "ledSetting")},
        **{name: getattr(header, name)
           for name in ("temperature", "digitalOutput", "wavelength", "pointsLatency",
                        "acqSettingA", "acqSettingB")},
        "userValue": list(header.userValue),
        "problem": "",
    }


def rows(epochs: Iterable[Epoch]) -> list[dict[str, Any]]:
    """A row for each epoch; a damaged one has its problem, and None for all that it has not."""
    every = [row(epoch) if epoch.problem is None else
             {"epoch": epoch.number, "problem": epoch.problem} for epoch in epochs]
    names = dict.fromkeys(name for each in every for name in each)
    return [{**names, **each} for each in every]
