"""All measurements of one recording."""
from __future__ import annotations

from collections.abc import Iterable
from dataclasses import dataclass, field

from ..epoch import Epoch
from ..recording import Recording
from ..steps import families_of_steps
from .columns import EPOCHS, FAMILIES, SPIKES
from .epochs import Measured, damaged, measure_entry
from .families import measure_family
from .missing import Row
from .quality import FirstBaselines


@dataclass
class Measurements:
    """Rows of the three tables, whose columns `COLUMNS` explains."""

    epochs: list[Row] = field(default_factory=list)
    families: list[Row] = field(default_factory=list)
    spikes: list[Row] = field(default_factory=list)

    @property
    def tables(self) -> dict[str, list[Row]]:
        """The rows by the tables' names."""
        return {EPOCHS: self.epochs, FAMILIES: self.families, SPIKES: self.spikes}


def _measure_families(file: str, epochs: list[Epoch],
                      measured: dict[int, dict[int, Measured]]) -> list[Row]:
    """Of all entries: `measured` is by entry and epoch."""
    rows: list[Row] = []
    for entry, by_epoch in sorted(measured.items()):
        for family in families_of_steps(epochs, entry):
            if len({step.level for _, step in family}) > 1:
                rows.append(measure_family(file, len(rows), entry, family, by_epoch))
    return rows


def measure(recording: Recording, epochs: Iterable[int] | None = None,
            file: str | None = None) -> Measurements:
    """Measure epochs of a recording, their spikes, and the families that they make.

    Args:
        epochs: their numbers; all without them.
        file: name of the recording in the rows; by default its path.
    """
    name, found, firsts = recording.path if file is None else file, Measurements(), FirstBaselines()
    whole: list[Epoch] = []
    measured: dict[int, dict[int, Measured]] = {}
    for number in range(len(recording.epochs)) if epochs is None else epochs:
        epoch = recording.epochs[number]
        if epoch.is_damaged:
            found.epochs.append(damaged(name, epoch))
            continue
        whole.append(epoch)
        for entry in range(epoch.entries):
            one = measure_entry(name, epoch, entry, firsts)
            found.epochs.append(one.row)
            found.spikes += one.spikes
            measured.setdefault(entry, {})[number] = one
    found.families = _measure_families(name, whole, measured)
    return found
