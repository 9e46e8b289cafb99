"""The columns of a catalogue: what stands in them, and of which type they are.

Header fields are told by the library, with their names and meanings.
"""
from __future__ import annotations

from functools import cache

import pyarrow as pa

from ..interface import EPOCH_HEADER, FILE_HEADER, FLOAT, INT8, INT32, TEXT, UINT16, UINT32
from ..records import Field, fields_of

TYPES = {INT8: pa.int8(), UINT16: pa.uint16(), INT32: pa.int32(), UINT32: pa.uint32(),
         FLOAT: pa.float32(), TEXT: pa.string()}
MEANING = b"meaning"

FINDING = pa.struct([("offset", pa.int64()), ("epoch", pa.int64()), ("weight", pa.string()),
                     ("place", pa.string()), ("found", pa.string()), ("expected", pa.string())])

OF_FILES = [
    ("file", pa.string(), "path from the root, with /"),
    ("size", pa.int64(), "[bytes]"),
    ("modified", pa.timestamp("ns", "UTC"), "time of the last modification, where it is known"),
    ("tag", pa.string(), "what a server calls this version of the file, else empty"),
    ("sha256", pa.string(), "of its bytes, if it was asked for"),
    ("epochs", pa.int64(), "how many it counts, damaged ones included"),
    ("damagedEpochs", pa.int64(), "how many of these cannot be read"),
    ("found", pa.string(), "how its epochs were found: table or walk"),
    ("isClean", pa.bool_(), "no finding but notes"),
    ("findings", pa.list_(FINDING), "of the check, by their offsets; as in docs/json.md"),
    ("problem", pa.string(), "why it cannot be read, else null"),
]
BEHIND_FILES = [
    ("tablePosition", pa.int64(), "where its table of positions is or would be [bytes]"),
    ("digest", pa.uint64(), "of its header, by which it is known again"),
]
OF_EPOCHS = [
    ("file", pa.string(), "path from the root, with /"),
    ("epoch", pa.int64(), "number in the file, from 0"),
    ("problem", pa.string(), "what is wrong with a damaged epoch, whose other columns are null"),
    ("start", pa.int64(), "where its header begins [bytes]"),
    ("samples", pa.int64(), "where its samples begin [bytes]"),
    ("end", pa.int64(), "behind its samples [bytes]"),
    ("points", pa.int32(), "of each entry [samples]"),
    ("entries", pa.int32(), "of the channel sequence"),
    ("inputs", pa.list_(pa.int32()), "of each entry: 0 to 7, 8 the digital port"),
    ("outputs", pa.list_(pa.int32()), "of each entry: 0 to 3, 4 the digital port"),
    ("stimulus", pa.string(), "in words, entries separated by |"),
    ("stimulusJson", pa.string(), "an item an entry, as stimulus in docs/recording.schema.json"),
    ("doubt", pa.string(), "why it may not be what was played, as in docs/json.md; notComputed"),
    ("doubtText", pa.string(), "the same in words"),
]
BEHIND_EPOCHS = [("digest", pa.uint64(), "of its header, by which it is known again")]


def arrow_type(field: Field) -> pa.DataType:
    """Type of a header field's column; several elements are a list."""
    one = TYPES[field.kind]
    return pa.list_(one) if field.count > 1 else one


def _schema(front: list[tuple[str, pa.DataType, str]], record: int,
            back: list[tuple[str, pa.DataType, str]]) -> pa.Schema:
    fields = [(each.name, arrow_type(each), each.explanation)
              for each in fields_of(record).values()]
    return pa.schema([pa.field(name, kind, metadata={MEANING: text.encode()})
                      for name, kind, text in [*front, *fields, *back]])


@cache
def files_schema() -> pa.Schema:
    """Of the table of files."""
    return _schema(OF_FILES, FILE_HEADER, BEHIND_FILES)


@cache
def epochs_schema() -> pa.Schema:
    """Of the table of epochs; lists by entry have as many elements as the epoch has entries."""
    return _schema(OF_EPOCHS, EPOCH_HEADER, BEHIND_EPOCHS)
