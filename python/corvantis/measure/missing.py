"""Measurements that cannot be made: why, and how a row says so."""
from __future__ import annotations

from collections import defaultdict
from collections.abc import Iterable, Mapping
from typing import Any, Union

from .columns import COLUMNS, REASONS, Column


DECIMALS = 9    # far below the steps of any converter


class Missing(str):
    """Why a measurement could not be made."""


Value = Union[float, int, bool, str, Missing]
Row = dict[str, Any]


def none_of(names: Iterable[str], why: str) -> dict[str, Value]:
    """The same reason for several columns."""
    return {name: Missing(why) for name in names}


def columns_of(table: str, *groups: str) -> list[str]:
    """Names of the columns of some groups."""
    return [each.name for each in COLUMNS[table] if each.group in groups]


def _named(names: list[str], columns: Iterable[Column]) -> list[str]:
    """Names, or those of groups all of whose columns are among them."""
    groups: dict[str, list[str]] = defaultdict(list)
    for column in columns:
        groups[column.group].append(column.name)
    whole = {group: members for group, members in groups.items()
             if len(members) > 1 and set(members) <= set(names)}
    return [*whole, *(name for name in names if not any(name in each for each in whole.values()))]


def _plain(value: Value) -> Any:
    """As it stands in a row; what rounding in calculations leaves of 0 is 0."""
    if isinstance(value, Missing):
        return None
    return round(value, DECIMALS) + 0.0 if isinstance(value, float) else value


def row(table: str, values: Mapping[str, Value]) -> Row:
    """A row of a table by heading: None for what is missing, and all reasons together.

    Raises:
        KeyError: for a column that was neither measured nor given a reason.
    """
    columns = [each for each in COLUMNS[table] if each.name != REASONS]
    reasons: dict[str, list[str]] = defaultdict(list)
    for column in columns:
        if isinstance(values[column.name], Missing):
            reasons[str(values[column.name])].append(column.name)
    text = "; ".join(f"{', '.join(_named(names, columns))}: {reason}"
                     for reason, names in reasons.items())
    return {**{each.heading: _plain(values[each.name]) for each in columns}, REASONS: text}
