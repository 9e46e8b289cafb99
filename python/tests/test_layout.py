"""The declared records lie in memory exactly as the C compiler lays them out."""
import subprocess
from pathlib import Path

from corvantis import stimuli
from corvantis.records import EpochHeader, FileHeader
from corvantis.layout import structure_of

HEADERS = Path(__file__).parents[2] / "itc-code"
RENAMED = {"AlternatingVoltage": "AlternateVoltageParameters", "DynamicClamp": "GClampParameters",
           "Spatial": "SpatialStmParameters", "SummedRecord": "SummedParameters",
           "EpochHeader": "EpochHeader", "FileHeader": "FileHeader"}


def test_fields_lie_where_the_compiler_puts_them(tmp_path):
    ours, prints = [], ""
    for record in (FileHeader, EpochHeader, stimuli.SummedRecord, *stimuli.ALL):
        structure = structure_of(record)
        name = "ITC" + RENAMED.get(record.__name__, f"{record.__name__}Parameters")
        for field, _ in structure._fields_:
            place = getattr(structure, field)
            ours.append(f"{name} {field} {place.offset} {place.size}")
            prints += (f'printf("{name} {field} %zu %zu\\n", offsetof({name}, {field}), '
                       f'sizeof((({name} *)0)->{field}));\n')
    subprocess.run(["cc", "-std=c99", f"-I{HEADERS}", "-xc", "-", "-o", tmp_path / "program"],
                   input='#include <stdio.h>\n#include "Corvantis.h"\n'
                   f'int main(void) {{\n{prints}return 0; }}\n', text=True, check=True)
    output = subprocess.run([tmp_path / "program"], capture_output=True, text=True).stdout
    assert len(ours) > 100 and output.splitlines() == ours
