"""Kill a recording process at random moments and see what a repair gives back.

Usage: check_kills.py RECORDER CORVANTIS KILLS

Whatever moment it was, the repaired file must hold at least the epochs whose saving had returned,
each of them identical to the byte to that of a recording that nobody disturbed.
"""

import random
import struct
import sys
import tempfile
import time
from pathlib import Path
from subprocess import DEVNULL, PIPE, Popen, run

EPOCHS = 2000


def count_and_epochs(path):
    count, table = struct.unpack_from(">iI", path.read_bytes(), 536)
    return count, path.read_bytes()[580:table]


def record(recorder, path, delay=None):
    """Return how many epochs the process had reported as saved when it ended or was killed."""
    process = Popen([recorder, path, str(EPOCHS)], stdout=DEVNULL, stderr=PIPE)
    process.stderr.read(1)
    if delay is not None:
        time.sleep(delay)
        process.kill()
    return 1 + len(process.communicate()[1])


def main(folder, recorder, corvantis, kills):
    whole, recording, repaired = (folder / name for name in ("whole", "killed", "repaired"))
    start = time.monotonic()
    assert record(recorder, whole) == EPOCHS
    duration = time.monotonic() - start
    expected = count_and_epochs(whole)[1]
    draw, early = random.Random(1), 0
    for _ in range(int(kills)):
        saved = record(recorder, recording, draw.uniform(0, 0.8 * duration))
        repair = run([corvantis, "repair", recording, "-o", repaired, "--force"], stdout=DEVNULL)
        assert repair.returncode in (0, 1)
        count, epochs = count_and_epochs(repaired)
        assert count >= saved, f"{saved} epochs were saved, {count} came back"
        assert epochs == expected[:len(epochs)], "an epoch was altered"
        run([corvantis, "check", repaired], check=True, stdout=DEVNULL)
        early += saved < EPOCHS
    print(f"{kills} kills, {early} of them before the last epoch: every saved epoch came back")
    assert early > 0


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as name:
        main(Path(name), *sys.argv[1:])
