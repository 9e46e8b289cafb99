"""The declared records lie in memory exactly as the C compiler lays them out."""
import subprocess

import pytest

from corvantis import stimuli
from corvantis.headers import EpochHeader, FileHeader
from corvantis.layout import structure_of

RECORDS = {
    "ITCFileHeader": FileHeader, "ITCEpochHeader": EpochHeader,
    "ITCSineParameters": stimuli.Sine, "ITCNoiseParameters": stimuli.Noise,
    "ITCPulseParameters": stimuli.Pulse, "ITCRampParameters": stimuli.Ramp,
    "ITCGenericParameters": stimuli.Generic, "ITCSummedParameters": stimuli.SummedRecord,
    "ITCSegmentedNoiseParameters": stimuli.SegmentedNoise,
    "ITCBinaryNoiseParameters": stimuli.BinaryNoise,
    "ITCGClampParameters": stimuli.DynamicClamp, "ITCCirclePulseParameters": stimuli.CirclePulse,
    "ITCAlternateVoltageParameters": stimuli.AlternatingVoltage,
    "ITCSpatialStmParameters": stimuli.Spatial,
}


@pytest.fixture(scope="module")
def compiler_says(compiled, tmp_path_factory):
    """Offset and size of every field, and size of every record, as the C compiler sees them."""
    lines = []
    for name, record in RECORDS.items():
        lines.append(f'printf("{name} sizeof 0 %zu\\n", sizeof({name}));')
        lines += [f'printf("{name} {field} %zu %zu\\n", offsetof({name}, {field}), '
                  f'sizeof((({name} *)0)->{field}));'
                  for field, _ in structure_of(record)._fields_]
    source = tmp_path_factory.mktemp("layout") / "layout.c"
    source.write_text('#include <stdio.h>\n#include "Corvantis.h"\nint main(void) {\n'
                      + "\n".join(lines) + "\nreturn 0;\n}\n")
    output = subprocess.run([compiled(source)], capture_output=True, text=True, check=True).stdout
    return {(name, field): (int(offset), int(size))
            for name, field, offset, size in map(str.split, output.splitlines())}


@pytest.mark.parametrize("name", RECORDS)
def test_fields_lie_where_the_compiler_puts_them(name, compiler_says):
    structure = structure_of(RECORDS[name])
    for field, _ in structure._fields_:
        ours = getattr(structure, field)
        assert (ours.offset, ours.size) == compiler_says[name, field], field


def test_headers_have_their_size_on_file(compiler_says):
    for name, size in (("ITCFileHeader", 580), ("ITCEpochHeader", 912)):
        assert compiler_says[name, "sizeof"][1] == size
        assert len(bytes(structure_of(RECORDS[name])())) == size
