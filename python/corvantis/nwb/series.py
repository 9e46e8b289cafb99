"""Series of a plan as groups in a file: the first of each form through pynwb, the others like it.

pynwb takes about 4 ms for a series, which is 8 s for 1,000 epochs with their stimuli. So it writes
one of each form (type, side, electrode), and the others are written with h5py as groups with the
same members: what a series looks like is known to pynwb alone. docs/nwb.md has the figures.
"""
from __future__ import annotations

import uuid
from collections.abc import Mapping, Sequence
from typing import Any

import h5py
import numpy as np
import pynwb
from hdmf.backends.hdf5 import H5DataIO

from .plan import Series

Form = tuple[str, str, "int | None"]
TEXT, ANY_SPACE = h5py.h5t.py_create(h5py.string_dtype(), logical=True), h5py.h5s.SCALAR
PRESENTATION = {"acquisition": "acquisition", "stimulus": "stimulus/presentation"}
LARGEST_CHUNK = 1 << 16     # [samples]
DATA_ATTRIBUTES = "conversion", "offset", "resolution", "unit"


def storage(points: int) -> dict[str, Any]:
    """How the data of a series are stored: stimuli shrink to little, responses to two thirds."""
    return {"compression": "gzip", "compression_opts": 1, "shuffle": True,
            "chunks": (min(points, LARGEST_CHUNK),)}


def form(series: Series) -> Form:
    """What series have in common that differ in values alone."""
    return series.kind, series.group, series.electrode


def path_in_file(series: Series) -> str:
    """Where a series stands."""
    return f"/{PRESENTATION[series.group]}/{series.name}"


def as_object(series: Series, electrodes: Mapping[int, Any]) -> Any:
    """A series as pynwb's object."""
    kind = getattr(pynwb.icephys, series.kind, None) or getattr(pynwb, series.kind)
    more: dict[str, Any] = {"unit": series.unit} if series.electrode is None else {
        "electrode": electrodes[series.electrode], "sweep_number": np.uint32(series.epoch),
        "stimulus_description": series.stimulus_description,
        **({} if series.gain is None else {"gain": series.gain})}
    return kind(name=series.name, data=H5DataIO(series.read(), **storage(series.points)),
                conversion=series.conversion, resolution=series.resolution, rate=series.rate,
                starting_time=series.start, description=series.description,
                comments=series.comments, **more)


class Pattern:
    """A series in a file, and how to write others like it."""

    def __init__(self, group: h5py.Group) -> None:
        self._attributes = dict(group.attrs)
        self._data = dict(group["data"].attrs)
        self._times = dict(group["starting_time"].attrs)
        self._links = {name: link for name in group
                       if isinstance(link := group.get(name, getlink=True), h5py.SoftLink)}
        self._values = [name for name in group if name not in self._links and
                        name not in ("data", "starting_time")]

    def write(self, parent: h5py.Group, series: Series) -> None:
        """Write a series of the same form."""
        group = parent.create_group(series.name)
        own = {"object_id": str(uuid.uuid4()), "sweep_number": np.uint32(series.epoch)}
        _set(group, {name: own.get(name, getattr(series, name, value))
                     for name, value in self._attributes.items()})
        data = group.create_dataset("data", data=series.read(), **storage(series.points))
        _set(data, {name: getattr(series, name, value) for name, value in self._data.items()})
        times = group.create_dataset("starting_time", data=series.start)
        _set(times, {**self._times, "rate": series.rate})
        for name in self._values:
            group.create_dataset(name, data=getattr(series, name))
        for name, link in self._links.items():
            group[name] = link


def _set(thing: h5py.Group | h5py.Dataset, values: Mapping[str, Any]) -> None:
    """Scalar attributes, four times as fast as `thing.attrs[name] = value`."""
    space = h5py.h5s.create(ANY_SPACE)
    for name, value in values.items():
        is_text = isinstance(value, str)
        array = np.asarray(value, dtype=object if is_text else None)
        kind = TEXT if is_text else h5py.h5t.py_create(array.dtype)
        h5py.h5a.create(thing.id, name.encode(), kind, space).write(array)


def write_like(file: h5py.File, patterns: Mapping[Form, Series], series: Sequence[Series]) -> None:
    """Write the series that are not in the file yet, each like the one of its form."""
    known = {each: Pattern(file[path_in_file(first)]) for each, first in patterns.items()}
    there = {first.name for first in patterns.values()}
    for each in series:
        if each.name not in there:
            known[form(each)].write(file[PRESENTATION[each.group]], each)
