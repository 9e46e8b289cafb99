"""Which of NWB's types the two sides of a sequence entry are."""
from __future__ import annotations

from collections.abc import Mapping
from typing import NamedTuple

from ..epoch import Epoch
from ..interface import Quantity
from ..stimuli import Stimulus

PLAIN = "TimeSeries"
CURRENT_CLAMP, VOLTAGE_CLAMP, NO_STIMULUS = "current_clamp", "voltage_clamp", "no_stimulus"
SI_UNITS = {Quantity.POTENTIAL: "volts", Quantity.CURRENT: "amperes",
            Quantity.ADMITTANCE: "siemens"}


class Clamp(NamedTuple):
    """NWB's types for an entry.

    Attributes:
        response: type of what was acquired; "TimeSeries" for what no electrode recorded.
        stimulus: type of what was played.
    """

    response: str
    stimulus: str

    @property
    def is_patch(self) -> bool:
        """Whether an electrode recorded the response."""
        return self.response != PLAIN


#: By mode: what the response must measure, and the two types.
MODES = {
    CURRENT_CLAMP: (Quantity.POTENTIAL, "CurrentClampSeries", "CurrentClampStimulusSeries"),
    VOLTAGE_CLAMP: (Quantity.CURRENT, "VoltageClampSeries", "VoltageClampStimulusSeries"),
    NO_STIMULUS: (Quantity.POTENTIAL, "IZeroClampSeries", PLAIN),
}
#: What the stimulus of a type measures.
STIMULI = {"CurrentClampStimulusSeries": Quantity.CURRENT,
           "VoltageClampStimulusSeries": Quantity.POTENTIAL}


def is_dynamic_clamp(stimulus: Stimulus) -> bool:
    """Whether it is played as conductances."""
    return hasattr(stimulus, "excitatory")


def has_no_stimulus(epoch: Epoch, entry: int) -> bool:
    """Whether nothing is put out at an entry: it has no output, or one without a unit whose
    stimulus is zero throughout by its type."""
    unused = epoch.stimulus_scales[entry].quantity == Quantity.OTHER
    return epoch.output_channels[entry] < 0 or (
        unused and epoch.parameters[entry].name == "spatial")


def _mode_by_units(epoch: Epoch, entry: int) -> str | None:
    """The mode that the units of both sides speak for."""
    response, stimulus = (scales[entry].quantity for scales in
                          (epoch.response_scales, epoch.stimulus_scales))
    if response == Quantity.CURRENT and stimulus != Quantity.CURRENT:
        return VOLTAGE_CLAMP
    if response != Quantity.POTENTIAL:
        return None
    if has_no_stimulus(epoch, entry):
        return NO_STIMULUS
    if stimulus == Quantity.CURRENT or is_dynamic_clamp(epoch.parameters[entry]):
        return CURRENT_CLAMP
    return None


def clamp_of(epoch: Epoch, entry: int, modes: Mapping[int, str]) -> Clamp:
    """The types of an entry.

    Args:
        modes: what codes of the amplifier's mode stand for, where that is known; else, and where
            the response's unit is not one of that mode, the units decide.
    """
    mode = modes.get(epoch.ampMode[entry])
    if mode is None or contradiction(epoch, entry, modes):
        mode = _mode_by_units(epoch, entry)
    if mode is None:
        return Clamp(PLAIN, PLAIN)
    _, response, stimulus = MODES[mode]
    if epoch.stimulus_scales[entry].quantity != STIMULI.get(stimulus):
        stimulus = PLAIN
    return Clamp(response, stimulus)


def contradiction(epoch: Epoch, entry: int, modes: Mapping[int, str]) -> str:
    """In words, where the amplifier's mode and the response's unit contradict each other."""
    mode, scale = modes.get(epoch.ampMode[entry]), epoch.response_scales[entry]
    if mode is None or scale.quantity == MODES[mode][0]:
        return ""
    return f"amplifier mode {epoch.ampMode[entry]} is {mode}, but the response is in {scale.unit}"
