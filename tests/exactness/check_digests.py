"""Hold a run's digests against the expected ones, and count the values that differ.

    check_digests.py EXPECTED FOLDER [REFERENCE]

Both folders are written by ExactnessDigests. Every section must have its expected digest; where one
has not, its values are compared with the reference's.
"""

import struct
import sys
from pathlib import Path


def read_list(path):
    """Type, count and digest of each section."""
    lines = map(str.split, path.read_text().splitlines())
    return {fields[0]: fields[1:] for fields in lines if fields and fields[0] != "#"}


def differences(kind, name, folders):
    """How many values differ, and by how many places at most."""
    size, sign = int(kind[1:]) // 8, 1 << (int(kind[1:]) - 1)
    values = []
    for data in ((folder / f"{name}.raw").read_bytes() for folder in folders):
        bits = struct.unpack(f">{len(data) // size}{' BH I   Q'[size]}", data)
        values.append([sign - b if kind[0] == "f" and b >= sign else b for b in bits])
    steps = [abs(a - b) for a, b in zip(*values, strict=True) if a != b]
    return len(steps), max(steps, default=0)


def main(expected_path, *folders):
    folders = [Path(folder) for folder in folders]
    expected, found = read_list(Path(expected_path)), read_list(folders[0] / "digests.txt")
    failed = False
    for name in expected | found:
        wanted, seen = expected.get(name), found.get(name)
        if seen == wanted:
            continue
        failed = True
        print(f"  {name}: {seen} instead of {wanted}")
        if wanted and seen and wanted[:2] == seen[:2] and len(folders) > 1:
            count, step = differences(seen[0], name, folders)
            print(f"  {name}: {count} of {seen[1]} values differ, by {step} at most")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
