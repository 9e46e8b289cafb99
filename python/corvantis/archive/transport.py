"""Tables as bytes, for other processes and for files that are written once."""
from __future__ import annotations

import pyarrow as pa

OPTIONS = pa.ipc.IpcWriteOptions(compression="lz4")


def to_bytes(*tables: pa.Table) -> bytes:
    """Tables, one behind the other."""
    sink = pa.BufferOutputStream()
    for table in tables:
        with pa.ipc.new_stream(sink, table.schema, options=OPTIONS) as writer:
            writer.write_table(table)
    return bytes(sink.getvalue())


def from_bytes(data: bytes | pa.Buffer, count: int = 1) -> list[pa.Table]:
    """So many tables."""
    source = pa.BufferReader(data)
    return [pa.ipc.open_stream(source).read_all() for _ in range(count)]
