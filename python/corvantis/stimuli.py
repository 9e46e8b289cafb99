"""Stimulus records: levels in DAC codes, lengths in samples, fields named as in the C interface.

There is a class for each type that the library knows, named like it: `Pulse`, `SegmentedNoise` and
so on; `ALL` are all of them, `TYPES` by code. A sum has its `components` for fields. A dynamic
clamp has its conductances, too: `excitatory` and `inhibitory`, shape (points,) [nS].
"""
from __future__ import annotations

import ctypes
from collections.abc import Mapping
from dataclasses import dataclass, field, make_dataclass, replace
from functools import cache
from typing import Any, ClassVar

import numpy as np
from numpy.typing import NDArray

from .handle import Function, Handle
from .interface import EXCITATORY, INHIBITORY, OWN_RECORD, StimulusRecord, TypeInfo
from .library import library
from .records import Record, fields_of, record_class, values_of

Conductance = NDArray[np.float32]


@dataclass(frozen=True)
class Stimulus(Record):
    """What every stimulus has."""

    type: ClassVar[int]         #: code
    name: ClassVar[str]
    computed: ClassVar[bool]    #: whether its waveform can be computed from the file
    caveat: ClassVar[str]       #: why what is computed is not what was played, or empty


@dataclass(frozen=True)
class Unreadable(Stimulus):
    """A stimulus whose record is not in the file, or behind one of unknown length."""

    type, name, computed, caveat = 0, "unreadable", False, "its record cannot be read"


def _more(name: str, kind: Any) -> tuple[str, Any, Any]:
    return name, kind, field(default=None, compare=False, repr=False)


# Of these the library gives more than a record.
_CONDUCTANCES = [_more("excitatory", "Conductance | None"),
                 _more("inhibitory", "Conductance | None")]
_COMPONENTS = [("components", "tuple[Stimulus, ...]", field())]


def _class_of(code: int, info: TypeInfo) -> type[Stimulus]:
    words = info.name.decode()
    name = "".join(word.capitalize() for word in words.split())
    members = {"__module__": __name__, "type": code, "name": words,
               "computed": bool(info.isComputed), "caveat": info.caveat.decode()}
    known = {} if name == "Summed" else fields_of(code)
    made = record_class(name, Stimulus, known, f"A {words} stimulus.", members)
    more = {"Summed": _COMPONENTS, "DynamicClamp": _CONDUCTANCES}.get(name)
    return made if more is None else make_dataclass(
        name, more, bases=(made,), frozen=True,
        namespace={"__doc__": made.__doc__, "__module__": __name__})


@cache
def _types() -> Mapping[int, type[Stimulus]]:
    """The class of each type, by code."""
    made: dict[int, type[Stimulus]] = {}
    info = TypeInfo()
    while True:
        library().CorvantisType(len(made) + 1, ctypes.addressof(info))
        if info.name == b"unknown":
            return made
        made[len(made) + 1] = _class_of(len(made) + 1, info)


@cache
def _names() -> Mapping[str, Any]:
    types = _types()
    return {"TYPES": types, "ALL": tuple(types.values()),
            **{each.__name__: each for each in types.values()}}


def __getattr__(name: str) -> Any:
    """The class of a stimulus type."""
    if name.startswith("_") or name not in _names():
        raise AttributeError(f"{__name__} has no {name!r}")
    return _names()[name]


def __dir__() -> list[str]:
    return [*globals(), *_names()]


def is_computed(stimulus: Stimulus) -> bool:
    """Whether the waveform can be computed from the file."""
    return stimulus.computed and all(map(is_computed, getattr(stimulus, "components", ())))


def has_conductances(stimulus: Stimulus) -> bool:
    """Whether it is a dynamic clamp with the conductances that it was given."""
    return getattr(stimulus, "excitatory", None) is not None


def _record(handle: Handle, epoch: int, entry: int, component: int) -> StimulusRecord:
    record = StimulusRecord()
    handle.call(handle.library.CorvantisParameters, epoch, entry, component,
                ctypes.addressof(record))
    return record


def _conductance(handle: Handle, epoch: int, entry: int, which: int, points: int) -> Conductance:
    values = np.empty(points, dtype=np.float32)
    if points:
        handle.call(handle.library.CorvantisConductance, epoch, entry, which, 0, points,
                    values.ctypes.data)
    return values


def read_stimulus(handle: Handle, epoch: int, entry: int,
                  component: int = OWN_RECORD) -> Stimulus:
    """The stimulus of a sequence entry, or a component of a sum; without conductances."""
    record = _record(handle, epoch, entry, component)
    kind: Any = _types().get(record.type)
    made: Stimulus
    if kind is None or not record.isThere and fields_of(record.type):
        return Unreadable()
    if kind is _names()["Summed"]:
        made = kind(tuple(read_stimulus(handle, epoch, entry, each)
                          for each in range(record.components)))
    else:
        made = kind(**values_of(record.type, bytes(record.record)))
    return made


def read_json(handle: Handle, epoch: int, entry: int) -> str:
    """The parameters of a sequence entry's stimulus as JSON."""
    return _text(handle, handle.library.CorvantisStimulusJson, epoch, entry)


def read_words(handle: Handle, epoch: int, entry: int) -> str:
    """The stimulus of a sequence entry in words."""
    return _text(handle, handle.library.CorvantisStimulusWords, epoch, entry)


def _text(handle: Handle, function: Function, epoch: int, entry: int) -> str:
    length = ctypes.c_int64()
    handle.ask(function, epoch, entry, None, 0, ctypes.addressof(length), None)
    room = ctypes.create_string_buffer(length.value + 1)
    handle.call(function, epoch, entry, room, len(room), ctypes.addressof(length))
    return room.value.decode()


def with_conductances(handle: Handle, epoch: int, entry: int, points: int,
                      stimulus: Stimulus) -> Stimulus:
    """A dynamic clamp with its conductances; any other stimulus as it is."""
    if not isinstance(stimulus, _names()["DynamicClamp"]):
        return stimulus
    complete: Stimulus = replace(stimulus, **{
        name: _conductance(handle, epoch, entry, which, points)
        for name, which in (("excitatory", EXCITATORY), ("inhibitory", INHIBITORY))})
    return complete
