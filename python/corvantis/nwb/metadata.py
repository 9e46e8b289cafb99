"""What a lab says of its recordings: checked against the schema, and put together for a file."""
from __future__ import annotations

import json
import math
import re
from collections.abc import Iterator, Mapping
from datetime import datetime
from fnmatch import fnmatchcase
from functools import cache
from pathlib import Path
from typing import Any, Union

import jsonschema

from ..epoch import Epoch
from ..lazy import lazy
from ..recording import Recording
from .documents import Document, MetadataError, load_document

SECONDS = {"s": 1.0, "ms": 1e-3, "us": 1e-6, "min": 60.0, "h": 3600.0}
UNKNOWN = "unknown"
Given = Union["Metadata", Mapping[str, Any], str, Path]


@cache
def schema() -> dict[str, Any]:
    """The schema of metadata files."""
    text = Path(__file__).with_name("metadata.schema.json").read_text(encoding="utf-8")
    loaded: dict[str, Any] = json.loads(text)
    return loaded


def zoned(text: str) -> datetime:
    """A date with time and zone.

    Raises:
        ValueError: if it is none.
    """
    moment = datetime.fromisoformat(text[:-1] + "+00:00" if text[-1:] in ("Z", "z") else text)
    if moment.tzinfo is None or "T" not in text.upper().replace(" ", "T"):
        raise ValueError("no zone or no time")
    return moment


def _is_zoned(value: object) -> bool:
    return not isinstance(value, str) or bool(zoned(value))


_formats = jsonschema.FormatChecker(formats=())
_formats.checks("zoned-date-time", raises=ValueError)(_is_zoned)


# ---- Errors ---------------------------------------------------------------------------------

def _shown(value: Any) -> str:
    if value is None:
        return "nothing"
    text = value if isinstance(value, str) else json.dumps(value, ensure_ascii=False)
    return repr(text if len(text) <= 60 else text[:57] + "...")


def _known(part: Mapping[str, Any]) -> list[str]:
    """The keys that a part of the schema names, those that it refers to included."""
    names = list(part.get("properties", ()))
    if "$ref" in part:
        names += _known(schema()["$defs"][part["$ref"].rsplit("/", 1)[-1]])
    return names


TYPES = {"string": "a text", "object": "keys with values, each on its line", "array": "a list"}


def _expected(error: Any) -> str:
    part = error.schema
    if "expected" in part:
        return str(part["expected"])
    if error.validator == "enum":
        return "one of " + ", ".join(error.validator_value)
    if error.validator == "type":
        return TYPES.get(error.validator_value, str(error.validator_value))
    return "something" if error.validator in ("minLength", "minItems") else str(error.message)


def _one(document: Document, error: Any) -> Iterator[str]:
    """An error of the schema as lines for people."""
    place = list(error.absolute_path)
    name = ".".join(map(str, place)) or "the file"
    if error.validator in ("additionalProperties", "unevaluatedProperties"):
        known = _known(error.schema)
        known = known or [each.strip("^$") for each in error.schema.get("patternProperties", ())]
        patterns = error.schema.get("patternProperties", ())
        for key in error.instance:
            if key not in known and not any(re.search(each, key) for each in patterns):
                yield (f"{document.where([*place, key])}: {name}: found the key {key}, "
                       f"expected one of {', '.join(known)}")
    elif error.validator == "required":
        missing = next(key for key in error.validator_value if key not in error.instance)
        yield f"{document.where(place)}: {name}: found no {missing}, expected it"
    else:
        yield (f"{document.where(place)}: {name}: found {_shown(error.instance)}, "
               f"expected {_expected(error)}")


def check(document: Document) -> None:
    """Hold a document against the schema.

    Raises:
        MetadataError: with a line for each thing that is not as it should be.
    """
    validator = jsonschema.Draft202012Validator(schema(), format_checker=_formats)
    errors = sorted(validator.iter_errors(document.value),
                    key=lambda each: document.line(list(each.absolute_path)) or 0)
    lines = [line for error in errors for line in _one(document, error)]
    if lines:
        raise MetadataError("\n".join(dict.fromkeys(lines)))


# ---- For a file -----------------------------------------------------------------------------

