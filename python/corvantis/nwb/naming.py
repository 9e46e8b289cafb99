"""Where a recording's NWB file stands: by the rules that DANDI has for names and folders."""
from __future__ import annotations

import re
from pathlib import Path, PurePath

from .metadata import FileMetadata

_FORBIDDEN = re.compile(r"[_*\\/<>:|\"'?%@;.\s]+")


def label(text: str) -> str:
    """A text as it may stand between the underscores of a name."""
    return _FORBIDDEN.sub("-", text).strip("-") or "-"


def target(metadata: FileMetadata, recording: str | Path) -> PurePath:
    """Folder and name for a recording, such as
    sub-m12/sub-m12_ses-20261123_slice-1_cell-3_desc-cell5_icephys.nwb.

    The recording's own name is a part of it, so that several of one cell differ, and names do not
    depend on what else is there. Without a subject, which DANDI would not take, it is all.
    """
    own = label(Path(recording).stem)
    subject = metadata.subject.get("subject_id")
    if subject is None:
        return PurePath(f"{own}.nwb")
    electrode = metadata.values.get("electrode", {})
    parts = [("sub", subject), ("ses", metadata.values.get("session_id")),
             ("slice", electrode.get("slice")), ("cell", electrode.get("cell_id")), ("desc", own)]
    name = "_".join(f"{key}-{label(text)}" for key, text in parts if text)
    return PurePath(f"sub-{label(subject)}", f"{name}_icephys.nwb")
