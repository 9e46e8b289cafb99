"""Reading one data file through the library: headers, samples, stimuli and their records."""
from __future__ import annotations

import ctypes
import warnings

import numpy as np
from numpy.typing import NDArray

from .epochplaces import Place, current_epoch_header, find_epochs, point_at, position_table
from .errors import BAD_ARGUMENT, FILE_ERROR, STIMULUS_ERROR, CorvantisError
from .records import EpochHeader, FileHeader
from .layout import from_address, from_bytes
from .lazy import lazy
from .library import Library, guarded
from .noise import DRAWING, NoiseHistory, Share, behind, share_of
from .session import OpenFile, free_slots, reading, release
from .stimuli import TYPES, Conductance, DynamicClamp, Stimulus, Summed, SummedRecord

Counts = NDArray[np.int16]
DIGITAL_INPUT, DIGITAL_OUTPUT = 8, 4


class CorvantisWarning(UserWarning):
    """Not all that a file's header promises can be read."""


class EpochReader:
    """Reads one file. Every call may find another file open, and switches."""

    def __init__(self, path: str) -> None:
        self.file = OpenFile(path)
        self._channels: dict[tuple[str, int], int] = {}
        with reading(self.file) as lib:
            self.header = from_address(FileHeader, lib.pointer("filehdr"))

    def close(self, end: bool) -> None:
        """Let go of the file; `end` also gives back the library's buffers."""
        release(self.file, end)

    @lazy
    def places(self) -> list[Place]:
        """Every epoch's place, found when first asked for."""
        with reading(self.file) as lib:
            places = find_epochs(lib)
        damaged = [str(epoch) for epoch, place in enumerate(places) if place.header is None]
        if damaged:
            self._warn(f"damaged epochs: {', '.join(damaged)}")
        if len(places) != self.header.numEpochs:
            self._warn(f"{self.header.numEpochs} epochs announced, {len(places)} found")
        return places

    def _warn(self, text: str) -> None:
        warnings.warn(f"{self.file.path}: {text}", CorvantisWarning, stacklevel=4)

    def failure(self, code: int, epoch: int, detail: str = "") -> CorvantisError:
        """The error of one epoch."""
        return CorvantisError(code, self.file.path, f"epoch {epoch}" + (detail and f", {detail}"))

    def epoch_header(self, epoch: int) -> EpochHeader:
        """An epoch's header."""
        block = self.places[epoch].header
        if block is None:
            raise self.failure(FILE_ERROR, epoch)
        return from_bytes(EpochHeader, block)

    def _ask(self, lib: Library, function: str, epoch: int, *arguments: object) -> int:
        """The result of a function that reads an epoch, wherever the file's own table says that it
        begins, and finds the header there that was found before."""
        place = self.places[epoch]
        if epoch >= len(position_table(lib)):
            raise self.failure(FILE_ERROR, epoch)
        point_at(lib, epoch, place.offset)
        result = int(getattr(lib, function)(epoch, *arguments))
        if result == 0 and current_epoch_header(lib) != place.header:
            raise self.file.changed()
        return result

    def _point(self, lib: Library, epoch: int) -> None:
        """Make an epoch the current one."""
        result = self._ask(lib, "ITCEpochParameters", epoch)
        if result != 0:
            raise self.failure(result, epoch)

    def _samples(self, epoch: int, header: EpochHeader, function: str) -> Counts:
        samples = np.empty((header.epochPoints, header.sequenceLength), dtype=np.int16)
        with reading(self.file, samples.size) as lib:
            result = self._ask(lib, function, epoch, samples.ctypes.data_as(ctypes.c_void_p))
        if result != 0:
            raise self.failure(result, epoch, self._reason(epoch, header, result))
        return samples

    def _reason(self, epoch: int, header: EpochHeader, result: int) -> str:
        if result != STIMULUS_ERROR:
            return ""
        wanting = [f"entry {entry} is a {stimulus.name}"
                   for entry, stimulus in enumerate(self.stimuli(epoch, header))
                   if not is_computed(stimulus)]
        return ", ".join(wanting)

    def acquired(self, epoch: int, header: EpochHeader) -> Counts:
        """The acquired samples, shape (points, entries)."""
        return self._samples(epoch, header, "ITCReadEpoch")

    def played(self, epoch: int, header: EpochHeader) -> Counts:
        """The recomputed stimulus, shape (points, entries), as if computed in the file's order.

        Noise can continue the noise before it, in another epoch. So what the noise of earlier
        epochs drew is drawn first: what is returned is what was played if the recording program
        computed each epoch once, in order. Where one of them, or what the program did before the
        file's first epoch, is not known but matters, a CorvantisWarning says so.
        """
        with guarded():
            self._check_sums(epoch, header)
            if epoch not in self._noise.places:
                return self._samples(epoch, header, "ITCReadEpochStm")
            self._warn_of_doubts(epoch)
            with behind(self._noise, epoch):
                return self._samples(epoch, header, "ITCReadEpochStm")

    def _check_sums(self, epoch: int, header: EpochHeader) -> None:
        """Refuse sums with a wave that is not stored: the library would compute them without it."""
        if Summed.type not in header.stimType[:header.sequenceLength]:
            return
        reason = self._reason(epoch, header, STIMULUS_ERROR)
        if reason:
            raise self.failure(STIMULUS_ERROR, epoch, reason)

    def _warn_of_doubts(self, epoch: int) -> None:
        uncertain = self._noise.uncertain(epoch)
        if uncertain is not None:
            self._warn(f"epoch {uncertain} cannot be recomputed: the noise of epoch {epoch}, "
                       "behind it, may be another one than was played")
        elif self._noise.precedes_the_file(epoch):
            self._warn(f"the noise of epoch {epoch} continues noise before the file's first: it is "
                       "as played if the recording program had computed none")

    @lazy
    def _noise(self) -> NoiseHistory:
        """What the noise of the file draws; a damaged epoch may have drawn anything."""
        shares = [self._share(epoch, place) for epoch, place in enumerate(self.places)]
        return NoiseHistory([share for share in shares if share.draws or not share.certain])

    def _share(self, epoch: int, place: Place) -> Share:
        if place.header is None:
            return Share(epoch, [], certain=False)
        header = from_bytes(EpochHeader, place.header)
        if not DRAWING.isdisjoint(header.stimType[:header.sequenceLength]):
            return share_of(epoch, self.stimuli(epoch, header), self.header.version,
                            header.epochPoints)
        return Share(epoch, [])

    def channel(self, epoch: int, word: int, entry: int, direction: str) -> int:
        """Number of the input or output that a sequence word names; -1 if it names none.

        The library reads the epoch for this, so a word is asked about only once.
        """
        if (direction, word) not in self._channels:
            channel = ctypes.c_int32(-1)
            with reading(self.file) as lib:
                result = self._ask(lib, f"ITCGet{direction}Chan", epoch, entry,
                                   ctypes.byref(channel))
            if result not in (0, BAD_ARGUMENT):
                raise self.failure(result, epoch)
            self._channels[direction, word] = channel.value
        return self._channels[direction, word]

    def stimuli(self, epoch: int, header: EpochHeader) -> tuple[Stimulus, ...]:
        """The stimulus record of each sequence entry."""
        with reading(self.file) as lib:
            self._point(lib, epoch)
            slots = (ctypes.c_void_p * 4).in_dll(lib.functions, "StmParameters")
            records = [_stimulus(header.stimType[entry], slots[entry])
                       for entry in range(header.sequenceLength)]
            for entry, record in enumerate(records):
                if isinstance(record, DynamicClamp):
                    records[entry] = self._with_conductances(lib, epoch, entry, record, header)
        return tuple(records)

    def _with_conductances(self, lib: Library, epoch: int, entry: int, record: DynamicClamp,
                           header: EpochHeader) -> DynamicClamp:
        """The record with its arrays, which the library itself finds behind a single entry only.

        Reading an entry's parameters leaves the file behind its arrays.
        """
        free_slots(lib)
        lib.seek(self.places[epoch].offset)
        lib.read_epoch_header(self.header.version)
        for each in range(entry + 1):
            lib.ITCReadStmParams(each)
        lib.seek(lib.tell() - 8 * header.epochPoints)
        arrays = [self._conductance(lib, epoch, header.epochPoints) for _ in range(2)]
        return DynamicClamp(record.excitatoryReversal, record.inhibitoryReversal, *arrays)

    def _conductance(self, lib: Library, epoch: int, points: int) -> Conductance:
        values = np.empty(points, dtype=np.float32)
        if not lib.read_floats(values.ctypes.data_as(ctypes.c_void_p), points):
            raise self.failure(FILE_ERROR, epoch)
        return values


def _stimulus(code: int, address: int | None) -> Stimulus:
    """A copy of a stimulus record and, for a sum, of its components."""
    if code != Summed.type or address is None:
        return from_address(TYPES[code], address or 0)
    summed = from_address(SummedRecord, address)
    return Summed(tuple(_stimulus(summed.componentType[each], summed.components[each])
                        for each in range(summed.count)))


def is_computed(stimulus: Stimulus) -> bool:
    """Whether the library can compute the waveform."""
    if isinstance(stimulus, Summed):
        return all(is_computed(each) for each in stimulus.components)
    return stimulus.computed
