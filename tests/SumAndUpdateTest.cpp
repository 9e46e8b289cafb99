// Sums of components, and the update of the output buffer.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "SpareDeviates.h"
#include "WrittenSamples.h"

namespace {

using namespace corvantis_test;

constexpr int32_t kPoints = 10;
constexpr int32_t kCapacity = 64;

ITCPulseParameters Pulse(int32_t amplitude, int32_t mean, int32_t pre = 2, int32_t points = 6,
                         int32_t tail = 2) {
    return {amplitude, mean, points, tail, pre, {}};
}

class SumAndUpdateTest : public testing::Test {
  protected:
    SumAndUpdateTest() : session(kCapacity) {
        SetUpEntries("01");
        session.output.assign(kCapacity, kUntouched);
    }
    static void SetUpEntries(const char* channels) {
        EXPECT_EQ(ITCSetSeq(channels, channels), ITC_SUCCESS);
        EXPECT_EQ(ITCSetAcqParams(100, kPoints, 0, 0), ITC_SUCCESS);
    }
    static ITCSummedParameters* Sum() {
        return static_cast<ITCSummedParameters*>(StmParameters[0]);
    }
    static void ExpectSum(int32_t result, const Samples& expected) {
        const QuietOutput quiet;
        const auto calculate = [&](uint16_t* buffer) {
            EXPECT_EQ(ITCStmCreateSum(buffer, Sum()), result);
        };
        EXPECT_EQ(Written(kPoints, calculate), expected);
    }
    static int32_t Update() {
        const QuietOutput quiet;
        return ITCUpdateStm();
    }
    Samples Played(size_t points) const {
        EXPECT_EQ(Update(), ITC_SUCCESS);
        const auto end = session.output.begin() + static_cast<std::ptrdiff_t>(points);
        EXPECT_EQ(std::count(end, session.output.end(), kUntouched), session.output.end() - end);
        return {session.output.begin(), end};
    }
    void ExpectRefused(const char* what) {
        EXPECT_EQ(Update(), ITC_STIMULUS_ERROR) << what;
        EXPECT_EQ(session.output, Samples(kCapacity, kUntouched)) << what;
    }

