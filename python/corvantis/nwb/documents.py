"""YAML and JSON documents that know on which line each of their values stands."""
from __future__ import annotations

import json
from collections.abc import Iterator, Sequence
from pathlib import Path
from typing import Any

import yaml

Place = tuple[str | int, ...]


class MetadataError(ValueError):
    """Metadata that is missing or not as it should be: file, line, what was found and expected."""


class _Loader(yaml.SafeLoader):  # type: ignore[misc]
    """Dates, yes and no, and numbers as identifiers stay what was written: the schema says what
    a value is to be."""


_Loader.yaml_implicit_resolvers = {
    first: [(tag, pattern) for tag, pattern in resolvers
            if not tag.endswith((":timestamp", ":bool", ":int", ":float"))]
    for first, resolvers in yaml.SafeLoader.yaml_implicit_resolvers.items()}


class Document:
    """A document's value, and the lines of its parts.

    Attributes:
        name: of the file, for messages.
        value: lists, dictionaries with texts for keys, and texts.
    """

    def __init__(self, name: str, value: Any, lines: dict[Place, int] | None = None) -> None:
        self.name = name
        self.value = value
        self._lines = lines or {}

    def line(self, place: Sequence[str | int]) -> int | None:
        """The line of a value, or of the nearest one that holds it."""
        above = (self._lines.get(tuple(place[:length])) for length in range(len(place), 0, -1))
        return next((line for line in above if line is not None), None)

    def where(self, place: Sequence[str | int]) -> str:
        """File and line of a value."""
        line = self.line(place)
        return self.name if line is None else f"{self.name}, line {line}"


def _walk(name: str, node: yaml.Node, place: Place) -> Iterator[tuple[Place, int]]:
    """The lines of a node and all below it; a key's line is that of its name."""
    if isinstance(node, yaml.SequenceNode):
        for index, each in enumerate(node.value):
            yield (*place, index), each.start_mark.line + 1
            yield from _walk(name, each, (*place, index))
    if not isinstance(node, yaml.MappingNode):
        return
    known: dict[str, int] = {}
    for key, each in node.value:
        line = key.start_mark.line + 1
        if not isinstance(key, yaml.ScalarNode):
            raise MetadataError(f"{name}, line {line}: found a key that is no text, expected one")
        if key.value in known:
            raise MetadataError(f"{name}, line {line}: found {key.value} again, expected it once "
                                f"(line {known[key.value]})")
        known[key.value] = line
        yield (*place, key.value), line
        yield from _walk(name, each, (*place, key.value))


def load_document(path: str | Path) -> Document:
    """Read a document; a JSON file is one of YAML, but for its errors and tabs.

    Raises:
        MetadataError: if it is neither, or a key stands twice.
        OSError: if it cannot be read.
    """
    name = str(path)
    try:
        text = Path(path).read_text(encoding="utf-8")
        if name.lower().endswith(".json"):
            json.loads(text)
            text = text.replace("\t", " ")
        if any(isinstance(event, yaml.AliasEvent) for event in yaml.parse(text, _Loader)):
            raise MetadataError(f"{name}: found an alias (*), expected the value in its place")
        node = yaml.compose(text, _Loader)
        lines = dict(_walk(name, node, ())) if node is not None else {}
        return Document(name, yaml.load(text, _Loader), lines)  # a safe one
    except UnicodeDecodeError as error:
        raise MetadataError(f"{name}: found bytes that are no UTF-8, expected text") from error
    except json.JSONDecodeError as error:
        raise MetadataError(f"{name}, line {error.lineno}: {error.msg}, expected JSON") from error
    except yaml.MarkedYAMLError as error:
        mark = error.problem_mark or error.context_mark
        line = f", line {mark.line + 1}" if mark is not None else ""
        raise MetadataError(f"{name}{line}: {error.problem}, expected YAML") from error
    except (yaml.YAMLError, RecursionError) as error:
        raise MetadataError(f"{name}: {error}, expected YAML") from error
