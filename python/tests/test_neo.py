"""Neo's own suites on files of every kind, and what is ours: streams, annotations, cost."""
import os
import unittest
from unittest.mock import patch

import neo.io
import numpy as np
import pytest
from neo.io.proxyobjects import AnalogSignalProxy

import corvantis
from corvantis import Epoch
from corvantis.neo import CorvantisIO, CorvantisRawIO, register

pytestmark = pytest.mark.filterwarnings("ignore::corvantis.CorvantisWarning")


def test_neos_own_suites(recorded):
    """They look for files when they are imported."""
    folder = recorded("empty").parent
    os.environ["EPHY_TESTING_DATA_FOLDER"] = str(folder)
    import neo.test.iotest.common_io_test as io_suite
    import neo.test.rawiotest.common_rawio_test as raw_suite
    common = {"use_network": True, "entities_to_download": [], "entities_to_test": [
        recorded(recipe).name for recipe in ("steps", "types", "unstored", "odd", "empty")]}
    register()
    result = unittest.TestResult()
    for module, suite, kind, reader in (
            (raw_suite, raw_suite.BaseTestRawIO, "rawioclass", CorvantisRawIO),
            (io_suite, io_suite.BaseTestIO, "ioclass", CorvantisIO)):
        module.HAVE_DATALAD, module.get_local_testing_data_folder = True, lambda: folder
        module.can_use_network = lambda: True       # though nothing is fetched
        case = type("Test", (suite, unittest.TestCase), {kind: reader, **common})
        unittest.defaultTestLoader.loadTestsFromTestCase(case).run(result)
    assert result.testsRun >= 7 and not result.skipped
    assert not result.failures + result.errors, (result.failures + result.errors)[0][1]


def test_a_segment_an_epoch_with_its_own_signals_read_when_loaded(recorded):
    """Neo alone would make signals of all the file's settings in each segment."""
    with patch.object(Epoch, "read", autospec=True, side_effect=Epoch.read) as read, \
            patch.object(AnalogSignalProxy, "__init__", autospec=True,
                         side_effect=AnalogSignalProxy.__init__) as signals:
        segments = CorvantisIO(recorded("types")).read_block(lazy=True).segments
        assert signals.call_count == sum(len(each.analogsignals) for each in segments)
        block = CorvantisIO(recorded("steps")).read_block(lazy=True)
        assert not read.called
        segment = block.segments[2]
        part = segment.analogsignals[0].load(time_slice=(0.05, 0.15))
        assert [call.args[1:] for call in read.call_args_list] in ([(1000, 2000)], [(1000, 1999)])
    assert (block.annotations["version"], block.name) == (8, "steps.dat")
    assert segment.description == segment.annotations["comment"] == "step 2"
    with corvantis.open(recorded("steps")) as recording:
        whole = recording.epochs[2].response
    assert abs(len(part) - 2000) <= 1       # older Neo loses a sample in some slices
    np.testing.assert_array_equal(part.magnitude, whole[1000:1000 + len(part)])


def test_what_the_file_does_not_hold_is_no_number_and_neo_finds_the_reader(recorded):
    register()
    assert type(neo.io.get_io(str(recorded("unstored")))) is CorvantisIO
    segments = CorvantisIO(recorded("unstored")).read_block().segments
    for segment in (segments[4], segments[8]):
        assert np.isnan(segment.analogsignals[-1].magnitude[:, 0]).all()
    assert "waveform not stored" in segments[8].annotations["stimulus"]
    assert not np.isnan(segments[3].analogsignals[-1].magnitude).any()
