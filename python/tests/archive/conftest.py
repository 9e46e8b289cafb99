"""An archive of small recordings, one of them damaged, and its catalogue."""
import shutil

import pytest

pytest.importorskip("pyarrow")
import corvantis.archive  # noqa: E402


@pytest.fixture
def archive(recorded, tmp_path):
    """A folder of five files: recordings of 3, 14 and 41 epochs, one of 300 with two of them
    overwritten, and a text."""
    folder = tmp_path / "archive"
    (folder / "day").mkdir(parents=True)
    for recipe in ("steps", "types", "history-3"):
        shutil.copy(recorded(recipe), folder / "day" / f"{recipe}.dat")
    damaged = bytearray(recorded("growing").read_bytes())
    damaged[30_000:33_000] = b"\xff" * 3000
    (folder / "damaged.dat").write_bytes(damaged)
    (folder / "notes.txt").write_text("a text")
    return folder


@pytest.fixture
def catalogue(archive, tmp_path):
    """The archive's catalogue, open."""
    corvantis.archive.index(archive, tmp_path / "catalogue", processes=1)
    return corvantis.archive.open(tmp_path / "catalogue")
