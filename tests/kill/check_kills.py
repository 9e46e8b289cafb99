"""Kill a recording process at random moments and see what a repair gives back.

Usage: check_kills.py RECORDER CORVANTIS KILLS

Whatever moment it was, the repaired file must hold at least the epochs whose saving had returned,
each of them identical to the byte to that of a recording that nobody disturbed.
"""

import os
import random
import struct
import subprocess
import sys
import tempfile
import time

EPOCHS = 2000
FIRST_EPOCH = 580


def epochs_and_table(path):
    with open(path, "rb") as file:
        data = file.read()
    count, table = struct.unpack_from(">iI", data, 536)
    return count, data[FIRST_EPOCH:table]


def record(recorder, path, delay=None):
    """Return how many epochs the process had reported as saved when it ended or was killed."""
    process = subprocess.Popen([recorder, path, str(EPOCHS)], stdout=subprocess.DEVNULL,
                               stderr=subprocess.PIPE)
    process.stderr.read(1)
    if delay is not None:
        time.sleep(delay)
        process.kill()
    return 1 + len(process.communicate()[1])


def main():
    recorder, corvantis, kills = sys.argv[1], sys.argv[2], int(sys.argv[3])
    draw = random.Random(1)
    early = more = total = 0
    with tempfile.TemporaryDirectory() as folder:
        whole, recording, repaired = (os.path.join(folder, name)
                                      for name in ("whole.dat", "killed.dat", "repaired.dat"))
        start = time.monotonic()
        assert record(recorder, whole) == EPOCHS
        duration = time.monotonic() - start
        count, expected = epochs_and_table(whole)
        assert count == EPOCHS
        for _ in range(kills):
            saved = record(recorder, recording, draw.uniform(0, 0.8 * duration))
            result = subprocess.run([corvantis, "repair", recording, "-o", repaired, "--force"],
                                    capture_output=True, text=True)
            assert result.returncode in (0, 1), result.stdout + result.stderr
            count, epochs = epochs_and_table(repaired)
            assert count >= saved, f"{saved} epochs were saved, {count} came back"
            assert epochs == expected[:len(epochs)], "an epoch was altered"
            subprocess.run([corvantis, "check", repaired], check=True, stdout=subprocess.DEVNULL)
            early, more, total = early + (saved < EPOCHS), more + (count > saved), total + saved
    print(f"{kills} kills, {early} of them before the last epoch: all of the {total} saved epochs "
          f"came back unaltered, and {more} times one that was complete but not yet reported")
    return 0 if early > 0 else 1


if __name__ == "__main__":
    sys.exit(main())
