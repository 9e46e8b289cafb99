// Sums of components, and the update of the output buffer.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <tuple>
#include <utility>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "ReferenceRandom.h"
#include "ReferenceSamples.h"

namespace {

using corvantis_test::kUntouched;
using corvantis_test::LibrarySession;
using corvantis_test::QuietOutput;
using corvantis_test::Samples;
using corvantis_test::Written;

constexpr int32_t kPoints = 10;
constexpr int32_t kCapacity = 64;

ITCPulseParameters Pulse(int32_t amplitude, int32_t mean, int32_t pre = 2, int32_t points = 6,
                         int32_t tail = 2) {
    return {amplitude, mean, points, tail, pre, {}};
}

class SumAndUpdateTest : public testing::Test {
  protected:
    SumAndUpdateTest() : session(kCapacity) {
        EXPECT_EQ(ITCSetSeq("01", "01"), ITC_SUCCESS);
        EXPECT_EQ(ITCSetAcqParams(100, kPoints, 0, 0), ITC_SUCCESS);
        session.output.assign(kCapacity, kUntouched);
    }
    static void InstallSum(int32_t channel, int32_t count) {
        ITCSummedParameters sum{};
        sum.count = count;
        ASSERT_EQ(ITCSummedParams(channel, &sum), ITC_SUCCESS);
    }
    static ITCSummedParameters* Sum(size_t channel) {
        return static_cast<ITCSummedParameters*>(StmParameters[channel]);
    }
    void ExpectSum(int32_t result, const Samples& expected) {
        const QuietOutput quiet;
        EXPECT_EQ(
            Written(kPoints,
                    [&](uint16_t* buffer) { EXPECT_EQ(ITCStmCreateSum(buffer, Sum(0)), result); }),
            expected);
    }
    int32_t Update() {
        const QuietOutput quiet;
        return ITCUpdateStm();
    }
    void ExpectRefused(const char* what) {
        EXPECT_EQ(Update(), ITC_STIMULUS_ERROR) << what;
        EXPECT_EQ(session.output, Samples(kCapacity, kUntouched)) << what;
    }

