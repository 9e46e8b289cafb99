"""The one formula of each direction, and what is given where it cannot be applied."""
import math

import numpy as np
import pytest

import corvantis
from corvantis.headers import EpochHeader, FileHeader
from corvantis.layout import structure_of, from_bytes
from corvantis.units import WORD, response_scale, stimulus_scale

COUNTS = np.array([-32768, -2240, 0, 1, 32767], dtype=np.int16)


def scales(inputScale=3200.0, outputScale=3200.0, gain=0.5, factor=400.0, unit=b"mV"):
    file, epoch = structure_of(FileHeader)(), structure_of(EpochHeader)()
    file.inputScale, file.outputScale = inputScale, outputScale
    epoch.ampGain[1], epoch.convFactor[1] = gain, factor
    epoch.inputUnits[1].value = epoch.outputUnits[1].value = unit
    headers = from_bytes(FileHeader, bytes(file)), from_bytes(EpochHeader, bytes(epoch))
    return response_scale(*headers, 1), stimulus_scale(*headers, 1)


def test_formulas():
    response, stimulus = scales()
    # Full scale is -10.24 V; at 0.5 V per mV this is -20.48 mV, at 400 mV per V -4096 mV.
    np.testing.assert_array_equal(response(COUNTS), [-20.48, -1.4, 0, 1 / 1600, 20.479375])
    np.testing.assert_array_equal(stimulus(COUNTS), [-4096, -280, 0, 0.125, 4095.875])
    np.testing.assert_array_equal(WORD(COUNTS), [32768, 63296, 0, 1, 32767])
    assert response.formula == "counts / 3200 / 0.5 in mV"
    assert stimulus.formula == "counts / 3200 * 400 in mV"
    assert response(COUNTS).dtype == np.float64


@pytest.mark.parametrize("factor", [0.0, -0.0, math.inf, -math.inf, math.nan])
def test_volts_where_a_factor_is_unusable(factor):
    for scale in scales(gain=factor, factor=factor):
        assert scale.unit == "V" and "in V, because" in scale.formula
        assert scale(COUNTS)[0] == -10.24
    for scale in scales(inputScale=factor, outputScale=factor):
        assert scale.unit == "counts" and scale(COUNTS)[0] == -32768


def test_unit_names(recorded):
    assert scales(unit=b"0123456789abcdef")[0].unit == "0123456789abcdef"
    unnamed = scales(unit=b"")[0]
    assert unnamed.unit == "V" and unnamed.formula.endswith("in V, because the unit has no name")
    with corvantis.open(recorded("odd")) as recording:
        assert recording.epochs[1].units.response == recording.epochs[1].units.stimulus == ("V",)
        assert "convFactor is inf" in recording.epochs[1].stimulus_scales[0].formula
        # Texts of older files.
        assert recording.epochs[3].comment == "\N{MICRO SIGN} in Mac Roman"
