"""Which random numbers the noise of earlier epochs drew, and drawing them again.

Three kinds of noise draw from the library's generators, which go on from one epoch to the next: a
seed below 0 continues whatever drew last, and of Gaussian deviates, made in pairs, the second one
begins the next noise. So an epoch's noise is right only behind the draws of those before it.
"""
from __future__ import annotations

import ctypes
from collections.abc import Iterable, Iterator, Sequence
from contextlib import contextmanager
from itertools import chain
from typing import NamedTuple

import numpy as np

from .layout import structure_of
from .library import Library, guarded
from .session import load_anew
from .stimuli import BinaryNoise, CirclePulse, Generic, Noise, SegmentedNoise, Stimulus, Summed

DRAWING = {Noise.type, SegmentedNoise.type, BinaryNoise.type, Summed.type}
LAST_VERSION_ON_PLATFORM = 4    # filtered noise of these files draws from the C library's rand

RESTARTING_WORD = -(1 << 31)    # the one seed below 0 whose negative is not above it


class Draws(NamedTuple):
    """The numbers that one noise draws: `kind` is BinaryNoise for uniform ones, SegmentedNoise for
    Gaussian ones, Noise for those of the older generator."""

    kind: type[Stimulus]
    seed: int
    number: int

    @property
    def restarts(self) -> bool:
        """Whether nothing before it matters to the uniform numbers."""
        return self.seed >= 0 or self.seed == RESTARTING_WORD


class Share(NamedTuple):
    """What an epoch draws; not certain if the library refuses it, or the application may have
    computed some of its stimuli itself, before or behind what is drawn."""

    epoch: int
    draws: list[Draws]
    certain: bool = True


def _draws(stimulus: Stimulus, version: int) -> list[Draws]:
    if isinstance(stimulus, (SegmentedNoise, BinaryNoise)):
        length = stimulus.segmentPoints
        segments = stimulus.points // length if length > 0 else 0
        return [Draws(type(stimulus), stimulus.seed, segments)]
    if not isinstance(stimulus, Noise):
        return []
    if version <= LAST_VERSION_ON_PLATFORM:
        total = stimulus.prePoints + stimulus.points + stimulus.tailPoints
        return [Draws(Noise, stimulus.seed, total)]
    # A transform has the smallest power of two above the points; without points nothing is drawn.
    length = 1 << stimulus.points.bit_length()
    return [Draws(SegmentedNoise, stimulus.seed, length)] if stimulus.points else []


def _fits(stimulus: Stimulus, points: int) -> bool:
    if not isinstance(stimulus, (Noise, SegmentedNoise, BinaryNoise)):
        return True
    total = stimulus.prePoints + stimulus.points + stimulus.tailPoints
    return 0 <= stimulus.points <= points and total <= points


def share_of(epoch: int, stimuli: Iterable[Stimulus], version: int, points: int) -> Share:
    """What an epoch with these stimuli draws, in the order in which they are computed."""
    records = list(chain.from_iterable(
        each.components if isinstance(each, Summed) else [each] for each in stimuli))
    fitting = [each for each in records if _fits(each, points)]
    draws = [draws for each in fitting for draws in _draws(each, version)]
    foreign = any(isinstance(each, (Generic, CirclePulse)) for each in records)
    return Share(epoch, draws, len(fitting) == len(records) and not (draws and foreign))


class NoiseHistory:
    """The noise of a file's epochs, computed once each and in their order."""

    def __init__(self, shares: Sequence[Share]) -> None:
        self.shares = shares
        self.places = {share.epoch: place for place, share in enumerate(shares)}
        self._starts = _starts(shares)

    def before(self, epoch: int) -> tuple[int, int]:
        """Places among the shares: of the first that the epoch's noise depends on, which is -1 for
        the loading of the library, and its own."""
        place = self.places[epoch]
        return self._starts[place], place

    def uncertain(self, epoch: int) -> int | None:
        """An earlier epoch whose share in this one's noise is not known."""
        start, place = self.before(epoch)
        earlier = self.shares[max(start, 0):place]
        return next((share.epoch for share in earlier if not share.certain), None)

    def precedes_the_file(self, epoch: int) -> bool:
        """Whether the noise continues what was drawn before the file's first epoch."""
        start, place = self.before(epoch)
        first = _first_uniform(chain.from_iterable(
            share.draws for share in self.shares[:place + 1]))
        return start < 0 and first is not None and not first.restarts


def _first_uniform(draws: Iterable[Draws]) -> Draws | None:
    return next((each for each in draws if each.kind is not Noise), None)


def _starts(shares: Sequence[Share]) -> list[int]:
    """For each share the last place from which on all that it depends on is known: no deviate is
    left over there, and the first uniform number is drawn from a restarted generator."""
    starts: list[int] = []
    settled = -1
    left: set[type[Stimulus]] | None = set()
    for place, share in enumerate(shares):
        first = _first_uniform(share.draws)
        begins = left == set() and (first is None or first.restarts)
        if begins and first is not None:
            settled = place
        starts.append(place if begins and share.draws else settled)
        odd = [draws.kind for draws in share.draws
               if draws.kind is not BinaryNoise and draws.number % 2]
        for kind in odd:
            left = left ^ {kind} if share.certain and left is not None else None
    return starts


class _Generators:
    """Behind which shares of which history the library's generators stand; None where that is not
    known. A new library's have no history."""

    at: tuple[NoiseHistory | None, int, int] | None = None, -1, 0


def _bring_to(history: NoiseHistory, epoch: int) -> tuple[int, int]:
    """Draw what was drawn before an epoch, as far as the library has not just done so; returns from
    which place on, and the epoch's own."""
    start, place = history.before(epoch)
    known, _Generators.at = _Generators.at, None
    if known is None or known[0] is not history or not known[1] <= start <= known[2] <= place:
        if start >= 0:
            with guarded() as lib:
                _forget_spare_deviates(lib)
        elif known is None or known[0] is not None:
            load_anew()
        known = history, start, max(start, 0)
    with guarded() as lib:
        for draws in chain.from_iterable(each.draws for each in history.shares[known[2]:place]):
            _draw(lib, draws)
    return known[1], place


@contextmanager
def behind(history: NoiseHistory, epoch: int) -> Iterator[None]:
    """The library's generators as they were before an epoch, which is to be computed within."""
    start, place = _bring_to(history, epoch)
    yield
    _Generators.at = history, start, place + 1


def _draw(lib: Library, draws: Draws) -> None:
    if draws.kind is Noise:
        lib.seed_random(ctypes.c_uint(draws.seed))
        draw = lib.V4ITCNormalDeviate
        for _ in range(draws.number):
            draw()
        return
    buffer = np.empty(draws.number, dtype=np.int16).ctypes
    record = structure_of(SegmentedNoise)(seed=draws.seed, points=draws.number, segmentPoints=1)
    getattr(lib, f"ITCStmCreate{draws.kind.__name__}")(
        buffer.data_as(ctypes.c_void_p), ctypes.byref(record))


def _forget_spare_deviates(lib: Library) -> None:
    """Drop Gaussian deviates left over from earlier noise, of either generator.

    A call that leaves its source of uniform numbers alone has handed out a left-over; any other
    has made one.
    """
    state = ctypes.c_int32(-1)
    lib.ITCNormalDeviate(ctypes.byref(state))
    if state.value != -1:
        lib.ITCNormalDeviate(ctypes.byref(state))
    lib.seed_random(1)
    first = lib.random()
    lib.seed_random(1)
    lib.V4ITCNormalDeviate()
    if lib.random() != first:
        lib.V4ITCNormalDeviate()
