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


def record_until_killed(recorder, path, delay):
    """Return how many epochs the process had reported as saved when it was killed."""
    process = subprocess.Popen([recorder, path, str(EPOCHS)], stdout=subprocess.PIPE)
    process.stdout.read(1)
    time.sleep(delay)
    process.kill()
    saved = 1 + len(process.stdout.read())
    process.wait()
    return saved


def check_kill(recorder, corvantis, folder, expected, duration, draw):
    recording = os.path.join(folder, "killed.dat")
    repaired = os.path.join(folder, "repaired.dat")
    saved = record_until_killed(recorder, recording, draw.uniform(0, 0.8 * duration))
    result = subprocess.run([corvantis, "repair", recording, "-o", repaired, "--force"],
                            capture_output=True, text=True)
    assert result.returncode in (0, 1), result.stdout + result.stderr
    count, epochs = epochs_and_table(repaired)
    assert count >= saved, f"{saved} epochs were saved, {count} came back"
    assert epochs == expected[:len(epochs)], "an epoch was altered"
    assert subprocess.run([corvantis, "check", repaired], capture_output=True).returncode == 0
    return saved, count


def main():
    recorder, corvantis, kills = sys.argv[1], sys.argv[2], int(sys.argv[3])
    draw = random.Random(1)
    with tempfile.TemporaryDirectory() as folder:
        whole = os.path.join(folder, "whole.dat")
        start = time.monotonic()
        subprocess.run([recorder, whole, str(EPOCHS)], stdout=subprocess.DEVNULL, check=True)
        duration = time.monotonic() - start
        expected = epochs_and_table(whole)[1]
        outcomes = [check_kill(recorder, corvantis, folder, expected, duration, draw)
                    for _ in range(kills)]
    early = sum(saved < EPOCHS for saved, _ in outcomes)
    more = sum(count > saved for saved, count in outcomes)
    print(f"{kills} kills, {early} of them before the last epoch: all of the "
          f"{sum(saved for saved, _ in outcomes)} saved epochs came back unaltered, "
          f"and {more} times one that was complete but not yet reported")
    return 0 if early > 0 else 1


if __name__ == "__main__":
    sys.exit(main())
