"""Hold a run's digests against the expected ones, and count the values that differ.

    check_digests.py EXPECTED HOST FOLDER [REFERENCE]

Both folders are written by ExactnessDigests. Every section must have its expected digest, or one
that EXPECTED excepts for this host, and then differ from a reference in as many values as it says.
"""

import struct
import sys
from pathlib import Path


def read_list(path, host=""):
    """Type, count and digests of each section, each digest with its count of differing values."""
    sections, exceptions = {}, {}
    for fields in map(str.split, path.read_text().splitlines()):
        if fields[:2] == ["except", host]:
            exceptions.setdefault(fields[2], []).append(fields[3:])
        elif fields and fields[0] not in ("except", "#"):
            sections[fields[0]] = [*fields[1:3], [[fields[3], "0"]]]
    for name, digests in exceptions.items():
        sections[name][2] = digests
    return sections


def differences(kind, name, folders):
    """How many values differ, and by how many places at most."""
    size, sign = int(kind[1:]) // 8, 1 << (int(kind[1:]) - 1)
    values = []
    for data in ((folder / f"{name}.raw").read_bytes() for folder in folders):
        bits = struct.unpack(f">{len(data) // size}{' BH I   Q'[size]}", data)
        values.append([sign - b if kind[0] == "f" and b >= sign else b for b in bits])
    steps = [abs(a - b) for a, b in zip(*values, strict=True) if a != b]
    return len(steps), max(steps, default=0)


def main(expected_path, host, *folders):
    folders = [Path(folder) for folder in folders]
    # A processor without fused operations uses other variants of the maths functions.
    if host == "x86_64" and " fma " not in Path("/proc/cpuinfo").read_text():
        host = "x86_64-no-fma"
    expected, found = read_list(Path(expected_path), host), read_list(folders[0] / "digests.txt")
    failed = False
    for name in expected | found:
        wanted, seen = expected.get(name), found.get(name)
        digest = seen and seen[2][0][0]
        fitting = [count for other, count in wanted[2] if other == digest] if wanted else []
        wrong = not seen or not fitting or wanted[:2] != seen[:2]
        if wanted and seen and wanted[:2] == seen[:2] and len(folders) > 1:
            count, step = differences(seen[0], name, folders)
            wrong = wrong or str(count) not in fitting or (seen[0] == "f64" and step > 1)
            if count:
                print(f"  {name}: {count} of {seen[1]} values differ, by {step} at most")
        if wrong:
            print(f"  {name}: {seen} instead of {wanted}")
        failed = failed or wrong
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
