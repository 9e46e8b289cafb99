"""Recordings for Neo: `CorvantisIO` gives blocks, `CorvantisRawIO` is the reader beneath it.

An epoch is a segment, whatever its length and sampling rate; "epoch" means an interval to Neo.
Signals of one kind, rate, channels and units form a stream, and a segment has one stream of
responses and one of stimuli. A stimulus that the file does not determine is not a number.
"""
from __future__ import annotations

import math
from collections.abc import Sequence
from pathlib import Path
from typing import Any, NamedTuple

import numpy as np
from neo.io.basefromrawio import BaseFromRaw
from neo.rawio import baserawio
from neo.rawio.baserawio import BaseRawIO

from .epoch import Epoch
from .epochs import undamaged
from .errors import CorvantisError
from .interface import NO_STIMULUS
from .recording import Recording, open_recording
from .table import row

SHORTEST = 1e-6     # duration of an epoch without points, for Neo's segments must not be empty [s]
NOT_UNITS = ("counts", "word", "")


class Setting(NamedTuple):
    """What the signals of a stream have in common."""

    kind: str
    rate: float
    channels: tuple[str, ...]
    units: tuple[str, ...]


def _padded(rows: Sequence[tuple[Any, ...]], dtype: list[tuple[str, str]]) -> Any:
    """A header table; newer Neo has further columns, which are texts and stay empty."""
    return np.array([each + ("",) * (len(dtype) - len(each)) for each in rows], dtype=dtype)


def _settings(epoch: Epoch) -> list[Setting]:
    """The streams that an epoch has: none if it is damaged, or has no points, no entries or no time
    scale."""
    if epoch.is_damaged or epoch.points < 1 or epoch.entries < 1 \
            or math.isnan(epoch.sampling_rate):
        return []
    rate, units = epoch.sampling_rate, epoch.units
    return [Setting("response", rate, tuple(epoch.inputs), units.response),
            Setting("stimulus", rate, tuple(epoch.outputs), units.stimulus)]


def _annotations(epoch: Epoch) -> dict[str, Any]:
    """Settings, comment and the stimulus in words; lists as text, which Neo's writers can keep. Of
    a damaged epoch its problem."""
    if epoch.problem is not None:
        return {"problem": epoch.problem}
    values = {name: value for name, value in row(epoch).items() if name != "epoch"}
    return {name: ", ".join(map(str, value)) if isinstance(value, list) else value
            for name, value in values.items()}


