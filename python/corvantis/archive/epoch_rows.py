"""A recording's epochs as rows of the catalogue: whole columns at a time."""
from __future__ import annotations

from typing import Any

import numpy as np
import pyarrow as pa

from ..columns import MISSING, read_bytes
from ..descriptions import Description, describe
from ..interface import EPOCH_HEADER, NOT_COMPUTED, TEXT, DoubtReason, Subject
from ..recording import Recording
from ..records import Field, decode, fields_of
from .columns import TYPES, arrow_type, epochs_schema


def camel(name: str) -> str:
    """REASON_OF_DOUBT as reasonOfDoubt."""
    first, *others = name.lower().split("_")
    return first + "".join(word.capitalize() for word in others)


DOUBTS = {NOT_COMPUTED: "notComputed",
          **{each.value: camel(each.name) for each in DoubtReason if each}}


def _lists(flat: pa.Array, lengths: Any, missing: Any) -> pa.Array:
    """Lists of these lengths out of what follows one another."""
    ends = np.concatenate([[0], np.cumsum(lengths)]).astype(np.int32)
    mask = pa.array(missing) if missing.any() else None
    return pa.ListArray.from_arrays(pa.array(ends), flat, mask=mask)


def _decoded(field: Field, row: bytes, count: int) -> Any:
    texts = [decode(row[place:place + field.size])
             for place in range(0, count * field.size, field.size)]
    return texts if field.count > 1 else texts[0]


def _texts(field: Field, values: Any, entries: Any) -> pa.Array:
    """Texts of each epoch, or lists of them; what occurs more than once is decoded once."""
    counts = entries.tolist() if field.count > 1 else [1] * len(values)
    width = field.size * field.count
    block = np.ascontiguousarray(values).tobytes()
    keys = [(block[at:at + width], count)
            for at, count in zip(range(0, len(block), width), counts)]
    known = {key: number for number, key in enumerate(dict.fromkeys(keys))}
    every = pa.array([_decoded(field, *key) for key in known], arrow_type(field))
    return every.take(pa.array([known[key] for key in keys], pa.int32()))


def _column(field: Field, values: Any, entries: Any, missing: Any) -> pa.Array:
    """A header field; of those by entry, those that the epoch has."""
    if field.kind == TEXT:
        return _texts(field, values, entries)
    if field.count == 1:
        return pa.array(np.ascontiguousarray(values), TYPES[field.kind])
    lengths = entries if field.by_entry else np.full(len(values), field.count)
    chosen = values[np.arange(field.count) < lengths[:, np.newaxis]]
    return _lists(pa.array(chosen, TYPES[field.kind]), lengths, missing)


def _said(description: Description, subject: Subject) -> pa.Array:
    """Texts of one subject, none where nothing is to be said."""
    text, ends = description.texts[subject]
    starts = np.concatenate([[0], ends]).astype(np.int64)
    texts = pa.LargeStringArray.from_buffers(len(ends), pa.py_buffer(starts), pa.py_buffer(text))
    nothing = pa.array(np.diff(starts) == 0)
    return pa.compute.if_else(nothing, None, texts).cast(pa.string())


def _by_entry(values: Any, entries: Any, missing: Any) -> pa.Array:
    chosen = values[np.arange(values.shape[1]) < entries[:, np.newaxis]]
    return _lists(pa.array(chosen), entries, missing)


def _without(column: Any, missing: Any) -> Any:
    """The column, with nothing where epochs are damaged."""
    return pa.compute.if_else(pa.array(missing), None, column) if missing.any() else column


def epoch_rows(recording: Recording, file: str) -> pa.Table:
    """Rows of all epochs of a recording, which is called so in the catalogue.

    Raises:
        CorvantisError: if the file cannot be read to its end.
    """
    fields = list(fields_of(EPOCH_HEADER).values())
    header = read_bytes(recording.handle, fields, 0, None)
    description = describe(recording.handle, list(Subject))
    infos, missing = description.infos, description.missing | header[MISSING]
    entries, count = infos["entries"], len(infos)
    made = {each.name: _column(each, header[each.name], entries, missing) for each in fields}
    made |= {name: pa.array(np.ascontiguousarray(infos[name]))
             for name in ("start", "samples", "end", "points", "entries", "digest")}
    made |= {name: _by_entry(infos[name], entries, missing) for name in ("inputs", "outputs")}
    reasons = pa.array([DOUBTS.get(reason) for reason in description.doubts.tolist()], pa.string())
    said = {"stimulus": Subject.STIMULUS, "stimulusJson": Subject.JSON,
            "doubtText": Subject.DOUBT}
    made |= {"doubt": reasons, **{name: _said(description, each) for name, each in said.items()}}
    columns = {name: _without(column, missing) for name, column in made.items()}
    columns |= {"file": pa.repeat(file, count), "epoch": pa.array(np.arange(count)),
                "problem": _said(description, Subject.DAMAGE)}
    return pa.table([columns[name] for name in epochs_schema().names], schema=epochs_schema())
