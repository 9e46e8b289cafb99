"""Copy the PowerPC run-time libraries, with a maths library that user-mode qemu can run.

The C library reads the rounding mode with the newer forms of the instruction mffs. Processors
before POWER9 execute these as plain mffs, and the C library allows for that; qemu 7.2 instead stops
at them on every 32-bit processor that it has. So the copy names plain mffs outright, which changes
nothing that a processor of that age would have done.

    patch_runtime.py FROM TO    copy the libraries of the folder FROM into the folder TO
"""

import shutil
import struct
import sys
from pathlib import Path

COPIED = ("ld.so.1", "libc.so.6", "libstdc++.so.6", "libgcc_s.so.1")
PATCHED = "libm.so.6"

PROGRAM_BITS, EXECUTABLE = 1, 4  # of a section: its type and its flag
FORM_MASK = 0xFC0007FF  # the fields of an instruction word that make it some form of mffs
MFFS = 0xFC00048E
VARIANT_FIELD = 0x001F0000  # zero in plain mffs


def executable_sections(image):
    """Offset and length of each section of instructions in a 32-bit big-endian ELF file.

    Sections, not segments: a segment holds constants too, one of which looks like an instruction.
    """
    if image[:6] != b"\x7fELF\x01\x02":
        raise ValueError("not a 32-bit big-endian ELF file")
    (table,) = struct.unpack_from(">I", image, 32)
    size, count = struct.unpack_from(">HH", image, 46)
    for i in range(count):
        _, kind, flags, _, offset, length = struct.unpack_from(">6I", image, table + i * size)
        if kind == PROGRAM_BITS and flags & EXECUTABLE:
            yield offset, length


def patched(image):
    """The image with every newer form of mffs made plain, and how many there were."""
    image = bytearray(image)
    changed = 0
    for offset, length in executable_sections(image):
        for place in range(offset, offset + length - 3, 4):
            (word,) = struct.unpack_from(">I", image, place)
            if word & FORM_MASK == MFFS and word & VARIANT_FIELD:
                struct.pack_into(">I", image, place, word & ~VARIANT_FIELD)
                changed += 1
    return image, changed


def main():
    source, target = Path(sys.argv[1]), Path(sys.argv[2])
    target.mkdir(parents=True, exist_ok=True)
    for name in COPIED:
        shutil.copyfile(source / name, target / name)
    image, changed = patched((source / PATCHED).read_bytes())
    (target / PATCHED).write_bytes(image)
    print(f"{target / PATCHED}: {changed} instructions made plain mffs")


if __name__ == "__main__":
    main()
