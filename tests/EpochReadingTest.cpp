// An epoch of an older file read back: its samples and its recomputed stimuli.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"

namespace {

using namespace corvantis_test;

using EpochReading = RecordingTest;

// Before version 7: pulse, dynamic clamp, pulse; the stored latency bytes mean nothing.
TEST_F(EpochReading, ReadsAFileOfVersionSixMadeByHand) {
    Bytes header = EpochHeaderBytes(300, 4, {3, 11, 3});
    Put(header, 888, Hex("1234"));
    const Bytes strong = Join({Hex("00009C40 00007530 00000002 00000001 00000001"), Bytes(12)});
    const Samples samples{1, 2, 3, 4, 5, 6, 7, 8, 9, 0xFFFF, 0x8000, 12};
    WriteFile(path,
              Join({FileHeaderBytes(6, 1, 1620), header, PulseBytes(), Hex("00000000 C28C0000"),
                    Bytes(32, 0xEE), strong, BigSamples(samples), Big32(580)}));
    const QuietOutput quiet;
    ASSERT_EQ(Open(), ITC_SUCCESS);
    ASSERT_EQ(ITCRetrieveEpoch(0), ITC_SUCCESS);
    EXPECT_EQ(First(session.input, 12), samples);
    EXPECT_EQ(epochhdr->pointsLatency, 12);
    ASSERT_EQ(ITCRetrieveEpochStm(0), ITC_SUCCESS);
    EXPECT_EQ(First(session.output, 12),  // 40000 + 30000 wraps to 4464
              Samples({0xFFFB, 0, 30000, 995, 0, 4464, 995, 0, 4464, 0xFFFB, 0, 30000}));
}

}  // namespace
