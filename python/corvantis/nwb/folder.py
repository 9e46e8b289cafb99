"""NWB files of many recordings: which, where to, and what became of each."""
from __future__ import annotations

import os
from collections.abc import Iterable, Iterator, Sequence
from dataclasses import dataclass, field
from pathlib import Path

from ..errors import CorvantisError
from ..interface import NOT_A_RECORDING
from ..recording import Recording, open_recording
from ..writing import remove_left
from .documents import MetadataError
from .metadata import FileMetadata, Metadata
from .naming import target
from .processes import Processes
from .verification import verify
from .writing import notes_of, opened, provenance, same_work, sha256, write

WRITTEN, THERE, EQUAL, FAILED = "written", "there already", "equal", "failed"


class DifferentError(Exception):
    """An NWB file that is not as its recording."""


@dataclass(frozen=True)
class Order:
    """What is wanted of all files.

    Attributes:
        folder: where the NWB files go.
        epochs: a choice such as "0,3-7"; all without one.
        verify_only: write nothing, hold what is there against the recordings.
        verify_too: hold each file against its recording before it takes its place.
        replace: what is there and was made otherwise.
        command: what the files say that they were made by.
    """

    folder: Path
    metadata: Metadata
    epochs: str | None = None
    verify_only: bool = False
    verify_too: bool = True
    replace: bool = False
    command: str = "corvantis nwb"


@dataclass(frozen=True)
class Job:
    """A recording and where its file goes."""

    order: Order
    recording: Path
    goal: Path


@dataclass(frozen=True)
class Outcome:
    """What became of a recording."""

    recording: Path
    state: str
    goal: Path | None = None
    epochs: int = 0
    series: int = 0
    damaged: bool = False
    warnings: Sequence[str] = ()
    reason: str = ""


@dataclass
class Search:
    """The recordings that arguments name; `others` counts files of folders that are none."""

    others: int = 0
    found: list[Path] = field(default_factory=list)

    def add(self, argument: Path) -> None:
        """Take in a file, or all recordings of a folder in the order of their names."""
        if not argument.is_dir():
            self.found.append(argument)
            return
        for folder, folders, names in os.walk(argument):
            folders.sort()
            for name in sorted(names):
                if not name.startswith("."):
                    self._consider(Path(folder, name))

    def _consider(self, path: Path) -> None:
        try:
            open_recording(path).close()
        except CorvantisError as error:
            if error.code == NOT_A_RECORDING:
                self.others += 1
                return
        self.found.append(path)


def _reason(error: BaseException, recording: Path) -> str:
    text = str(error) or type(error).__name__
    return text.removeprefix(f"{recording.absolute()}: ").removeprefix(f"{recording}: ")


def jobs_of(recordings: Iterable[Path], order: Order) -> tuple[list[Job], list[Outcome]]:
    """What is to be done, and the recordings of which that cannot be said."""
    jobs: dict[Path, Job] = {}
    failed = []
    for recording in recordings:
        try:
            goal = order.folder / target(order.metadata.of(recording), recording)
            if goal in jobs:
                raise MetadataError(f"its file would be that of {jobs[goal].recording}; a "
                                    "session_id for one of them tells them apart")
            jobs[goal] = Job(order, recording, goal)
        except MetadataError as error:
            failed.append(Outcome(recording, FAILED, reason=str(error)))
    return list(jobs.values()), failed


# ---- One file -------------------------------------------------------------------------------

def _chosen(job: Job, recording: Recording) -> list[int] | None:
    from ..commands import chosen_epochs
    if job.order.epochs is None:
        return None
    return chosen_epochs(job.order.epochs, len(recording.epochs))


def _compare(path: str | Path, recording: Recording, metadata: Metadata) -> None:
    if differences := verify(path, recording, metadata):
        more = f" (and {len(differences) - 1} more)" if len(differences) > 1 else ""
        raise DifferentError(f"differs from the recording: {differences[0]}{more}")


def _is_there(job: Job, recording: Recording, metadata: FileMetadata,
              epochs: list[int] | None) -> bool:
    """Whether the file is there already; one that was made otherwise is an error."""
    if not job.goal.exists():
        return False
    own = provenance(recording, sha256(recording.path), metadata, epochs, "")
    if same_work(notes_of(job.goal), own):
        return True
    if not job.order.replace:
        raise FileExistsError(f"{job.goal} is there, of another recording, version or choice, or "
                              "with other metadata; --force replaces it")
    return False


def _write(job: Job, recording: Recording) -> Outcome:
    order, metadata = job.order, job.order.metadata.of(job.recording)
    epochs = _chosen(job, recording)
    if _is_there(job, recording, metadata, epochs):
        return Outcome(job.recording, THERE, job.goal)
    job.goal.parent.mkdir(parents=True, exist_ok=True)
    remove_left(job.goal.parent)

    def check(path: str, source: Recording) -> None:
        if order.verify_too:
            _compare(path, source, order.metadata)
    written = write(recording, job.goal, order.metadata, epochs, order.command, check)
    lacking = metadata.lacking()
    more = [f"DANDI asks for {', '.join(lacking)} too"] if lacking else []
    return Outcome(job.recording, WRITTEN, job.goal, written.epochs, written.series,
                   written.damaged, (*written.warnings, *more))


def _verify(job: Job, recording: Recording) -> Outcome:
    if not job.goal.exists():
        raise FileNotFoundError(f"there is no {job.goal}")
    _compare(job.goal, recording, job.order.metadata)
    return Outcome(job.recording, EQUAL, job.goal, len(recording.epochs))


def do(job: Job) -> Outcome:
    """Write or verify the file of a recording; a failure is an outcome, too."""
    try:
        with opened(job.recording) as recording:
            return (_verify if job.order.verify_only else _write)(job, recording)
    except Exception as error:
        return Outcome(job.recording, FAILED, job.goal, reason=_reason(error, job.recording))


def _died(job: Job, how: str) -> Outcome:
    return Outcome(job.recording, FAILED, job.goal, reason=how)


def run(jobs: Sequence[Job], processes: int) -> Iterator[Outcome]:
    """Do all jobs, some at a time; outcomes as they come."""
    return Processes(do, _died, processes).results(jobs)
