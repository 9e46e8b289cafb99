"""An empty metadata file with comments, made of the schema."""
from __future__ import annotations

import json
import textwrap
from collections.abc import Iterator, Mapping
from typing import Any

from .metadata import schema

WIDTH = 92
FILL_IN = '"???"'
HEAD = """\
What you know of your recordings and the files do not say, for `corvantis nwb`. Fill in every ???; \
what stands behind a # is optional: take the # away where you have something to say. Nothing is \
guessed by the program."""
NEEDED = {"NWB": "NWB cannot do without.", "DANDI": "DANDI wants it."}


def _comment(text: str, indent: str = "") -> Iterator[str]:
    yield from textwrap.wrap(text, WIDTH, initial_indent=f"{indent}# ",
                             subsequent_indent=f"{indent}# ")


def _whole(part: Mapping[str, Any]) -> dict[str, Any]:
    """A part of the schema with what it refers to; its own description goes before that one's."""
    if "$ref" not in part:
        return dict(part)
    return {**schema()["$defs"][part["$ref"].rsplit("/", 1)[-1]], **part}


def _flow(value: Any) -> str:
    """A value on one line, as YAML and JSON both have it."""
    return json.dumps(value, ensure_ascii=False)


def _about(part: Mapping[str, Any]) -> str:
    """What a key is for; what is not needed shows its example where its value goes."""
    shown = "examples" in part and "needed" in part
    example = f" Such as {_flow(part['examples'][0])}." if shown else ""
    text = f"{part.get('description', '')}.".lstrip(".").strip()
    text = text[:1].upper() + text[1:]
    return f"{text}{example} {NEEDED.get(part.get('needed', ''), '')}".strip()


def _lines(parts: Mapping[str, Any], indent: str = "") -> Iterator[str]:
    for name, reference in parts.items():
        part = _whole(reference)
        needed = "needed" in part or name == "cell_id"
        if not indent:
            yield ""
        about = _about({**part, "needed": part.get("needed", "DANDI")} if needed else part)
        yield from _comment(about, indent) if about else ()
        inner = part.get("properties")
        if inner and any("needed" in _whole(each) or key == "cell_id"
                         for key, each in inner.items()):
            yield f"{indent}{name}:"
            yield from _lines(inner, indent + "  ")
        elif needed:
            yield f"{indent}{name}: {FILL_IN}"
        else:
            example = part.get("examples", ["..."])[0]
            example = {key: "..." for key in inner} if inner else example
            yield f"{indent}# {name}: {_flow(example)}"


def template() -> str:
    """The text of a metadata file to fill in."""
    known = schema()
    lines = [*_comment(HEAD), *_lines(known["$defs"]["settings"]["properties"]), "",
             *_comment(known["properties"]["files"]["description"] + "."),
             "# files:", '#   - pattern: "2026-11-23_cell3*.dat"',
             '#     session_start_time: "2026-11-23T10:30:00+01:00"',
             '#     electrode: {"cell_id": "3"}']
    return "\n".join([*lines, ""])
