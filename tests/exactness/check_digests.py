"""Hold a run's digests against the expected ones, and count the values that differ.

    check_digests.py EXPECTED HOST FOLDER [REFERENCE]

FOLDER and REFERENCE are folders that ExactnessDigests has written. Every section must have its
expected digest, or the one that EXPECTED excepts for this host. With a reference run from a host
without exceptions, the values that differ from it must be as many as the exception says, and those
of a maths function may differ in the last place only.
"""

import argparse
import struct
import sys
from pathlib import Path

NO_FMA = "x86_64-no-fma"


def lines(path):
    """The fields of each line, without remarks and empty lines."""
    for line in path.read_text().splitlines():
        if line.strip() and not line.startswith("#"):
            yield line.split()


def read_digests(path):
    return {name: (kind, int(count), digest) for name, kind, count, digest in lines(path)}


def read_expected(path, host):
    """The expected digests and, by section, this host's digest and count of differing values."""
    digests, exceptions = {}, {}
    for fields in lines(path):
        if fields[0] != "except":
            name, kind, count, digest = fields
            digests[name] = (kind, int(count), digest)
        elif fields[1] == host:
            exceptions[fields[2]] = (fields[3], int(fields[4]))
    return digests, exceptions


def effective_host(host):
    """A processor without fused operations uses other variants of the maths functions."""
    if host == "x86_64" and " fma " not in Path("/proc/cpuinfo").read_text():
        return NO_FMA
    return host


def ordered(kind, folder, name):
    """A section's values as integers; neighbouring floating-point numbers differ by 1."""
    size = int(kind[1:]) // 8
    letter = {1: "b", 2: "h", 4: "i", 8: "q"}[size]
    data = (folder / f"{name}.raw").read_bytes()
    values = struct.unpack(f">{len(data) // size}{letter if kind[0] != 'u' else letter.upper()}",
                           data)
    if kind[0] != "f":
        return values
    return [v if v >= 0 else -(v & (1 << (8 * size - 1)) - 1) for v in values]


def differences(kind, folder, reference, name):
    """How many values differ, and by how much at most."""
    steps = [abs(a - b) for a, b in
             zip(ordered(kind, folder, name), ordered(kind, reference, name), strict=True)]
    return sum(step != 0 for step in steps), max(steps, default=0)


def check_section(name, found, expected, exception, folder, reference):
    """What is wrong with a section, or nothing."""
    if expected is None:
        return "not in the list of expected digests"
    if found is None:
        return "missing"
    if found == expected and exception is None:
        return None
    if exception is None or found != (*expected[:2], exception[0]):
        counted = ""
        if reference is not None and found[:2] == expected[:2]:
            counted = ": %d values differ, by %d at most" % differences(
                found[0], folder, reference, name)
        return f"{found[2]} instead of {exception[0] if exception else expected[2]}{counted}"
    if reference is None:
        return None
    count, step = differences(found[0], folder, reference, name)
    print(f"  {name}: {count} of {found[1]} values differ from the reference, by {step} at most")
    if count != exception[1] or step > 1:
        return f"{count} values differ, by {step} at most, instead of {exception[1]}"
    return None


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("expected", type=Path)
    parser.add_argument("host")
    parser.add_argument("folder", type=Path)
    parser.add_argument("reference", type=Path, nargs="?")
    options = parser.parse_args()
    host = effective_host(options.host)
    expected, exceptions = read_expected(options.expected, host)
    found = read_digests(options.folder / "digests.txt")
    print(f"{host}: {len(found)} sections, {len(exceptions)} of them listed as different")
    failed = False
    for name in expected | found:
        problem = check_section(name, found.get(name), expected.get(name), exceptions.get(name),
                                options.folder, options.reference)
        if problem:
            print(f"  {name}: {problem}")
            failed = True
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
