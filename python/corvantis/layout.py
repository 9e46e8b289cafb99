"""Records that are declared once: the C layout and the conversion follow from the annotations."""
from __future__ import annotations

import ctypes
from typing import Annotated, Any, TypeVar, get_type_hints

from .text import decode

Int8 = Annotated[int, ctypes.c_int8]
Int32 = Annotated[int, ctypes.c_int32]
UInt16 = Annotated[int, ctypes.c_uint16]
Float = Annotated[float, ctypes.c_float]
Int8s4 = Annotated[tuple[int, ...], ctypes.c_int8 * 4]
Int8s256 = Annotated[tuple[int, ...], ctypes.c_int8 * 256]
Int32s3 = Annotated[tuple[int, ...], ctypes.c_int32 * 3]
Int32s4 = Annotated[tuple[int, ...], ctypes.c_int32 * 4]
UInt16s4 = Annotated[tuple[int, ...], ctypes.c_uint16 * 4]
UInt32 = Annotated[int, ctypes.c_uint32]
UInt32s4 = Annotated[tuple[int, ...], ctypes.c_uint32 * 4]
Floats4 = Annotated[tuple[float, ...], ctypes.c_float * 4]
Floats24 = Annotated[tuple[float, ...], ctypes.c_float * 24]
Pointers256 = Annotated[tuple[int | None, ...], ctypes.c_void_p * 256]
Comment = Annotated[str, ctypes.c_char * 512]
Units4 = Annotated[tuple[str, ...], (ctypes.c_char * 16) * 4]

Record = TypeVar("Record")


_structures: dict[type[Any], type[ctypes.Structure]] = {}


def structure_of(record: type[Any]) -> type[ctypes.Structure]:
    """The C structure of a record: its annotated fields in order, aligned as C aligns them."""
    if record not in _structures:
        _structures[record] = _new_structure(record)
    return _structures[record]


def _new_structure(record: type[Any]) -> type[ctypes.Structure]:
    hints = get_type_hints(record, include_extras=True)
    fields = [(name, hint.__metadata__[0]) for name, hint in hints.items()
              if hasattr(hint, "__metadata__")]
    return type(record.__name__, (ctypes.Structure,), {"_fields_": fields})


def _python_value(value: Any) -> Any:
    if isinstance(value, bytes):
        return decode(value)
    if not isinstance(value, ctypes.Array):
        return value
    if issubclass(value._type_, ctypes.Array):
        return tuple(decode(text.value) for text in value)
    return tuple(value)


def _convert(record: type[Record], memory: ctypes.Structure) -> Record:
    names = (field[0] for field in structure_of(record)._fields_)
    return record(**{name: _python_value(getattr(memory, name)) for name in names})


def from_address(record: type[Record], address: int) -> Record:
    """A copy of the record that stands at an address of this process."""
    return _convert(record, structure_of(record).from_address(address))


def from_bytes(record: type[Record], block: bytes) -> Record:
    """A record from a copy of its bytes in memory."""
    return _convert(record, structure_of(record).from_buffer_copy(block))
