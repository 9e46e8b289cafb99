"""Neo's own suites on files of every kind, and what is ours: streams, annotations, cost."""
import os
import unittest
from unittest.mock import patch

import numpy as np
from neo.io.proxyobjects import AnalogSignalProxy

import corvantis
from corvantis.epochreader import EpochReader
from corvantis.neo import CorvantisIO, CorvantisRawIO, register

FILES = ["steps", "types", "unstored", "odd", "empty"]


def test_neos_own_suites(recorded):
    """They look for files when they are imported."""
    folder = recorded("empty").parent
    os.environ["EPHY_TESTING_DATA_FOLDER"] = str(folder)
    import neo.test.iotest.common_io_test as io_suite
    import neo.test.rawiotest.common_rawio_test as raw_suite
    common = {"entities_to_download": [],
              "entities_to_test": [recorded(recipe).name for recipe in FILES]}
    result = unittest.TestResult()
    for module, suite, kind, reader in (
            (raw_suite, raw_suite.BaseTestRawIO, "rawioclass", CorvantisRawIO),
            (io_suite, io_suite.BaseTestIO, "ioclass", CorvantisIO)):
        module.HAVE_DATALAD, module.get_local_testing_data_folder = True, lambda: folder
        case = type("Test", (suite, unittest.TestCase), {kind: reader, **common})
        unittest.defaultTestLoader.loadTestsFromTestCase(case).run(result)
    assert result.testsRun >= 7 and not result.skipped
    assert not result.failures + result.errors, (result.failures + result.errors)[0][1]


def test_a_segment_an_epoch_with_its_own_signals_read_when_loaded(recorded):
    with patch.object(EpochReader, "acquired", autospec=True,
                      side_effect=EpochReader.acquired) as read:
        block = CorvantisIO(recorded("steps")).read_block(lazy=True)
        segment = block.segments[2]
        assert not read.called
        part = segment.analogsignals[0].load(time_slice=(0.05, 0.15))
        assert read.call_count == 1
    assert (block.annotations["version"], block.name) == (8, "steps.dat")
    assert segment.description == segment.annotations["comment"] == "step 2"
    with corvantis.open(recorded("steps")) as recording:
        whole = recording.epochs[2].response
    assert abs(len(part) - 2000) <= 1       # older Neo loses a sample in some slices
    np.testing.assert_array_equal(part.magnitude, whole[1000:1000 + len(part)])


def test_what_has_no_points_and_what_the_file_does_not_hold(recorded):
    assert CorvantisIO(recorded("empty")).read_block().segments == []
    assert CorvantisIO(recorded("odd")).read_block().segments[0].analogsignals == []
    segments = CorvantisIO(recorded("unstored")).read_block().segments
    assert np.isnan(segments[4].analogsignals[-1].magnitude).all()
    assert "waveform not stored" in segments[4].annotations["stimulus"]
    assert not np.isnan(segments[3].analogsignals[-1].magnitude).any()


def test_two_thousand_epochs_of_thirty_settings_cost_their_own_signals(recorded):
    """Neo alone would make sixty signals in each segment; and each epoch is asked about once."""
    with patch.object(AnalogSignalProxy, "__init__", autospec=True,
                      side_effect=AnalogSignalProxy.__init__) as signals, \
            patch.object(EpochReader, "_ask", autospec=True, side_effect=EpochReader._ask) as asked:
        block = CorvantisIO(recorded("many")).read_block(lazy=True)
    assert signals.call_count == 2 * 2000
    assert 2000 <= asked.call_count <= 2000 + 12       # and each channel of the device once
    assert len({float(each.analogsignals[0].sampling_rate) for each in block.segments}) == 30


def test_neo_finds_the_reader_by_the_files_name(recorded):
    import neo.io
    with patch.object(neo.io, "iolist", list(neo.io.iolist)):
        register()
        assert neo.io.iolist.count(CorvantisIO) == 1
        assert type(neo.io.get_io(str(recorded("steps")))) is CorvantisIO
