"""Fields of many epochs' headers as one array."""
from __future__ import annotations

import ctypes
from collections.abc import Mapping, Sequence
from typing import Any

import numpy as np

from .handle import Handle
from .interface import EPOCH_HEADER, TEXT, Column
from .records import Field, decode, fields_of

MISSING = "missing"


def _fields(names: Sequence[str]) -> list[Field]:
    known = fields_of(EPOCH_HEADER)
    unknown = [name for name in names if name not in known]
    if unknown:
        raise KeyError(f"an epoch's header has no {unknown[0]!r}")
    return [known[name] for name in dict.fromkeys(names or known)]


def _type(fields: Sequence[Field], texts: Mapping[str, str]) -> np.dtype[Any]:
    """Type of a row; `texts` are the formats of those fields that are texts."""
    return np.dtype([(each.name, texts.get(each.name, each.format),
                      (each.count,) if each.count > 1 else ())
                     for each in fields] + [(MISSING, "?")])


def _decoded(texts: Any) -> Any:
    """Texts instead of bytes; each that occurs is decoded once."""
    known = {text: decode(text) for text in set(texts.ravel().tolist())}
    decoded = [known[text] for text in texts.ravel().tolist()]
    return np.array(decoded, dtype="U").reshape(texts.shape) if decoded else texts.astype("U1")


def _with_texts(rows: Any, fields: Sequence[Field]) -> Any:
    texts = {each.name: _decoded(rows[each.name]) for each in fields if each.kind == TEXT}
    if not texts:
        return rows
    wider = np.empty(len(rows), _type(fields, {name: text.dtype.str
                                               for name, text in texts.items()}))
    for name in rows.dtype.names:
        wider[name] = texts.get(name, rows[name])
    return wider


def read_bytes(handle: Handle, fields: Sequence[Field], first: int, count: int | None) -> Any:
    """As `read_columns`, with texts as the bytes that they are in the file."""
    epochs = handle.epochs()
    count = max(epochs - first, 0) if count is None else count
    if not 0 <= first <= first + count <= epochs:
        raise IndexError(f"no epochs {first} to {first + count}: the file has {epochs}")
    rows = np.zeros(count, _type(fields, {each.name: f"S{each.size}" for each in fields
                                          if each.kind == TEXT}))
    missing = np.zeros(count, np.uint8)
    if count:
        columns = (Column * len(fields))(*(
            Column(each.address, rows[each.name].ctypes.data, rows.dtype.itemsize)
            for each in fields))
        handle.call(handle.library.CorvantisColumns, first, count, ctypes.addressof(columns),
                    len(fields), missing.ctypes.data)
    rows[MISSING] = missing
    return rows


def read_columns(handle: Handle, names: Sequence[str], first: int, count: int | None) -> Any:
    """Fields of epochs, in one pass over the file; see `Recording.columns`."""
    fields = _fields(names)
    return _with_texts(read_bytes(handle, fields, first, count), fields)
