// The stimulus slots: what builders and adders accept and keep, and what is given back.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <utility>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "StimulusRecords.h"

namespace {

using namespace corvantis_test;

class SlotsTest : public testing::Test {
  protected:
    SlotsTest() { epochhdr->epochPoints = 1000; }
    static ITCSummedParameters& Sum(size_t channel) {
        return *static_cast<ITCSummedParameters*>(StmParameters[channel]);
    }
    // A record that is spoiled afterwards, so that only a copy can be right.
    static int32_t Install(const Stimulus& stimulus, int32_t channel, const Lengths& lengths) {
        Record record(stimulus, lengths);
        const int32_t result = stimulus.build(channel, record.words);
        std::memset(record.words, 0xEE, sizeof record.words);
        return result;
    }
    // As far as no host pads the record; a sum's pointers are not kept.
    static bool IsCopy(const Stimulus& stimulus, const void* kept, const Lengths& lengths) {
        const size_t size = stimulus.type == 7 ? 4 + 256 : stimulus.size;
        return kept != nullptr && std::memcmp(kept, Record(stimulus, lengths).words, size) == 0;
    }

    static constexpr Lengths kFitting = {800, 100, 100};
    LibrarySession session;
};

TEST_F(SlotsTest, BuildersKeepACopyThatFillsTheEpoch) {
    for (const Stimulus& stimulus : kStimuli) {
        SCOPED_TRACE(int{stimulus.type});
        const int32_t slot = stimulus.type == 6 ? 0 : 3;
        for (const Lengths& lengths :
             {Lengths{1600, -100, -500}, Lengths{1001, INT32_MIN, INT32_MAX}, kFitting}) {
            ASSERT_EQ(Install(stimulus, 3, lengths), ITC_SUCCESS);
            EXPECT_TRUE(IsCopy(stimulus, StmParameters[slot], lengths));
            EXPECT_EQ(epochhdr->stimType[slot], stimulus.type);
        }
        const ITCEpochHeader before = *epochhdr;
        for (const Lengths& wrong : {Lengths{800, 99, 100}, Lengths{800, 100, 99},
                                     Lengths{801, 100, 100}, Lengths{INT32_MAX, 0, INT32_MAX}}) {
            if (*stimulus.lengths == '\0') continue;
            EXPECT_EQ(Install(stimulus, 3, wrong), ITC_BAD_ARGUMENT);
            EXPECT_TRUE(IsCopy(stimulus, StmParameters[slot], kFitting));
        }
        EXPECT_EQ(stimulus.build(3, nullptr), ITC_STIMULUS_ERROR);
        for (const int32_t none : {-1, 4, INT32_MIN}) {
            if (stimulus.type == 6) continue;
            EXPECT_EQ(Results({Install(stimulus, none, kFitting), ITCFreeParams(none),
                               ITCNewRandomSeed(1, none, 0)}),
                      Results({2, 0, 2}));
        }
        EXPECT_EQ(std::memcmp(epochhdr, &before, sizeof before), 0);
        // Filtered, segmented and binary noise have a seed, their third field.
        const bool noise = stimulus.type == 2 || stimulus.type == 9 || stimulus.type == 10;
        if (stimulus.type == 7) continue;
        EXPECT_EQ(ITCNewRandomSeed(-9, slot, 9), noise ? ITC_SUCCESS : ITC_STIMULUS_ERROR);
        auto* const words = static_cast<int32_t*>(StmParameters[slot]);
        EXPECT_EQ(noise ? std::exchange(words[2], 46) : -9, -9);
        EXPECT_TRUE(IsCopy(stimulus, StmParameters[slot], kFitting));
    }
    EXPECT_EQ(epochhdr->pointsLatency, kLatency);
}

// A component's lengths are not tested. A count is taken as it is given; it never leads past the
// components that there are.
TEST_F(SlotsTest, AddersFillTheFirstFreeComponentWithACopy) {
    for (const Stimulus& stimulus : kStimuli) {
        if (stimulus.add == nullptr) continue;
        SCOPED_TRACE(int{stimulus.type});
        Record record(stimulus, {1, 2, 3});
        Install(kStimuli[2], 3, kFitting);
        EXPECT_EQ(stimulus.add(3, record.words), ITC_STIMULUS_ERROR) << "no sum";
        for (const auto& [count, room] : {std::pair{-1, 0}, {2, 2}, {INT32_MAX, 256}}) {
            InstallSum(3, count);
            for (const int32_t none : {-1, 4}) EXPECT_EQ(stimulus.add(none, &record), 2);
            EXPECT_EQ(stimulus.add(3, nullptr), ITC_STIMULUS_ERROR);
            for (int k = 0; k < room; ++k) {
                ASSERT_EQ(stimulus.add(3, record.words), ITC_SUCCESS);
                EXPECT_EQ(Sum(3).componentType[k], stimulus.type);
                EXPECT_TRUE(IsCopy(stimulus, Sum(3).components[k], {1, 2, 3}));
            }
            EXPECT_EQ(stimulus.add(3, record.words), ITC_STIMULUS_ERROR);
            EXPECT_EQ(Sum(3).componentType[2], room > 2 ? stimulus.type : 0);
        }
        Drop(Sum(3).components[1]);
        ASSERT_EQ(stimulus.add(3, record.words), ITC_SUCCESS);
        EXPECT_NE(Sum(3).components[1], nullptr);
        EXPECT_EQ(epochhdr->pointsLatency, 0);
    }
    InstallSum(1, 3);
    for (const int k : {2, 1, 8}) ASSERT_EQ(kStimuli[k].add(1, Record(kStimuli[k]).words), 0);
    for (const uint32_t component : {0U, 1U, 2U, 3U, 256U, 0xFFFFFFFFU})
        EXPECT_EQ(ITCNewRandomSeed(100, 1, component), component - 1 < 2 ? 0 : 2) << component;
    for (const int k : {1, 2}) EXPECT_EQ(static_cast<int32_t*>(Sum(1).components[k])[2], 100);
}

// An application may change a record in its slot, or put a block of its own there.
TEST_F(SlotsTest, RecordsOfTheApplication) {
    Install(kStimuli[2], 0, kFitting);
    auto* installed = static_cast<ITCPulseParameters*>(StmParameters[0]);
    ITCSummedParameters own{.count = 3, .componentType = {}, .components = {installed}};
    ASSERT_EQ(ITCSummedParams(1, &own), ITC_SUCCESS);
    EXPECT_TRUE(own.components[0] == nullptr && Sum(1).components[0] == nullptr);
    ASSERT_EQ(Results({ITCAddPulseParams(1, installed), ITCSummedParams(1, &Sum(1))}), Results(2));
    EXPECT_TRUE(Sum(1).count == 3 && Sum(1).components[0] == nullptr);
    // The block that is given back first is mostly the next one to be had.
    ITCFree(StmParameters[0]);
    const ITCAlternateVoltageParameters record{1, 2, 3, 4, 5, 6, {7, 8, 9}};
    StmParameters[0] = std::memcpy(ITCMalloc(1, sizeof record), &record, sizeof record);
    ITCAlternateVoltageParameters read{};
    ITCGetStimParams(0, &read, sizeof read);
    EXPECT_EQ(std::memcmp(&read, &record, sizeof record), 0);
}

TEST_F(SlotsTest, LatencyOfTheDynamicClamp) {
    const ITCGClampParameters clamp{1, 2};
    for (const int32_t latency : {6, 65535, -1, INT32_MIN, 5, 0, 65536, INT32_MAX}) {
        const bool bad = latency == 5 || latency == 0 || latency > 65535;
        epochhdr->pointsLatency = 9;
        const QuietOutput quiet;
        EXPECT_EQ(ITCGClampParams(1, &clamp, latency), bad ? ITC_BAD_ARGUMENT : ITC_SUCCESS);
        EXPECT_EQ(epochhdr->pointsLatency, bad ? 9 : latency & 0xFFFF) << latency;
    }
}

}  // namespace
