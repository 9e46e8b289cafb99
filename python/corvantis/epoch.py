"""One epoch of a recording: its settings at once, its samples when they are asked for."""
from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np

from .epochreader import DIGITAL_INPUT, DIGITAL_OUTPUT
from .records import EpochHeader
from .lazy import lazy
from .stimuli import Stimulus
from .units import WORD, Counts, Samples, Scale, Units, response_scale, stimulus_scale

if TYPE_CHECKING:
    from .recording import Recording


class Epoch:
    """An epoch (a sweep).

    Every field of the epoch's header is an attribute under its own name, such as `temperature`,
    `userValue` or `ampGain`. Arrays have one row for each point in time and one column for each
    entry of the channel sequence.

    Attributes:
        number: the epoch's number in its recording, from 0.
        header: the whole header.
    """

    def __init__(self, recording: Recording, number: int) -> None:
        self.recording = recording
        self.number = number
        self.header: EpochHeader = recording.reader.epoch_header(number)

    def __getattr__(self, name: str) -> Any:
        if name in EpochHeader.__dataclass_fields__ and "header" in self.__dict__:
            return getattr(self.header, name)
        raise AttributeError(f"an epoch has no {name!r}")

    def __dir__(self) -> list[str]:
        return [*super().__dir__(), *EpochHeader.__dataclass_fields__]

    def __reduce__(self) -> tuple[Any, ...]:
        return Epoch, (self.recording, self.number)

    def __repr__(self) -> str:
        return (f"<Epoch {self.number}: {self.points} points at {self.sampling_rate:g} Hz, "
                f"{' + '.join(self.inputs)}>")

    # ---- Time -----------------------------------------------------------------------------

    @property
    def points(self) -> int:
        """Points of each sequence entry [samples]."""
        return self.header.epochPoints

    @property
    def sampling_rate(self) -> float:
        """Points per second [Hz]; not a number where the file states no interval."""
        interval = self.header.samplingInterval
        return 1e6 / interval if interval > 0 else float("nan")

    @property
    def duration(self) -> float:
        """Length of the epoch [s]."""
        return self.points * self.header.samplingInterval / 1e6

    @lazy
    def time(self) -> Samples:
        """Time of each point from the epoch's start, shape (points,) [s]; empty without entries."""
        points = self.points if self.header.sequenceLength else 0
        return np.arange(points, dtype=np.float64) * self.header.samplingInterval / 1e6

    # ---- Samples --------------------------------------------------------------------------

    @lazy
    def raw(self) -> Counts:
        """Acquired samples, shape (points, entries) [signed converter counts], read-only."""
        counts = self.recording.reader.acquired(self.number, self.header)
        counts.setflags(write=False)
        return counts

    @lazy
    def raw_stimulus(self) -> Counts:
        """Recomputed stimulus, shape (points, entries) [signed converter counts], read-only."""
        counts = self.recording.reader.played(self.number, self.header)
        counts.setflags(write=False)
        return counts

    @lazy
    def response(self) -> Samples:
        """Acquired samples, shape (points, entries) [units.response]."""
        return _scaled(self.raw, self.response_scales)

    @lazy
    def stimulus(self) -> Samples:
        """Recomputed stimulus, shape (points, entries) [units.stimulus].

        Noise is as played if the stimuli of the file's epochs were computed once each, in order.

        Raises:
            CorvantisError: with code 2 where the file does not hold what the stimulus needs.
        """
        return _scaled(self.raw_stimulus, self.stimulus_scales)

    @lazy
    def stimuli(self) -> tuple[Stimulus, ...]:
        """Stimulus record of each sequence entry, with components and conductances."""
        return self.recording.reader.stimuli(self.number, self.header)

    # ---- Channels and units ---------------------------------------------------------------

    def _channels(self, direction: str) -> list[int]:
        words = self.header.channelSequence[:self.header.sequenceLength]
        return [self.recording.reader.channel(self.number, word, entry, direction)
                for entry, word in enumerate(words)]

    @lazy
    def input_channels(self) -> list[int]:
        """Input of each sequence entry: 0 to 7, 8 for the digital input, -1 for none."""
        return self._channels("Input")

    @lazy
    def output_channels(self) -> list[int]:
        """Output of each sequence entry: 0 to 3, 4 for the digital output, -1 for none."""
        return self._channels("Output")

    @property
    def inputs(self) -> list[str]:
        """Name of each entry's input, such as "input 0"."""
        return [_name("input", channel, DIGITAL_INPUT) for channel in self.input_channels]

    @property
    def outputs(self) -> list[str]:
        """Name of each entry's output, such as "output 0"."""
        return [_name("output", channel, DIGITAL_OUTPUT) for channel in self.output_channels]

    @lazy
    def response_scales(self) -> list[Scale]:
        """Scale of each entry's response, with its formula."""
        return [WORD if channel == DIGITAL_INPUT
                else response_scale(self.recording.header, self.header, entry)
                for entry, channel in enumerate(self.input_channels)]

    @lazy
    def stimulus_scales(self) -> list[Scale]:
        """Scale of each entry's stimulus, with its formula."""
        return [WORD if channel == DIGITAL_OUTPUT
                else stimulus_scale(self.recording.header, self.header, entry)
                for entry, channel in enumerate(self.output_channels)]

    @property
    def units(self) -> Units:
        """Units of `response` and `stimulus`, one for each sequence entry."""
        return Units(tuple(scale.unit for scale in self.response_scales),
                     tuple(scale.unit for scale in self.stimulus_scales))

    @property
    def comment(self) -> str:
        """Comment on this epoch."""
        return self.header.epochComment


def _name(kind: str, channel: int, digital: int) -> str:
    if channel < 0:
        return f"unknown {kind}"
    return f"digital {kind}" if channel == digital else f"{kind} {channel}"


def _scaled(counts: Counts, scales: list[Scale]) -> Samples:
    columns = [scale(counts[:, entry]) for entry, scale in enumerate(scales)]
    return np.stack(columns, axis=1) if columns else np.empty(counts.shape)
