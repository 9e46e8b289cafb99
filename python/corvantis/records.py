"""The fields of headers and stimulus records, as the library tells them, and classes made of them.

Nothing about the format stands here: the classes are made when they are first asked for.
"""
from __future__ import annotations

import ctypes
import struct
from collections.abc import Mapping
from dataclasses import dataclass, field, make_dataclass
from functools import cache
from typing import TYPE_CHECKING, Any

from .interface import (EPOCH_HEADER, FILE_HEADER, FLOAT, INT8, INT32, TEXT, UINT16, UINT32,
                        FieldRecord)
from .library import library

FORMATS = {INT8: "b", UINT16: "H", INT32: "i", UINT32: "I", FLOAT: "f"}


def decode(text: bytes) -> str:
    """A text of a record, made fit for a screen by the library."""
    room = ctypes.create_string_buffer(3 * len(text) + 1)
    library().CorvantisText(text, len(text), room, len(room))
    return room.value.decode("utf-8", "replace")


@dataclass(frozen=True)
class Field:
    """One field of a record.

    Attributes:
        unit: such as "mV"; empty for a number as it stands.
        kind, size, count, place: as in the C interface.
        by_entry: whether its elements go by the entries of the channel sequence.
        address: of the library's own description.
    """

    name: str
    unit: str
    meaning: str
    kind: int
    size: int
    count: int
    place: int
    by_entry: bool
    address: int

    @property
    def format(self) -> str:
        """Format of one element, for `struct`."""
        return FORMATS.get(self.kind, f"{self.size}s")

    @property
    def explanation(self) -> str:
        """Meaning and unit."""
        return f"{self.meaning} [{self.unit}]" if self.unit else self.meaning

    def value(self, block: bytes) -> Any:
        """The field of a record: a number or text, or a tuple of several."""
        values: tuple[Any, ...] = struct.unpack_from("=" + self.format * self.count, block,
                                                     self.place)
        if self.kind == TEXT:
            values = tuple(map(decode, values))
        return values if self.count > 1 else values[0]

    @property
    def type(self) -> Any:
        """Type of `value`."""
        one = {TEXT: str, FLOAT: float}.get(self.kind, int)
        return tuple[one, ...] if self.count > 1 else one   # type: ignore[valid-type]


@cache
def fields_of(record: int) -> Mapping[str, Field]:
    """The fields of a record by name: of a header, or of a stimulus type."""
    first, count = ctypes.POINTER(FieldRecord)(), ctypes.c_int32()
    library().CorvantisFields(record, ctypes.addressof(first), ctypes.addressof(count))
    return {each.name.decode(): Field(each.name.decode(), each.unit.decode(),
                                      each.meaning.decode(), each.kind, each.size, each.count,
                                      each.place, bool(each.isByEntry), ctypes.addressof(each))
            for each in first[:count.value]}


@dataclass(frozen=True)
class Record:
    """A header or a stimulus; `help()` of its class names the fields."""

    if TYPE_CHECKING:
        def __getattr__(self, name: str) -> Any: ...


def values_of(record: int, block: bytes) -> dict[str, Any]:
    """All fields of a record by name."""
    return {name: each.value(block) for name, each in fields_of(record).items()}


def record_class(name: str, base: type[Any], fields: Mapping[str, Field], text: str,
                 members: Mapping[str, Any]) -> type[Any]:
    """A frozen dataclass with these fields; `members` are of the class itself."""
    lines = [f"    {each.name}: {each.explanation}" for each in fields.values()]
    explained = "\n".join([text, "", "Attributes:", *lines] if lines else [text])
    typed = [(each.name, each.type, field(metadata={"unit": each.unit, "meaning": each.meaning}))
             for each in fields.values()]
    return make_dataclass(name, typed, bases=(base,), frozen=True,
                          namespace={"__doc__": explained, **members})


HEADERS = {"FileHeader": (FILE_HEADER, "Header of the data file."),
           "EpochHeader": (EPOCH_HEADER, "Header of one epoch; tuples of four are by entry.")}


@cache
def _header_class(name: str) -> type[Record]:
    record, text = HEADERS[name]
    return record_class(name, Record, fields_of(record), text, {"__module__": __name__})


def header(name: str, block: bytes) -> Record:
    """A header from its bytes."""
    return _header_class(name)(**values_of(HEADERS[name][0], block))


def __getattr__(name: str) -> type[Record]:
    """`FileHeader` and `EpochHeader`."""
    if name not in HEADERS:
        raise AttributeError(f"{__name__} has no {name!r}")
    return _header_class(name)