def _merged(below: Mapping[str, Any], above: Mapping[str, Any]) -> dict[str, Any]:
    both = dict(below)
    for key, value in above.items():
        old = both.get(key)
        mergeable = isinstance(value, Mapping) and isinstance(old, Mapping)
        both[key] = _merged(old, value) if mergeable else value     # type: ignore[arg-type]
    return both


class FileMetadata:
    """What is known of one recording.

    Attributes:
        values: by NWB's names, as the schema has them.
    """

    def __init__(self, values: Mapping[str, Any]) -> None:
        self.values = values

    @lazy
    def start(self) -> datetime:
        """When the session began."""
        return zoned(self.values["session_start_time"])

    @property
    def subject(self) -> Mapping[str, Any]:
        """The animal; empty if nothing is known."""
        return self.values.get("subject") or {}

    @property
    def modes(self) -> Mapping[int, str]:
        """What the amplifier's mode stands for, by code."""
        return {int(code): mode for code, mode in self.values.get("amplifier_modes", {}).items()}

    def electrode(self, channel: int) -> Mapping[str, Any]:
        """What is known of the electrode at an input."""
        return _merged(self.values.get("electrode", {}),
                       self.values.get("electrodes", {}).get(str(channel), {}))

    def seconds(self, epoch: Epoch) -> float:
        """Time of an epoch from the session's start [s]; not a number where nobody knows it."""
        meaning = self.values["epoch_time"]
        if meaning == UNKNOWN:
            return math.nan
        time, unit = float(epoch.epochTime), SECONDS[meaning["unit"]]
        if meaning["origin"] == "first_epoch":
            return (time - self._first(epoch.recording)) * unit
        if meaning["origin"] == "session_start":
            return time * unit
        return (zoned(meaning["origin"]) - self.start).total_seconds() + time * unit

    def _first(self, recording: Recording) -> float:
        times = recording.columns("epochTime")
        known: list[float] = times["epochTime"][~times["missing"]].tolist()
        return known[0]

    def lacking(self) -> list[str]:
        """What DANDI asks for and is not there."""
        parts = schema()["$defs"]["settings"]["properties"]
        lacking = [key for key, part in parts.items()
                   if part.get("needed") == "DANDI" and not self.values.get(key)]
        lacking += [f"subject.{key}" for key, part in parts["subject"]["properties"].items()
                    if part.get("needed") == "DANDI" and self.subject and key not in self.subject
                    and not (key == "age" and "date_of_birth" in self.subject)]
        if "electrode" not in lacking and "cell_id" not in self.values["electrode"]:
            lacking.append("electrode.cell_id")
        return lacking


class Metadata:
    """What a lab says of all its recordings, with what differs for single ones."""

    def __init__(self, document: Document) -> None:
        check(document)
        self._document = document

    def of(self, path: str | Path) -> FileMetadata:
        """What is known of a recording.

        Raises:
            MetadataError: if something is missing without which there is no NWB file.
        """
        values = {key: value for key, value in self._document.value.items() if key != "files"}
        for each in self._document.value.get("files", ()):
            if _fits(Path(path), each["pattern"]):
                values = _merged(values, {key: value for key, value in each.items()
                                          if key != "pattern"})
        for key, part in schema()["$defs"]["settings"]["properties"].items():
            if part.get("needed") == "NWB" and key not in values:
                raise MetadataError(f"{self._document.name}: found no {key} for "
                                    f"{Path(path).name}, expected {part['expected']}")
        return FileMetadata(values)


def _fits(path: Path, pattern: str) -> bool:
    whole = path.absolute().as_posix()
    return fnmatchcase(path.name, pattern) or fnmatchcase(whole, f"*/{pattern.lstrip('/')}")


def _texts(value: Any) -> Any:
    """A value as a document would have it."""
    if isinstance(value, Mapping):
        return {str(key): _texts(each) for key, each in value.items()}
    if isinstance(value, (list, tuple)):
        return [_texts(each) for each in value]
    if isinstance(value, datetime):
        return value.isoformat()
    return value if value is None else str(value)


def metadata_of(given: Given) -> Metadata:
    """Metadata from a file, or from a dictionary of the same form.

    Raises:
        MetadataError: if it is not as the schema has it.
    """
    if isinstance(given, Metadata):
        return given
    if isinstance(given, Mapping):
        return Metadata(Document("metadata", _texts(given)))
    document = load_document(given)
    if document.value is None:
        document.value = {}
    return Metadata(document)
