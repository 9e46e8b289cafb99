// Epochs read back: their samples, their recomputed stimuli and their conductances.
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

// With one entry the arrays come back; with two the place is taken eight bytes too far, so that
// the values of the first entry arrive two places early.
TEST_F(EpochReading, ConductancesAreFoundBehindASingleEntry) {
    constexpr ITCGClampParameters kClamp{0, -70};
    std::vector<float> excitatory{1, 2, 3, 4}, inhibitory{5, 6, 7, 8}, first(4), second(4);
    ASSERT_EQ(Create(), ITC_SUCCESS);
    ExcitatoryG = excitatory.data();
    InhibitoryG = inhibitory.data();
    for (const int32_t entries : {1, 2}) {
        SetUpAcquisition(entries, 4);
        for (int32_t i = 0; i < entries; ++i) ASSERT_EQ(ITCGClampParams(i, &kClamp, 6), 0);
        ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    }
    uint32_t size = 0;
    InhibitoryG = nullptr;
    EXPECT_EQ(Results({ITCWriteStmParams(0, &size), ITCRetrieveEpochStmGClamp(0, 0)}),
              Results(2, ITC_STIMULUS_ERROR));
    ExcitatoryG = first.data();
    InhibitoryG = second.data();
    EXPECT_EQ(ITCRetrieveEpochStmGClamp(0, 0), ITC_SUCCESS);
    EXPECT_TRUE(first == excitatory && second == inhibitory);
    for (const uint32_t none : {1U, 4U})
        EXPECT_EQ(ITCRetrieveEpochStmGClamp(0, none), ITC_STIMULUS_ERROR);
    for (const uint32_t channel : {0U, 1U}) {
        EXPECT_EQ(ITCRetrieveEpochStmGClamp(1, channel), ITC_SUCCESS);
        EXPECT_EQ(first, std::vector<float>({3, 4, 5, 6}));
        EXPECT_EQ(second, std::vector<float>({7, 8, 0, -70}));
    }
    ExcitatoryG = InhibitoryG = nullptr;
}

}  // namespace