    LibrarySession session;
};

Samples Levels(int32_t held, int32_t level) {
    Samples samples(kPoints, static_cast<uint16_t>(held));
    std::fill(samples.begin() + 2, samples.end() - 2, static_cast<uint16_t>(level));
    return samples;
}

TEST_F(SumAndUpdateTest, AShorterWaveAddsThePreviousComponentsRestAgain) {
    const Samples wave = {1, 2, 3, 4};
    const ITCFilewaveParameters file{wave.data(), 4};
    const ITCPulseParameters pulse = Pulse(50, 100);
    InstallSum(0, 2);
    ASSERT_EQ(ITCAddPulseParams(0, &pulse), ITC_SUCCESS);
    ASSERT_EQ(ITCAddFilewaveParams(0, &file), ITC_SUCCESS);
    const Samples again = {101, 102, 153, 154, 300, 300, 300, 300, 200, 200};
    ExpectSum(ITC_SUCCESS, again);
    SetUpEntries("0");
    EXPECT_EQ(Played(kPoints), again);
    InstallSum(0, 2);
    ASSERT_EQ(ITCAddFilewaveParams(0, &file), ITC_SUCCESS);
    ASSERT_EQ(ITCAddPulseParams(0, &pulse), ITC_SUCCESS);
    ExpectSum(ITC_SUCCESS, {101, 102, 153, 154, 150, 150, 150, 150, 100, 100});
}

TEST_F(SumAndUpdateTest, AFailingSumKeepsWhatCameBefore) {
    const ITCPulseParameters pulse = Pulse(50, 100);
    const ITCCirclePulseParameters circle{};
    const auto fill = [&](const ITCPulseParameters* third) {
        InstallSum(0, 3);
        ASSERT_EQ(ITCAddPulseParams(0, &pulse), ITC_SUCCESS);
        ASSERT_EQ(ITCAddPulseParams(0, &pulse), ITC_SUCCESS);
        EXPECT_EQ(third == nullptr ? 0 : ITCAddPulseParams(0, third), ITC_SUCCESS);
        ExpectSum(ITC_STIMULUS_ERROR, Levels(200, 300));
    };
    for (const ITCPulseParameters& leaving :
         {Pulse(5, 1, 2, 7, 2), Pulse(5, 1, 0, 0, 11), Pulse(5, 1, -5, 15, 0)}) {
        fill(&leaving);
    }
    fill(nullptr);
    ASSERT_EQ(ITCAddCirclePulseParams(0, &circle), ITC_SUCCESS);
    for (const int type : {12, 7, 6, 0, 15, -1}) {
        Sum()->componentType[2] = static_cast<int8_t>(type);
        ExpectSum(ITC_STIMULUS_ERROR, Levels(200, 300));
    }
}

TEST_F(SumAndUpdateTest, UpdateInterleavesEveryEntry) {
    const ITCPulseParameters pulse = Pulse(65300, 0);  // wraps on the last steps of the ramp
    const ITCRampParameters ramp{600, 7, 6, 2, 2, {}};
    InstallSum(0, 2);
    ASSERT_EQ(ITCAddPulseParams(0, &pulse), ITC_SUCCESS);
    ASSERT_EQ(ITCAddRampParams(0, &ramp), ITC_SUCCESS);
    ASSERT_EQ(ITCRampParams(1, &ramp), ITC_SUCCESS);
    const Samples both = Played(size_t{2} * kPoints);
    const Samples risen = {7, 7, 7, 107, 207, 307, 407, 507, 7, 7};
    for (size_t p = 0; p < kPoints; ++p) {
        const int sum = risen[p] + (p >= 2 && p < 8 ? 65300 : 0);
        EXPECT_EQ(both[2 * p], sum % 65536) << p;
        EXPECT_EQ(both[2 * p + 1], risen[p]) << p;
    }
    QuietOutput lines;
    ASSERT_EQ(ITCUpdateStm(), ITC_SUCCESS);
    EXPECT_EQ(lines.Text(), "stim type 3\nstim type 4\nstim type 4\n");
}

TEST_F(SumAndUpdateTest, UnplayedPointsAreZeroAndOthersAreRecomputedAlike) {
    DropSpareDeviate();
    const Samples wave = {9, 8};
    const ITCFilewaveParameters file{wave.data(), 2};
    const ITCSegmentedNoiseParameters noise{5000, 0, 3, 10, 0, 0, 1, {}};
    ASSERT_EQ(ITCFilewaveParams(0, &file), ITC_SUCCESS);
    ASSERT_EQ(ITCSegmentedNoiseParams(1, &noise), ITC_SUCCESS);
    const Samples first = Played(size_t{2} * kPoints);
    for (size_t p = 0; p < kPoints; ++p) EXPECT_EQ(first[2 * p], p < 2 ? wave[p] : 0) << p;
    EXPECT_EQ(Played(size_t{2} * kPoints), first);
}

TEST_F(SumAndUpdateTest, WhatCannotBeComputedLeavesTheOutput) {
    const ITCPulseParameters pulse = Pulse(5, 1);
    const ITCGenericParameters generic{5, 1, 6, 2, 2, {}};
    ASSERT_EQ(ITCPulseParams(0, &pulse), ITC_SUCCESS);
    ExpectRefused("an entry without type");
    for (int8_t type = -1; type <= 15; ++type) {
        epochhdr->stimType[1] = type;
        if (type != 11) ExpectRefused("an entry without record");
    }
    InstallSum(1, 2);
    ASSERT_EQ(ITCAddPulseParams(1, &pulse), ITC_SUCCESS);
    ExpectRefused("a sum with a missing component");
    ASSERT_EQ(ITCPulseParams(1, &pulse), ITC_SUCCESS);
    ASSERT_EQ(ITCGenericParams(&generic), ITC_SUCCESS);
    ExpectRefused("a generic stimulus");
}

TEST_F(SumAndUpdateTest, RecordsThatLeaveTheEpochAreRefused) {
    SetUpEntries("0");
    const Samples wave(11, 1);
    const ITCFilewaveParameters file{wave.data(), 11};
    const ITCSpatialStmParameters spatial{11, {}};
    ASSERT_EQ(ITCFilewaveParams(0, &file), ITC_SUCCESS);
    ExpectRefused("a longer wave");
    ASSERT_EQ(ITCSpatialParams(0, &spatial), ITC_SUCCESS);
    ExpectRefused("a longer spatial stimulus");
    // Runs that fill the epoch in sum, with one of them negative.
    for (const auto& [pre, points, tail] :
         {std::array{-5, 15, 0}, std::array{0, 15, -5}, std::array{INT32_MAX, INT32_MAX, 12},
          std::array{-3, 10, 3}}) {
        const ITCPulseParameters pulse = Pulse(5, 1, pre, points, tail);
        const ITCSegmentedNoiseParameters segments{5, 1, 1, points, tail, pre, 1, {}};
        const ITCBinaryNoiseParameters binary{5, 1, 1, points, tail, pre, 1, {}};
        const ITCNoiseParameters noise{5, 1, 1, points, tail, pre, 0, 100, 1};
        ASSERT_EQ(ITCPulseParams(0, &pulse), ITC_SUCCESS);
        ExpectRefused("a pulse");
        ASSERT_EQ(ITCSegmentedNoiseParams(0, &segments), ITC_SUCCESS);
        ExpectRefused("segmented noise");
        ASSERT_EQ(ITCBinaryNoiseParams(0, &binary), ITC_SUCCESS);
        ExpectRefused("binary noise");
        ASSERT_EQ(ITCNoiseParams(0, &noise), ITC_SUCCESS);
        ExpectRefused("filtered noise");
    }
    const ITCPulseParameters fitting = Pulse(5, 1);
    ASSERT_EQ(ITCPulseParams(0, &fitting), ITC_SUCCESS);
    epochhdr->epochPoints = kPoints - 1;
    ExpectRefused("a shorter epoch");
}

// Noise that lays no sample outside, whatever its runs: no whole segment, or the last one cut off.
TEST_F(SumAndUpdateTest, SegmentsInsideTheEpochAreComputed) {
    SetUpEntries("0");
    const ITCSegmentedNoiseParameters none{5, 7, 1, 5, 6, -1, 10, {}};
    ASSERT_EQ(ITCSegmentedNoiseParams(0, &none), ITC_SUCCESS);
    EXPECT_EQ(Played(kPoints), Samples(kPoints, 7));
    const ITCBinaryNoiseParameters cut{5, 100, 1, 12, -2, 0, 5, {}};
    ASSERT_EQ(ITCBinaryNoiseParams(0, &cut), ITC_SUCCESS);
    for (const uint16_t sample : Played(kPoints)) EXPECT_TRUE(sample == 95 || sample == 105);
}

TEST_F(SumAndUpdateTest, TheOutputBufferIsNotExceeded) {
    const ITCGClampParameters clamp{};
    for (int32_t channel = 0; channel < 4; ++channel)
        ASSERT_EQ(ITCGClampParams(channel, &clamp, 6), ITC_SUCCESS);
    for (const auto& [entries, points] :
         {std::pair{4, 17}, std::pair{1, 65}, std::pair{4, 1 << 30}, std::pair{5, 1},
          std::pair{-1, 10}, std::pair{49152, 1}, std::pair{INT32_MIN, 1}}) {
        epochhdr->sequenceLength = entries;
        epochhdr->epochPoints = points;
        ExpectRefused("too many samples");
    }
    epochhdr->sequenceLength = 0;
    epochhdr->epochPoints = kPoints;
    EXPECT_EQ(Played(0), Samples());
    for (const int32_t points : {-1, INT32_MIN}) {
        epochhdr->sequenceLength = 4;
        epochhdr->epochPoints = points;
        Update();
        EXPECT_EQ(session.output, Samples(kCapacity, kUntouched));
    }
    epochhdr->epochPoints = 16;
    EXPECT_EQ(Played(kCapacity), Samples(kCapacity, 0));
}

}  // namespace
