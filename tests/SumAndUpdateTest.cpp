// Sums of components, and the update of the output buffer.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "StimulusRecords.h"
#include "WrittenSamples.h"

namespace {

using namespace corvantis_test;

constexpr int32_t kPoints = 10;
constexpr ITCPulseParameters kStep = {50, 100, 6, 2, 2, {}};
constexpr ITCRampParameters kRamp = {600, 7, 6, 2, 2, {}};

class SumAndUpdateTest : public testing::Test {
  protected:
    SumAndUpdateTest() : session(64) { SetUpEntries("0"); }
    static void SetUpEntries(const char* channels) {
        EXPECT_EQ(ITCSetSeq(channels, channels), ITC_SUCCESS);
        EXPECT_EQ(ITCSetAcqParams(100, kPoints, 0, 0), ITC_SUCCESS);
    }
    // The played samples, before those that are left alone.
    Samples Played(size_t points, int32_t result = ITC_SUCCESS) {
        const QuietOutput quiet;
        session.output.assign(64, kUntouched);
        EXPECT_EQ(ITCUpdateStm(), result);
        const auto end = session.output.begin() + static_cast<ptrdiff_t>(points);
        EXPECT_EQ(std::count(end, session.output.end(), kUntouched), session.output.end() - end);
        return {session.output.begin(), end};
    }
    void ExpectRefused(int32_t built = ITC_SUCCESS) {
        EXPECT_EQ(built, ITC_SUCCESS);
        Played(0, ITC_STIMULUS_ERROR);
    }

    LibrarySession session;
};

TEST_F(SumAndUpdateTest, AShorterWaveAddsThePreviousComponentsRestAgain) {
    const Samples wave = {1, 2, 3, 4};
    const ITCFilewaveParameters file{wave.data(), 4};
    ASSERT_EQ(
        Results({InstallSum(0, 2), ITCAddFilewaveParams(0, &file), ITCAddPulseParams(0, &kStep)}),
        Results(3));
    EXPECT_EQ(Played(kPoints), Samples({101, 102, 153, 154, 150, 150, 150, 150, 100, 100}));
    ASSERT_EQ(
        Results({InstallSum(0, 2), ITCAddPulseParams(0, &kStep), ITCAddFilewaveParams(0, &file)}),
        Results(3));
    const Samples again = {101, 102, 153, 154, 300, 300, 300, 300, 200, 200};
    EXPECT_EQ(Played(kPoints), again);
    const auto* sum = static_cast<const ITCSummedParameters*>(StmParameters[0]);
    const auto calculate = [=](uint16_t* samples) { EXPECT_EQ(ITCStmCreateSum(samples, sum), 0); };
    EXPECT_EQ(Written(kPoints, calculate), again);
}

TEST_F(SumAndUpdateTest, UpdatesInterleaveEveryEntryAndWrap) {
    SetUpEntries("0123");
    DropSpareDeviate();
    const ITCPulseParameters high{65300, 0, 6, 2, 2, {}};
    const ITCSegmentedNoiseParameters noise{5000, 0, 3, 10, 0, 0, 1, {}};
    const Samples wave = {9, 8}, risen = {7, 7, 7, 107, 207, 307, 407, 507, 7, 7};
    const ITCFilewaveParameters file{wave.data(), 2};
    ASSERT_EQ(Results({InstallSum(0, 2), ITCAddPulseParams(0, &high), ITCAddRampParams(0, &kRamp),
                       ITCRampParams(1, &kRamp), ITCFilewaveParams(2, &file),
                       ITCSegmentedNoiseParams(3, &noise)}),
              Results(6));
    const Samples all = Played(4 * kPoints);
    for (size_t p = 0; p < kPoints; ++p) {
        EXPECT_EQ(all[4 * p], (risen[p] + (p >= 2 && p < 8 ? 65300 : 0)) % 65536) << p;
        EXPECT_EQ(all[4 * p + 1], risen[p]) << p;
        EXPECT_EQ(all[4 * p + 2], p < 2 ? wave[p] : 0) << "what is not played is 0";
    }
    EXPECT_EQ(Played(4 * kPoints), all) << "recomputed alike";
    QuietOutput lines;
    ASSERT_EQ(ITCUpdateStm(), ITC_SUCCESS);
    EXPECT_EQ(lines.Text(), "stim type 3\nstim type 4\nstim type 4\nstim type 5\nstim type 9\n");
}

TEST_F(SumAndUpdateTest, WhatCannotBeComputedLeavesTheOutput) {
    const Samples wave(11, 1);
    const ITCFilewaveParameters file{wave.data(), 11};
    const ITCSpatialStmParameters spatial{11, {}};
    ExpectRefused(ITCFilewaveParams(0, &file));
    ExpectRefused(ITCSpatialParams(0, &spatial));
    for (const int type : {12, 7, 6, 0, 15, -1}) {
        ExpectRefused(InstallSum(0, 2));
        ITCAddPulseParams(0, &kStep);
        static_cast<ITCSummedParameters*>(StmParameters[0])->componentType[0] =
            static_cast<int8_t>(type);
        ExpectRefused();
    }
    // Lengths that fill the epoch in sum, with one of them negative.
    for (const Stimulus& stimulus : kStimuli) {
        for (const Lengths& lengths :
             {Lengths{15, 0, -5}, Lengths{15, -5, 0}, Lengths{INT32_MAX, 12, INT32_MAX}}) {
            Record record(stimulus, lengths);
            if (*stimulus.lengths == '\0') continue;
            if (*stimulus.lengths == '4') record.words[6] = 1;  // points of a segment
            ExpectRefused(stimulus.build(0, record.words));
        }
    }
    ASSERT_EQ(ITCPulseParams(0, &kStep), ITC_SUCCESS);
    epochhdr->epochPoints = kPoints - 1;
    ExpectRefused();
    SetUpEntries("01");
    for (int8_t type = -1; type <= 15; ++type) {
        epochhdr->stimType[1] = type;
        if (type != 11) ExpectRefused();  // an entry without record
    }
}

TEST_F(SumAndUpdateTest, TheOutputBufferIsNotExceeded) {
    const ITCGClampParameters clamp{};
    for (int32_t c = 0; c < 4; ++c) ASSERT_EQ(ITCGClampParams(c, &clamp, 6), ITC_SUCCESS);
    using Case = std::array<int32_t, 3>;
    for (const auto& [entries, points, result] :
         {Case{4, 17, 2}, Case{1, 65, 2}, Case{4, 1 << 30, 2}, Case{5, 1, 2}, Case{-1, 10, 2},
          Case{INT32_MIN, 1, 2}, Case{0, 10, 0}, Case{4, -1, 5}}) {
        epochhdr->sequenceLength = entries;
        epochhdr->epochPoints = points;
        Played(0, result);
    }
    epochhdr->sequenceLength = 4;
    epochhdr->epochPoints = 16;
    EXPECT_EQ(Played(64), Samples(64, 0));
}

}  // namespace