    LibrarySession session;
};

Samples Levels(uint16_t held, uint16_t level) {
    Samples samples(kPoints, held);
    std::fill(samples.begin() + 2, samples.end() - 2, level);
    return samples;
}

TEST_F(SumAndUpdateTest, SumsAddAndWrap) {
    InstallSum(0, 0);
    ExpectSum(ITC_SUCCESS, Samples(kPoints, 0));
    for (const auto& [first, second, held, level] :
         {std::tuple{Pulse(50, 100), Pulse(70, 100), 200, 320},
          std::tuple{Pulse(40000, 0), Pulse(30000, 0), 0, 4464},
          std::tuple{Pulse(0, 20000), Pulse(-5, 20000), 40000, 39995},
          std::tuple{Pulse(-1, 0), Pulse(-1, 0), 0, 0xFFFE}}) {
        InstallSum(0, 2);
        ASSERT_EQ(ITCAddPulseParams(0, &first), ITC_SUCCESS);
        ASSERT_EQ(ITCAddPulseParams(0, &second), ITC_SUCCESS);
        ExpectSum(ITC_SUCCESS, Levels(static_cast<uint16_t>(held), static_cast<uint16_t>(level)));
    }
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
    ASSERT_EQ(ITCSetSeq("0", "0"), ITC_SUCCESS);
    ASSERT_EQ(Update(), ITC_SUCCESS);
    EXPECT_EQ(Samples(session.output.begin(), session.output.begin() + kPoints), again);
    InstallSum(0, 2);
    ASSERT_EQ(ITCAddFilewaveParams(0, &file), ITC_SUCCESS);
    ASSERT_EQ(ITCAddPulseParams(0, &pulse), ITC_SUCCESS);
    ExpectSum(ITC_SUCCESS, {101, 102, 153, 154, 150, 150, 150, 150, 100, 100});
}

TEST_F(SumAndUpdateTest, AFailingSumKeepsWhatCameBefore) {
    const ITCPulseParameters pulse = Pulse(50, 100);
    const ITCCirclePulseParameters circle{};
    const ITCPulseParameters leaving[] = {Pulse(5, 1, 2, 7, 2), Pulse(5, 1, 0, 0, 11),
                                          Pulse(5, 1, -5, 15, 0), Pulse(5, 1, 15, -5, 0)};
    const auto fill = [&](int32_t count) {
        InstallSum(0, count);
        ASSERT_EQ(ITCAddPulseParams(0, &pulse), ITC_SUCCESS);
        ASSERT_EQ(ITCAddPulseParams(0, &pulse), ITC_SUCCESS);
    };
    fill(3);
    ExpectSum(ITC_STIMULUS_ERROR, Levels(200, 300));
    ASSERT_EQ(ITCAddCirclePulseParams(0, &circle), ITC_SUCCESS);
    for (const int type : {12, 7, 6, 0, 15, -1}) {
        Sum(0)->componentType[2] = static_cast<int8_t>(type);
        ExpectSum(ITC_STIMULUS_ERROR, Levels(200, 300));
    }
    for (const ITCPulseParameters& record : leaving) {
        fill(3);
        ASSERT_EQ(ITCAddPulseParams(0, &record), ITC_SUCCESS);
        ExpectSum(ITC_STIMULUS_ERROR, Levels(200, 300));
    }
}

TEST_F(SumAndUpdateTest, UpdateInterleavesEveryEntry) {
    const ITCPulseParameters pulse = Pulse(1000, 0);
    const ITCRampParameters ramp{600, 7, 6, 2, 2, {}};
    InstallSum(0, 2);
    ASSERT_EQ(ITCAddPulseParams(0, &pulse), ITC_SUCCESS);
    ASSERT_EQ(ITCAddRampParams(0, &ramp), ITC_SUCCESS);
    ASSERT_EQ(ITCRampParams(1, &ramp), ITC_SUCCESS);
    const Samples risen = {7, 7, 7, 107, 207, 307, 407, 507, 7, 7};
    QuietOutput lines;
    ASSERT_EQ(ITCUpdateStm(), ITC_SUCCESS);
    EXPECT_EQ(lines.Text(), "stim type 3\nstim type 4\nstim type 4\n");
    for (size_t p = 0; p < kPoints; ++p) {
        EXPECT_EQ(session.output[2 * p], risen[p] + (p >= 2 && p < 8 ? 1000 : 0)) << p;
        EXPECT_EQ(session.output[2 * p + 1], risen[p]) << p;
    }
    EXPECT_EQ(Samples(session.output.begin() + 2 * kPoints, session.output.end()),
              Samples(kCapacity - 2 * kPoints, kUntouched));
}

TEST_F(SumAndUpdateTest, UnplayedPointsAreZeroAndOthersAreRecomputedAlike) {
    corvantis_test::DropSpareDeviate();
    const Samples wave = {9, 8};
    const ITCFilewaveParameters file{wave.data(), 2};
    const ITCSegmentedNoiseParameters noise{5000, 0, 3, 10, 0, 0, 1, {}};
    ASSERT_EQ(ITCFilewaveParams(0, &file), ITC_SUCCESS);
    ASSERT_EQ(ITCSegmentedNoiseParams(1, &noise), ITC_SUCCESS);
    ASSERT_EQ(Update(), ITC_SUCCESS);
    const Samples first = session.output;
    for (size_t p = 0; p < kPoints; ++p) EXPECT_EQ(first[2 * p], p < 2 ? wave[p] : 0) << p;
    ASSERT_EQ(Update(), ITC_SUCCESS);
    EXPECT_EQ(session.output, first);
}

TEST_F(SumAndUpdateTest, WhatCannotBeComputedLeavesTheOutput) {
    const ITCPulseParameters pulse = Pulse(5, 1);
    const ITCGenericParameters generic{5, 1, 6, 2, 2, {}};
    const ITCCirclePulseParameters circle{};
    ASSERT_EQ(ITCPulseParams(0, &pulse), ITC_SUCCESS);
    ExpectRefused("an entry without type");
    for (const int type : {1, 2, 3, 4, 5, 7, 8, 9, 10, 13, 14}) {
        epochhdr->stimType[1] = static_cast<int8_t>(type);
        ExpectRefused("an entry without record");
    }
    ASSERT_EQ(ITCCirclePulseParams(1, &circle), ITC_SUCCESS);
    ExpectRefused("a circle pulse");
    InstallSum(1, 2);
    ASSERT_EQ(ITCAddPulseParams(1, &pulse), ITC_SUCCESS);
    ExpectRefused("a sum with a missing component");
    ASSERT_EQ(ITCPulseParams(1, &pulse), ITC_SUCCESS);
    ASSERT_EQ(ITCGenericParams(&generic), ITC_SUCCESS);
    ExpectRefused("a generic stimulus");
}

TEST_F(SumAndUpdateTest, RecordsThatLeaveTheEpochAreRefused) {
    ASSERT_EQ(ITCSetSeq("0", "0"), ITC_SUCCESS);
    const Samples wave(11, 1);
    const ITCFilewaveParameters file{wave.data(), 11};
    const ITCSpatialStmParameters spatial{11, {}};
    ASSERT_EQ(ITCFilewaveParams(0, &file), ITC_SUCCESS);
    ExpectRefused("a longer wave");
    ASSERT_EQ(ITCSpatialParams(0, &spatial), ITC_SUCCESS);
    ExpectRefused("a longer spatial stimulus");
    // Runs that fill the epoch in sum, with one of them negative.
    for (const auto& [pre, points, tail] :
         {std::array{-5, 15, 0}, std::array{15, -5, 0}, std::array{0, 15, -5},
          std::array{INT32_MAX, INT32_MAX, 12}, std::array{-3, 10, 3}}) {
        const ITCPulseParameters pulse = Pulse(5, 1, pre, points, tail);
        const ITCSegmentedNoiseParameters segments{5, 1, 1, points, tail, pre, 1, {}};
        const ITCNoiseParameters noise{5, 1, 1, points, tail, pre, 0, 100, 1};
        ASSERT_EQ(ITCPulseParams(0, &pulse), ITC_SUCCESS);
        ExpectRefused("a pulse");
        if (points < 0) continue;
        ASSERT_EQ(ITCSegmentedNoiseParams(0, &segments), ITC_SUCCESS);
        ExpectRefused("segmented noise");
        ASSERT_EQ(ITCNoiseParams(0, &noise), ITC_SUCCESS);
        ExpectRefused("filtered noise");
    }
    const ITCPulseParameters fitting = Pulse(5, 1);
    ASSERT_EQ(ITCPulseParams(0, &fitting), ITC_SUCCESS);
    epochhdr->epochPoints = kPoints - 1;
    ExpectRefused("a shorter epoch");
}

// The line comes before any check, so a log shows what was tried.
TEST_F(SumAndUpdateTest, CalculationsThatFailAnnounceThemselves) {
    const ITCPulseParameters longer = Pulse(5, 1, 15, -5, 0);
    ASSERT_EQ(ITCSetSeq("0", "0"), ITC_SUCCESS);
    for (const int type : {0, 6, 12, 15, -1}) {
        epochhdr->stimType[0] = static_cast<int8_t>(type);
        QuietOutput output;
        EXPECT_EQ(ITCUpdateStm(), ITC_STIMULUS_ERROR);
        EXPECT_EQ(output.Text(), "stim type " + std::to_string(type) + "\n");
    }
    ASSERT_EQ(ITCPulseParams(0, &longer), ITC_SUCCESS);
    QuietOutput output;
    EXPECT_EQ(ITCUpdateStm(), ITC_STIMULUS_ERROR);
    EXPECT_EQ(output.Text(), "stim type 3\n");
}

// Noise that lays no sample outside, whatever its runs: no whole segment, or the last one cut off.
TEST_F(SumAndUpdateTest, SegmentsInsideTheEpochAreComputed) {
    ASSERT_EQ(ITCSetSeq("0", "0"), ITC_SUCCESS);
    const ITCSegmentedNoiseParameters none{5, 7, 1, 5, 6, -1, 10, {}};
    ASSERT_EQ(ITCSegmentedNoiseParams(0, &none), ITC_SUCCESS);
    EXPECT_EQ(Update(), ITC_SUCCESS);
    EXPECT_TRUE(std::all_of(session.output.begin(), session.output.begin() + kPoints,
                            [](uint16_t sample) { return sample == 7; }));
    const ITCBinaryNoiseParameters cut{5, 100, 1, 12, -2, 0, 5, {}};
    ASSERT_EQ(ITCBinaryNoiseParams(0, &cut), ITC_SUCCESS);
    EXPECT_EQ(Update(), ITC_SUCCESS);
    EXPECT_TRUE(std::all_of(session.output.begin(), session.output.begin() + kPoints,
                            [](uint16_t sample) { return sample == 95 || sample == 105; }));
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
    EXPECT_EQ(Update(), ITC_SUCCESS);
    EXPECT_EQ(session.output, Samples(kCapacity, kUntouched));
    for (const int32_t points : {-1, INT32_MIN}) {
        epochhdr->sequenceLength = 4;
        epochhdr->epochPoints = points;
        Update();
        EXPECT_EQ(session.output, Samples(kCapacity, kUntouched));
    }
    epochhdr->epochPoints = 16;
    EXPECT_EQ(Update(), ITC_SUCCESS);
    EXPECT_EQ(session.output, Samples(kCapacity, 0));
}

}  // namespace