class CorvantisRawIO(BaseRawIO):  # type: ignore[misc]
    """Neo's raw reader of Corvantis data files. Values are in physical units already."""

    name = "Corvantis"
    description = "Data files of Corvantis"
    extensions = ["dat"]
    rawmode = "one-file"

    def __init__(self, filename: str | Path = "") -> None:
        BaseRawIO.__init__(self)
        self.filename = str(filename)
        self._recording: Recording | None = None

    def _source_name(self) -> str:
        return self.filename

    # ---- Header ---------------------------------------------------------------------------

    def _parse_header(self) -> None:
        self._recording = recording = open_recording(self.filename)
        self._epochs = list(recording.epochs)
        undamaged(self._epochs)     # which warns of the others
        self._settings = [_settings(epoch) for epoch in self._epochs]
        every = dict.fromkeys(each for several in self._settings for each in several)
        self._streams = list(every)
        self._stream_ids = {setting: str(index) for index, setting in enumerate(self._streams)}
        self.header = {
            "nb_block": 1,
            "nb_segment": [len(self._epochs)],
            "signal_streams": self._stream_table(),
            "signal_channels": self._channel_table(),
            "spike_channels": _padded([], baserawio._spike_channel_dtype),
            "event_channels": _padded([], baserawio._event_channel_dtype),
        }
        if hasattr(baserawio, "_signal_buffer_dtype"):
            self.header["signal_buffers"] = _padded([], baserawio._signal_buffer_dtype)
        self._generate_minimal_annotations()
        self._annotate(recording)

    def _stream_table(self) -> Any:
        names = [(f"{setting.kind} at {setting.rate:g} Hz, {' + '.join(setting.channels)}",
                  self._stream_ids[setting]) for setting in self._streams]
        return _padded(names, baserawio._signal_stream_dtype)

    def _channel_table(self) -> Any:
        rows = [(name, f"{stream}.{entry}", setting.rate, "float64",
                 "" if unit in NOT_UNITS else unit, 1.0, 0.0, str(stream))
                for stream, setting in enumerate(self._streams)
                for entry, (name, unit) in enumerate(zip(setting.channels, setting.units))]
        return _padded(rows, baserawio._signal_channel_dtype)

    def _annotate(self, recording: Recording) -> None:
        block = self.raw_annotations["blocks"][0]
        block.update(name=Path(self.filename).name, description=recording.comment,
                     comment=recording.comment, version=recording.header.version)
        for segment, epoch in zip(block["segments"], self._epochs):
            # Neo gives all segments the same dictionaries; these are the ones that are shown.
            segment["signals"] = list(segment["signals"])
            for setting in self._settings[epoch.number]:
                stream = int(self._stream_ids[setting])
                segment["signals"][stream] = {
                    name: dict(value) if isinstance(value, dict) else value
                    for name, value in segment["signals"][stream].items()}
            segment.update(name=f"epoch {epoch.number}", epoch=epoch.number, **_annotations(epoch),
                           description="" if epoch.is_damaged else epoch.comment)

    # ---- Segments -------------------------------------------------------------------------

    def _segment_t_start(self, block_index: int, seg_index: int) -> float:
        return 0.0

    def _segment_t_stop(self, block_index: int, seg_index: int) -> float:
        epoch = self._epochs[seg_index]
        return SHORTEST if epoch.is_damaged else max(epoch.duration, SHORTEST)

    # ---- Signals --------------------------------------------------------------------------

    def _has(self, seg_index: int, stream_index: int) -> bool:
        return self._streams[stream_index] in self._settings[seg_index]

    def _get_signal_size(self, block_index: int, seg_index: int, stream_index: int) -> int:
        return self._epochs[seg_index].points if self._has(seg_index, stream_index) else 0

    def _get_signal_t_start(self, block_index: int, seg_index: int, stream_index: int) -> float:
        return 0.0

    def _stimulus(self, epoch: Epoch, first: int, count: int) -> Any:
        """A range of the stimulus, not a number where an entry cannot be computed."""
        values = np.full((count, epoch.entries), np.nan)
        for entry in range(epoch.entries):
            try:
                values[:, entry] = epoch.read_stimulus(first, count, entry)
            except CorvantisError as error:
                if error.code != NO_STIMULUS:
                    raise
        return values

    def _get_analogsignal_chunk(self, block_index: int, seg_index: int, i_start: int | None,
                                i_stop: int | None, stream_index: int,
                                channel_indexes: Any) -> Any:
        setting = self._streams[stream_index]
        size = self._get_signal_size(block_index, seg_index, stream_index)
        first, end, _ = slice(i_start, i_stop).indices(size)
        if size == 0:
            values = np.empty((0, len(setting.channels)))
        elif setting.kind == "response":
            values = self._epochs[seg_index].read(first, max(end - first, 0))
        else:
            values = self._stimulus(self._epochs[seg_index], first, max(end - first, 0))
        return values if channel_indexes is None else values[:, channel_indexes]

    # ---- What these files do not have -----------------------------------------------------

    def _spike_count(self, block_index: int, seg_index: int, spike_channel_index: int) -> int:
        return 0

    def _event_count(self, block_index: int, seg_index: int, event_channel_index: int) -> int:
        return 0

    def _get_spike_timestamps(self, *arguments: Any) -> Any:
        return np.empty(0)

    def _rescale_spike_timestamp(self, spike_timestamps: Any, dtype: str) -> Any:
        return spike_timestamps.astype(dtype)

    def _get_spike_raw_waveforms(self, *arguments: Any) -> None:
        return None

    def _get_event_timestamps(self, *arguments: Any) -> Any:
        return np.empty(0), None, np.empty(0, dtype="U")

    def _rescale_event_timestamp(self, event_timestamps: Any, dtype: str,
                                 event_channel_index: int) -> Any:
        return event_timestamps.astype(dtype)

    def _rescale_epoch_duration(self, raw_duration: Any, dtype: str,
                                event_channel_index: int) -> Any:
        return raw_duration.astype(dtype)


class CorvantisIO(CorvantisRawIO, BaseFromRaw):  # type: ignore[misc]
    """Neo's reader of Corvantis data files: `CorvantisIO(path).read_block(lazy=True)`."""

    mode = "file"
    _prefered_signal_group_mode = "group-by-same-units"
    _reading: int | None = None

    def __init__(self, filename: str | Path) -> None:
        self._groups: dict[str, Any] = {}
        CorvantisRawIO.__init__(self, filename)
        BaseFromRaw.__init__(self, str(filename))

    def get_sub_signal_streams(self, signal_group_mode: str = "group-by-same-units") -> Any:
        """Neo's groups of channels; while a segment is being read, those of its own streams."""
        if signal_group_mode not in self._groups:
            self._groups[signal_group_mode] = super().get_sub_signal_streams(signal_group_mode)
        groups = self._groups[signal_group_mode]
        if self._reading is None:
            return groups
        own = {int(self._stream_ids[each]) for each in self._settings[self._reading]}
        return [group for group in groups if group[0] in own]

    def read_segment(self, block_index: int = 0, seg_index: int = 0, **options: Any) -> Any:
        """One epoch as a segment, with its own streams alone."""
        self._reading = seg_index
        try:
            return super().read_segment(block_index=block_index, seg_index=seg_index, **options)
        finally:
            self._reading = None

    def read_block(self, block_index: int = 0, lazy: bool = False,
                   create_group_across_segment: Any = None, **options: Any) -> Any:
        """All epochs. Neo's groups across segments assume equal streams and are off."""
        if create_group_across_segment is None:
            create_group_across_segment = False
        return super().read_block(block_index, lazy, create_group_across_segment, **options)


def register() -> None:
    """Let Neo's own `neo.io.get_io` try us first for names that end in ".dat"."""
    import neo.io
    for readers in (neo.io.iolist, getattr(neo.io, "io_by_extension", {}).get("dat", [])):
        if CorvantisIO not in readers:
            readers.insert(0, CorvantisIO)
