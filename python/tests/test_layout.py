"""The declared records lie in memory exactly as the C compiler lays them out."""
import subprocess

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


def test_fields_lie_where_the_compiler_puts_them(compiled):
    ours, prints = [], []
    for name, record in RECORDS.items():
        for field, _ in structure_of(record)._fields_:
            place = getattr(structure_of(record), field)
            ours.append(f"{name} {field} {place.offset} {place.size}")
            prints.append(f'printf("{name} {field} %zu %zu\\n", offsetof({name}, {field}), '
                          f'sizeof((({name} *)0)->{field}));')
    program = compiled('#include <stdio.h>\n#include "Corvantis.h"\nint main(void) {\n'
                       + "\n".join(prints) + "\nreturn 0;\n}\n")
    output = subprocess.run([program], capture_output=True, text=True, check=True).stdout
    assert output.splitlines() == ours
    for record, size in ((FileHeader, 580), (EpochHeader, 912)):
        assert len(bytes(structure_of(record)())) == size
