"""One epoch of a recording: nothing of it is read before it is asked for."""
from __future__ import annotations

import ctypes
import warnings
from dataclasses import dataclass
from typing import TYPE_CHECKING, Any

import numpy as np

from .errors import CorvantisError, CorvantisWarning
from .interface import (ALL_ENTRIES, DAMAGED, DIGITAL_INPUT, DIGITAL_OUTPUT, EPOCH_HEADER,
                        EPOCH_HEADER_SIZE, RESPONSE, STIMULUS, DoubtReason, DoubtRecord, EpochInfo)
from .lazy import lazy
from .notebook import View, epoch_html
from .records import Record, fields_of, header
from .samples import Neighbours, fill, room
from .stimuli import Stimulus, read_json, read_stimulus, read_words, with_conductances
from .units import Counts, Samples, Scale, Units, read_scale

if TYPE_CHECKING:
    from .recording import Recording


@dataclass(frozen=True)
class Doubt:
    """Why a computed stimulus may not be what was played.

    Attributes:
        reason: of several the highest.
        epoch: number of the epoch that it comes from, or None.
        text: the reason in words.
    """

    reason: DoubtReason
    epoch: int | None
    text: str


class Epoch:
    """An epoch (a sweep).

    Every field of the epoch's header is an attribute under its own name, such as `temperature`,
    `userValue` or `ampGain`; `help(corvantis.records.EpochHeader)` lists them. Arrays have one row
    for each point in time and one column for each entry of the channel sequence. Of a damaged epoch
    only `number`, `is_damaged` and `problem` are to be had: all else raises CorvantisError, which
    says where the damage is.

    Attributes:
        number: the epoch's number in its recording, from 0.
    """

    _neighbours: Neighbours | None = None   # set by iteration

    def __init__(self, recording: Recording, number: int) -> None:
        self.recording = recording
        self.number = number

    def __getattr__(self, name: str) -> Any:
        fields = fields_of(EPOCH_HEADER)
        if name not in fields:
            raise AttributeError(f"an epoch has no {name!r}")
        return fields[name].value(self._block)

    def __dir__(self) -> list[str]:
        return [*super().__dir__(), *fields_of(EPOCH_HEADER)]

    def __reduce__(self) -> tuple[Any, ...]:
        return Epoch, (self.recording, self.number)

    def __repr__(self) -> str:
        if self.is_damaged:
            return f"<Epoch {self.number}: damaged>"
        return (f"<Epoch {self.number}: {self.points} points at {self.sampling_rate:g} Hz, "
                f"{' + '.join(self.inputs)}>")

    def _repr_html_(self) -> str:
        return epoch_html(self)

    def view(self, height: int = 900) -> View:
        """The page that shows recordings, for a notebook, with this epoch drawn; as
        `Recording.view`."""
        return self.recording.view(f"epochs={self.number}", height)

    # ---- Header ---------------------------------------------------------------------------

    @lazy
    def _block(self) -> bytes:
        block = ctypes.create_string_buffer(EPOCH_HEADER_SIZE)
        handle = self.recording.handle
        handle.call(handle.library.CorvantisEpochHeader, self.number, block)
        return block.raw

    @lazy
    def _info(self) -> EpochInfo:
        return self.recording.handle.epoch(self.number)

    @lazy
    def _shape(self) -> tuple[int, int]:
        """Points and entries; iteration gives many epochs theirs at once."""
        return self._info.points, self._info.entries

    @lazy
    def header(self) -> Record:
        """The whole header."""
        return header("EpochHeader", self._block)

    @lazy
    def problem(self) -> str | None:
        """What is wrong with a damaged epoch: place, what was found, what was expected; or None."""
        try:
            self._info
        except CorvantisError as error:
            if error.code != DAMAGED:
                raise
            return str(error)
        return None

    @property
    def is_damaged(self) -> bool:
        """Whether the epoch cannot be read."""
        return self.problem is not None

    # ---- Time -----------------------------------------------------------------------------

    @property
    def points(self) -> int:
        """Points of each sequence entry [samples]."""
        return self._shape[0]

    @property
    def entries(self) -> int:
        """Entries of the channel sequence."""
        return self._shape[1]

    @property
    def sampling_rate(self) -> float:
        """Points per second [Hz]; not a number where the file states no interval."""
        return 1e6 / self._interval if self._interval > 0 else float("nan")

    @property
    def _interval(self) -> int:
        return int(self._info.samplingInterval)

    @property
    def duration(self) -> float:
        """Length of the epoch [s]."""
        return self.points * self._interval / 1e6

    @property
    def entry_delays(self) -> list[float]:
        """When each entry's first point follows the epoch's start [s]: the entries of a point are
        taken one after the other."""
        return [entry * self._info.entryInterval / 1e6 for entry in range(self.entries)]

    @lazy
    def time(self) -> Samples:
        """Time of each point from the epoch's start, shape (points,) [s]; empty without entries."""
        points = self.points if self.entries else 0
        return np.arange(points, dtype=np.float64) * self._interval / 1e6

    # ---- Samples --------------------------------------------------------------------------

    @lazy
    def raw(self) -> Counts:
        """Acquired samples, shape (points, entries) [signed converter counts], read-only."""
        if self._neighbours is not None:
            together = self._neighbours.counts(self.recording.handle, self.number)
            if together is not None:
                return together
        counts: Counts = self.read(raw=True)
        counts.setflags(write=False)
        return counts

    @lazy
    def raw_stimulus(self) -> Counts:
        """Recomputed stimulus, shape (points, entries) [signed converter counts], read-only."""
        counts: Counts = self.read_stimulus(raw=True)
        counts.setflags(write=False)
        return counts

    @lazy
    def response(self) -> Samples:
        """Acquired samples, shape (points, entries) [units.response]."""
        values: Samples = self.read()
        return values

    @lazy
    def stimulus(self) -> Samples:
        """Recomputed stimulus, shape (points, entries) [units.stimulus].

        Noise is as played if the stimuli of the file's epochs were computed once each, in order:
        `doubt` says where this matters.

        Raises:
            CorvantisError: with code 2 where the file does not hold what the stimulus needs.
        """
        values: Samples = self.read_stimulus()
        return values

    def read(self, first: int = 0, count: int | None = None, entry: int | None = None,
             raw: bool = False) -> Any:
        """A range of the acquired samples, of which no others are read.

        Args:
            first: first point.
            count: points; all that follow without it.
            entry: sequence entry; all without it.
            raw: signed converter counts instead of units.

        Returns:
            An array of shape (count, entries), or (count,) of one entry.
        """
        handle = self.recording.handle
        values = room(self._shape, first, count, entry, raw)
        fill(handle, handle.library.CorvantisCounts if raw else handle.library.CorvantisValues,
             self.number, values, entry, first)
        return values

    def read_stimulus(self, first: int = 0, count: int | None = None, entry: int | None = None,
                      raw: bool = False) -> Any:
        """A range of the recomputed stimulus; as `read`.

        Warns:
            CorvantisWarning: where the noise may be another one than was played.
        """
        values, doubt = self.compute_stimulus(first, count, entry, raw)
        if doubt is not None and doubt.reason in (DoubtReason.BEGAN_BEFORE_FILE,
                                                  DoubtReason.BEHIND_UNKNOWN):
            warnings.warn(f"{self.recording.handle.name}: epoch {self.number}: {doubt.text}",
                          CorvantisWarning, stacklevel=3)
        return values

    def compute_stimulus(self, first: int = 0, count: int | None = None, entry: int | None = None,
                         raw: bool = False) -> tuple[Any, Doubt | None]:
        """As `read_stimulus`, with the doubt instead of a warning."""
        handle, doubt = self.recording.handle, DoubtRecord()
        values = room(self._shape, first, count, entry, raw)
        fill(handle, handle.library.CorvantisStimulus if raw else
             handle.library.CorvantisStimulusValues, self.number, values, entry, first,
             ctypes.addressof(doubt))
        return values, _as_doubt(doubt)

    @lazy
    def doubt(self) -> Doubt | None:
        """Why the stimulus may not be what was played, or None; nothing is computed for this.

        Raises:
            CorvantisError: with code 2 where the stimulus cannot be computed at all.
        """
        return self.entry_doubt(ALL_ENTRIES)

    def entry_doubt(self, entry: int) -> Doubt | None:
        """As `doubt`, of one sequence entry."""
        handle, doubt = self.recording.handle, DoubtRecord()
        handle.call(handle.library.CorvantisStimulus, self.number, entry, 0, 0, None, 0,
                    ctypes.addressof(doubt))
        return _as_doubt(doubt)

    # ---- Channels, stimuli and units ------------------------------------------------------

    @lazy
    def parameters(self) -> tuple[Stimulus, ...]:
        """Stimulus record of each sequence entry, with components but without conductances."""
        return tuple(read_stimulus(self.recording.handle, self.number, entry)
                     for entry in range(self.entries))

    @lazy
    def stimuli(self) -> tuple[Stimulus, ...]:
        """Stimulus record of each sequence entry, with components and conductances."""
        return tuple(with_conductances(self.recording.handle, self.number, entry, self.points, each)
                     for entry, each in enumerate(self.parameters))

    def stimulus_json(self, entry: int) -> str:
        """The parameters of an entry's stimulus as JSON, levels in units too, in the form of
        `stimulus` in docs/recording.schema.json."""
        return read_json(self.recording.handle, self.number, entry)

    @property
    def stimulus_words(self) -> list[str]:
        """Each entry's stimulus in words, such as "pulse 100 pA on -40 pA, 500 ms after 100 ms"."""
        return [read_words(self.recording.handle, self.number, entry)
                for entry in range(self.entries)]

    @property
    def input_channels(self) -> list[int]:
        """Input of each sequence entry: 0 to 7, 8 for the digital input, -1 for none."""
        return list(self._info.inputs[:self.entries])

    @property
    def output_channels(self) -> list[int]:
        """Output of each sequence entry: 0 to 3, 4 for the digital output, -1 for none."""
        return list(self._info.outputs[:self.entries])

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
        return [read_scale(self.recording.handle, self.number, entry, RESPONSE)
                for entry in range(self.entries)]

    @lazy
    def stimulus_scales(self) -> list[Scale]:
        """Scale of each entry's stimulus, with its formula."""
        return [read_scale(self.recording.handle, self.number, entry, STIMULUS)
                for entry in range(self.entries)]

    @property
    def units(self) -> Units:
        """Units of `response` and `stimulus`, one for each sequence entry."""
        return Units(tuple(scale.unit for scale in self.response_scales),
                     tuple(scale.unit for scale in self.stimulus_scales))

    @property
    def comment(self) -> str:
        """Comment on this epoch."""
        return str(self.epochComment)


def _as_doubt(record: DoubtRecord) -> Doubt | None:
    if record.reason == DoubtReason.NONE:
        return None
    return Doubt(DoubtReason(record.reason), record.epoch if record.epoch >= 0 else None,
                 record.text.decode())


def _name(kind: str, channel: int, digital: int) -> str:
    if channel < 0:
        return f"unknown {kind}"
    return f"digital {kind}" if channel == digital else f"{kind} {channel}"
