"""One row for each epoch."""
from __future__ import annotations

from collections.abc import Iterable
from typing import TYPE_CHECKING, Any

if TYPE_CHECKING:
    from .epoch import Epoch


def row(epoch: Epoch) -> dict[str, Any]:
    """What is known of an epoch without reading its samples; lists have an item for each entry."""
    header, entries = epoch.header, epoch.entries
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
        "stimulus": epoch.stimulus_words,
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
