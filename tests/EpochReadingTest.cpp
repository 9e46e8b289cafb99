// Epochs read back: their samples, their recomputed stimuli and their conductances.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"
#include "SpareDeviates.h"

namespace {

using namespace corvantis_test;

using EpochReading = RecordingTest;

constexpr ITCSineParameters kSine{3000, 100, 16, 0, 44, 10, 10, {}};
constexpr ITCNoiseParameters kNoise{500, -20, 77, 50, 7, 7, 5, 1000, 2};
constexpr ITCSegmentedNoiseParameters kSegments{800, 0, 5, 60, 2, 2, 6, {}};
constexpr ITCBinaryNoiseParameters kBinary{700, 50, 0, 60, 2, 2, 4, {}};
constexpr ITCAlternateVoltageParameters kAlternating{3, 250, -250, 54, 5, 5, {}};
constexpr ITCGClampParameters kClamp{0, -70};

// One epoch of each number of entries, every stimulus that a file can hold among them.
int32_t InstallStimuli(int32_t entries) {
    constexpr ITCPulseParameters kPulse{10000, 30000, 24, 20, 20, {}};
    constexpr ITCRampParameters kRamp{-999, 5, 40, 14, 10, {}};
    constexpr ITCSpatialStmParameters kSpatial{64, {}};
    if (entries == 1) return ITCNoiseParams(0, &kNoise);
    if (entries == 2) {
        return std::max({ITCSegmentedNoiseParams(0, &kSegments), InstallSum(1, 4),
                         ITCAddSineParams(1, &kSine), ITCAddRampParams(1, &kRamp),
                         ITCAddNoiseParams(1, &kNoise), ITCAddAltVoltParams(1, &kAlternating)});
    }
    if (entries == 3) {
        return std::max(
            {ITCSineParams(0, &kSine), ITCPulseParams(1, &kPulse), ITCRampParams(2, &kRamp)});
    }
    return std::max({ITCAltVoltageParams(0, &kAlternating), ITCSpatialParams(1, &kSpatial),
                     ITCGClampParams(2, &kClamp, 1000), ITCBinaryNoiseParams(3, &kBinary)});
}

TEST_F(EpochReading, WhatWasPlayedIsRecomputed) {
    constexpr int32_t kPoints = 64;
    std::vector<float> conductance(kPoints, 1.5F);
    std::vector<Samples> played, acquired;
    DropSpareDeviate();
    const QuietOutput quiet;
    PseudoRandom random;
    ExcitatoryG = InhibitoryG = conductance.data();
    ASSERT_EQ(Create(), ITC_SUCCESS);
    for (const int32_t entries : {1, 2, 4, 3, 1}) {
        const auto size = size_t{kPoints} * static_cast<size_t>(entries);
        SetUpAcquisition(entries, kPoints);
        ASSERT_EQ(InstallStimuli(entries), ITC_SUCCESS);
        ITCWriteEpochCom(std::to_string(played.size()).c_str());
        ASSERT_EQ(ITCUpdateStm(), ITC_SUCCESS);
        played.push_back(First(session.output, size));
        random.Fill(session.input);
        acquired.push_back(First(session.input, size));
        ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    }
    ExcitatoryG = InhibitoryG = nullptr;
    ASSERT_EQ(ITCCloseFile(), 0);
    ASSERT_EQ(Open(), ITC_SUCCESS);
    ASSERT_EQ(filehdr->numEpochs, static_cast<int32_t>(played.size()));
    for (const size_t epoch : {4U, 0U, 3U, 1U, 3U, 2U, 4U}) {
        SCOPED_TRACE(epoch);
        const auto number = static_cast<int32_t>(epoch);
        session.input.assign(session.input.size(), 0xABCD);
        session.output.assign(session.output.size(), 0xABCD);
        ASSERT_EQ(ITCRetrieveEpoch(number), ITC_SUCCESS);
        EXPECT_EQ(First(session.input, acquired[epoch].size()), acquired[epoch]);
        EXPECT_EQ(epochhdr->epochComment, std::to_string(epoch));
        EXPECT_EQ(epochhdr->epochPoints, kPoints);
        ASSERT_EQ(ITCRetrieveEpochStm(number), ITC_SUCCESS);
        EXPECT_EQ(First(session.output, played[epoch].size()), played[epoch]);
    }
}

// Before version 7: pulse, dynamic clamp, pulse; the stored latency bytes mean nothing.
TEST_F(EpochReading, ReadsAFileOfVersionSixMadeByHand) {
    Bytes header = EpochHeaderBytes(300, 4, {3, 11, 3});
    Put(header, 0, Hex("41200000"));
    Put(header, 4, Text("from 2003", 20));
    Put(header, 888, Hex("1234"));
    const Bytes strongPulse =
        Join({Hex("00009C40 00007530 00000002 00000001 00000001"), Bytes(12)});
    const Samples samples{1, 2, 3, 4, 5, 6, 7, 8, 9, 0xFFFF, 0x8000, 12};
    WriteFile(path,
              Join({FileHeaderBytes(6, 1, 1620), header, PulseBytes(), Hex("00000000 C28C0000"),
                    Bytes(32, 0xEE), strongPulse, BigSamples(samples), Big32(580)}));
    const QuietOutput quiet;
    ASSERT_EQ(Open(), ITC_SUCCESS);
    ASSERT_EQ(ITCRetrieveEpoch(0), ITC_SUCCESS);
    EXPECT_EQ(First(session.input, 12), samples);
    EXPECT_EQ(epochhdr->pointsLatency, 12);
    EXPECT_EQ(epochhdr->epochTime, 10.0F);
    EXPECT_STREQ(epochhdr->epochComment, "from 2003");
    EXPECT_EQ(epochhdr->channelSequence[2], 0xD100);
    ASSERT_EQ(ITCRetrieveEpochStm(0), ITC_SUCCESS);
    EXPECT_EQ(First(session.output, 12),  // 40000 + 30000 wraps to 4464
              Samples({0xFFFB, 0, 30000, 995, 0, 4464, 995, 0, 4464, 0xFFFB, 0, 30000}));
}

TEST_F(EpochReading, AnEpochAboveTheBuffersIsRefusedAfterItsHeader) {
    SetUpPulseEpoch(2);
    ASSERT_EQ(Create(), ITC_SUCCESS);
    ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    FreeChannels();
    epochhdr->epochPoints = 0;
    *ITCbufsize = 7;
    QuietOutput output;
    EXPECT_EQ(ITCRetrieveEpoch(0), ITC_TOO_LARGE);
    EXPECT_EQ(ITCRetrieveEpochStm(0), ITC_TOO_LARGE);
    EXPECT_EQ(ITCRetrieveEpochStmGClamp(0, 0), ITC_TOO_LARGE);
    EXPECT_EQ(output.Text(),
              "Fail-point (itc-code/ITCFileAccess:703)\n"
              "Fail-point (itc-code/ITCFileAccess:759)\n"
              "Fail-point (itc-code/ITCFileAccess:815)\n");
    EXPECT_EQ(epochhdr->epochPoints, kPulseEpochPoints);
    EXPECT_NE(StmParameters[1], nullptr);
    EXPECT_EQ(ITCEpochParameters(0), ITC_SUCCESS);
    *ITCbufsize = 8;
    EXPECT_EQ(ITCRetrieveEpoch(0), ITC_SUCCESS);
}

// With one entry the arrays come back; with two the place is taken eight bytes too far, so that
// the values of the first entry arrive two places early.
TEST_F(EpochReading, ConductancesAreFoundBehindASingleEntry) {
    std::vector<float> excitatory{1, 2, 3, 4}, inhibitory{5, 6, 7, 8};
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
    EXPECT_EQ(ITCWriteStmParams(0, &size), ITC_STIMULUS_ERROR);
    EXPECT_EQ(size, 0);
    std::vector<float> first(4), second(4);
    ExcitatoryG = first.data();
    InhibitoryG = second.data();
    EXPECT_EQ(ITCRetrieveEpochStmGClamp(0, 0), ITC_SUCCESS);
    EXPECT_EQ(first, excitatory);
    EXPECT_EQ(second, inhibitory);
    EXPECT_EQ(ITCRetrieveEpochStmGClamp(0, 1), ITC_STIMULUS_ERROR);
    EXPECT_EQ(ITCRetrieveEpochStmGClamp(0, 4), ITC_STIMULUS_ERROR);
    for (const uint32_t channel : {0U, 1U}) {
        EXPECT_EQ(ITCRetrieveEpochStmGClamp(1, channel), ITC_SUCCESS);
        EXPECT_EQ(first, std::vector<float>({3, 4, 5, 6}));
        EXPECT_EQ(second, std::vector<float>({7, 8, 0, -70}));
    }
    ExcitatoryG = nullptr;
    EXPECT_EQ(ITCRetrieveEpochStmGClamp(0, 0), ITC_STIMULUS_ERROR);
    InhibitoryG = nullptr;
}

// A file wave and a trigger series leave no bytes behind: nothing to play, whatever memory held.
TEST_F(EpochReading, StimuliWithoutAnEncodingComeBackEmpty) {
    const Samples samples{9, 8, 7, 6};
    const QuietOutput quiet;
    for (const uint8_t type : Bytes{5, 8}) {
        WriteFile(path, Join({FileHeaderBytes(8, 1, 1500), EpochHeaderBytes(100, 4, {type}),
                              BigSamples(samples), Big32(580)}));
        ASSERT_EQ(Open(), ITC_SUCCESS);
        ASSERT_EQ(ITCRetrieveEpoch(0), ITC_SUCCESS);
        EXPECT_EQ(First(session.input, 4), samples);
        session.output.assign(session.output.size(), 0xABCD);
        const bool isWave = type == 5;  // a trigger series of interval 0 cannot be computed
        EXPECT_EQ(ITCRetrieveEpochStm(0), isWave ? ITC_SUCCESS : ITC_STIMULUS_ERROR);
        EXPECT_EQ(First(session.output, 4), Samples(4, isWave ? 0 : 0xABCD));
        EXPECT_EQ(ITCCloseFile(), 0);
    }
}

}  // namespace
