"""One row for each family of steps."""
from __future__ import annotations

from collections.abc import Iterable, Mapping, Sequence

import numpy as np

from ..epochs import in_ranges
from ..steps import Members, slope_through_rest
from .columns import FAMILIES
from .epochs import Measured
from .fits import fit_line
from .missing import Missing, Row, Value, columns_of, none_of, row
from .spikes import SHAPE
from .traces import CURRENT_CLAMP, VOLTAGE_CLAMP

ByEpoch = Mapping[int, Measured]
OF_CURRENT_CLAMP = ("current", "passive", "spikes", "first spike")


def _known(members: Iterable[Measured], name: str) -> list[float]:
    """The values of a column that could be measured."""
    values = (each.values[name] for each in members)
    return [float(value) for value in values if not isinstance(value, Missing)]


def _first_reason(members: Sequence[Measured], name: str) -> Missing:
    """Why none of them has a value."""
    reason = next(each.values[name] for each in members)
    return Missing(f"of none of its epochs; of the first: {reason}")


def _of_known(members: Sequence[Measured], name: str, *functions: object) -> list[Value]:
    """Functions of the values that could be measured."""
    known = _known(members, name)
    if not known:
        return [_first_reason(members, name)] * len(functions)
    return [float(function(known)) for function in functions]  # type: ignore[operator]


def _resistance(members: Sequence[Measured]) -> tuple[Value, Value]:
    """Input resistance [MOhm] and residual [mV]."""
    used = [each.values for each in members
            if not isinstance(each.values["steady_potential"], Missing)
            and not isinstance(each.values["baseline"], Missing)]
    currents = np.array([float(each["step_current"]) - float(each["holding_current"])
                         for each in used])
    shifts = np.array([float(each["steady_potential"]) - float(each["baseline"]) for each in used])
    slope = slope_through_rest(currents, shifts)
    if slope is None:
        why = Missing("no step with a baseline ends in a steady state")
        return why, why
    return 1e3 * slope, float(np.sqrt(np.mean((shifts - slope * currents) ** 2)))


def _passive(members: Sequence[Measured]) -> dict[str, Value]:
    resting = _of_known(members, "resting_potential", np.mean, np.ptp)
    lowest = min(members, key=lambda each: float(each.values["step_current"]))
    return dict(zip(columns_of(FAMILIES, "passive"), (
        *resting, *_resistance(members), *_of_known(members, "time_constant", np.median),
        lowest.values["sag_ratio"])))


def _rheobase(members: Sequence[Measured]) -> tuple[Measured | None, Value]:
    """The epoch with the lowest current and a spike, and the highest silent current below."""
    in_order = sorted(members, key=lambda each: float(each.values["step_current"]))
    firing = next((each for each in in_order if float(each.values["spikes"]) > 0), None)
    if firing is None:
        return None, float(in_order[-1].values["step_current"])
    rheobase = float(firing.values["step_current"])
    silent = [current for current in _known(in_order, "step_current") if current < rheobase]
    return firing, silent[-1] if silent else Missing("its lowest step evokes a spike")


def _slope(members: Sequence[Measured]) -> tuple[Value, Value]:
    points = [(float(each.values["step_current"]), float(each.values["rate"])) for each in members
              if float(each.values["spikes"]) > 0]
    if len({current for current, _ in points}) < 2:
        why = Missing("fewer than two step currents with spikes")
        return why, why
    slope, residual = fit_line(*np.array(points).T)
    return slope, residual if len(points) > 2 else Missing("two steps with spikes alone")


def _spiking(members: Sequence[Measured]) -> dict[str, Value]:
    rates = _known(members, "rate")
    if not rates:
        return none_of(columns_of(FAMILIES, "spikes", "first spike"),
                       _first_reason(members, "rate"))
    firing, silent = _rheobase(members)
    slope, residual = _slope(members)
    values: dict[str, Value] = {
        "silent_current": silent, "slope": slope, "slope_residual": residual,
        "highest_rate": max(rates)}
    if firing is None:
        return {**values, **none_of(("rheobase", *SHAPE), "no step evokes a spike")}
    return {**values, "rheobase": firing.values["step_current"],
            **{name: firing.values[name] for name in SHAPE}}


def _of_current_clamp(members: Sequence[Measured]) -> dict[str, Value]:
    currents = _known(members, "step_current")
    return {"lowest_current": min(currents), "highest_current": max(currents), **_passive(members),
            **_spiking(members), **none_of(columns_of(FAMILIES, "test pulse"), "current clamp")}


def _of_voltage_clamp(members: Sequence[Measured]) -> dict[str, Value]:
    values = [*_of_known(members, "access_resistance", np.median, np.ptp),
              *_of_known(members, "membrane_capacitance", np.median)]
    return {**none_of(columns_of(FAMILIES, *OF_CURRENT_CLAMP), "voltage clamp"),
            **dict(zip(columns_of(FAMILIES, "test pulse"), values))}


def measure_family(file: str, number: int, entry: int, family: Members, measured: ByEpoch) -> Row:
    """The row of a family, whose epochs have been measured."""
    members = [measured[epoch.number] for epoch, _ in family]
    first = members[0].values
    values: dict[str, Value] = {
        "file": file, "family": number, "entry": entry, "clamp": first["clamp"],
        "epochs": in_ranges([each.epoch for each in members]), "steps": len(members),
        "start": first["start"], "duration": first["duration"]}
    clamp = first["clamp"]
    if clamp == CURRENT_CLAMP:
        values |= _of_current_clamp(members)
    elif clamp == VOLTAGE_CLAMP:
        values |= _of_voltage_clamp(members)
    else:
        values |= none_of(columns_of(FAMILIES, *OF_CURRENT_CLAMP, "test pulse"), str(clamp))
    return row(FAMILIES, values)
