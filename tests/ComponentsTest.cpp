// Components of sums: the adders, the release of slots, and new seeds.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "StimulusRecords.h"

namespace {

using corvantis_test::Entry;
using corvantis_test::kAdders;
using corvantis_test::kBuilders;
using corvantis_test::kEpochPoints;
using corvantis_test::LibrarySession;
using corvantis_test::Patterned;

class ComponentsTest : public testing::Test {
  protected:
    ComponentsTest() { epochhdr->epochPoints = kEpochPoints; }
    static const ITCSummedParameters& Sum(size_t channel) {
        return *static_cast<const ITCSummedParameters*>(StmParameters[channel]);
    }
    static void InstallSum(int32_t channel, int32_t count) {
        ITCSummedParameters sum{};
        sum.count = count;
        ASSERT_EQ(ITCSummedParams(channel, &sum), ITC_SUCCESS);
    }

    LibrarySession session;
};

TEST_F(ComponentsTest, ASumStartsWithoutComponents) {
    auto own = Patterned<ITCSummedParameters>({});
    ASSERT_EQ(ITCSummedParams(1, &own), ITC_SUCCESS);
    const auto isNull = [](const void* component) { return component == nullptr; };
    EXPECT_TRUE(std::all_of(std::begin(own.components), std::end(own.components), isNull));
    EXPECT_TRUE(std::all_of(std::begin(Sum(1).components), std::end(Sum(1).components), isNull));
    EXPECT_EQ(own.componentType[255], 0x35);
}

TEST_F(ComponentsTest, AddersFillTheFirstFreeComponent) {
    InstallSum(3, std::size(kAdders));
    epochhdr->pointsLatency = 9;
    for (size_t k = 0; k < std::size(kAdders); ++k) {
        ASSERT_EQ(kAdders[k].give(3, {1, 2, 3}), ITC_SUCCESS) << k;
        EXPECT_EQ(Sum(3).componentType[k], kAdders[k].type);
        EXPECT_NE(Sum(3).components[k], nullptr);
        EXPECT_EQ(Sum(3).components[k + 1], nullptr);
    }
    EXPECT_EQ(epochhdr->pointsLatency, 9);
    for (const Entry& adder : kAdders) EXPECT_EQ(adder.give(3, {}), ITC_STIMULUS_ERROR);
    EXPECT_EQ(Sum(3).componentType[std::size(kAdders)], 0) << "a refused adder left its type";
    ITCFree(Sum(3).components[4]);
    static_cast<ITCSummedParameters*>(StmParameters[3])->components[4] = nullptr;
    ASSERT_EQ(kAdders[9].give(3, {}), ITC_SUCCESS);
    EXPECT_EQ(Sum(3).componentType[4], 13);
    EXPECT_TRUE(kAdders[9].isCopy(Sum(3).components[4]));
}

TEST_F(ComponentsTest, ComponentsKeepACopy) {
    for (const Entry& adder : kAdders) {
        InstallSum(0, 1);
        ASSERT_EQ(adder.give(0, {}), ITC_SUCCESS);
        EXPECT_TRUE(adder.isCopy(Sum(0).components[0])) << int{adder.type};
    }
}

TEST_F(ComponentsTest, AddersNeedASumWithRoom) {
    const ITCPulseParameters pulse{};
    EXPECT_EQ(ITCAddPulseParams(0, &pulse), ITC_STIMULUS_ERROR);
    epochhdr->stimType[0] = 7;
    EXPECT_EQ(ITCAddPulseParams(0, &pulse), ITC_STIMULUS_ERROR) << "the slot is empty";
    ASSERT_EQ(kBuilders[2].give(0, {}), ITC_SUCCESS);
    EXPECT_EQ(ITCAddPulseParams(0, &pulse), ITC_STIMULUS_ERROR);
    // A count is taken as it is given; it never leads past the entries that there are.
    for (const auto& [count, room] : {std::pair{0, 0}, std::pair{-1, 0}, std::pair{2, 2},
                                      std::pair{256, 256}, std::pair{INT32_MAX, 256}}) {
        InstallSum(0, count);
        for (int k = 0; k < room; ++k) ASSERT_EQ(ITCAddPulseParams(0, &pulse), ITC_SUCCESS) << k;
        EXPECT_EQ(ITCAddPulseParams(0, &pulse), ITC_STIMULUS_ERROR) << count;
        EXPECT_EQ(Sum(0).count, count);
    }
}

TEST_F(ComponentsTest, ReleaseEmptiesTheSlotAndLeavesTheType) {
    for (const Entry& builder : kBuilders) {
        ASSERT_EQ(builder.give(0, {}), ITC_SUCCESS);
        EXPECT_EQ(ITCFreeParams(0), ITC_SUCCESS);
        EXPECT_EQ(StmParameters[0], nullptr);
        EXPECT_EQ(epochhdr->stimType[0], builder.type);
        EXPECT_EQ(ITCFreeParams(0), ITC_SUCCESS) << "an empty slot, type " << int{builder.type};
    }
}

TEST_F(ComponentsTest, ReplacedSumsGiveTheirMemoryBack) {
    size_t inUse = 0;
    for (int round = 0; round < 200; ++round) {
        for (const Entry& builder : kBuilders) {
            InstallSum(0, 3);
            for (const int adder : {0, 4, 9}) ASSERT_EQ(kAdders[adder].give(0, {}), ITC_SUCCESS);
            ASSERT_EQ(builder.give(0, {}), ITC_SUCCESS);
        }
        ITCFreeParams(0);
        if (round == 0) inUse = mallinfo2().uordblks;
    }
    EXPECT_LT(mallinfo2().uordblks, inUse + 200 * 8) << "less than one lost record a round";
}

TEST_F(ComponentsTest, NewSeeds) {
    for (const Entry& builder : kBuilders) {
        if (builder.type == 7) continue;
        ASSERT_EQ(builder.give(0, {}), ITC_SUCCESS);
        const bool noise = builder.type == 2 || builder.type == 9 || builder.type == 10;
        EXPECT_EQ(ITCNewRandomSeed(-99, 0, 7777), noise ? ITC_SUCCESS : ITC_STIMULUS_ERROR);
        EXPECT_NE(builder.isCopy(StmParameters[0]), noise);
    }
    InstallSum(1, 5);
    for (const int adder : {2, 1, 5, 6}) ASSERT_EQ(kAdders[adder].give(1, {}), ITC_SUCCESS);
    for (const uint32_t component : {0U, 4U, 256U, 0xFFFFFFFFU})
        EXPECT_EQ(ITCNewRandomSeed(5, 1, component), ITC_STIMULUS_ERROR) << component;
    for (const uint32_t component : {1U, 2U, 3U})
        EXPECT_EQ(ITCNewRandomSeed(100 + static_cast<int32_t>(component), 1, component), 0);
    EXPECT_EQ(static_cast<ITCNoiseParameters*>(Sum(1).components[1])->seed, 101);
    EXPECT_EQ(static_cast<ITCSegmentedNoiseParameters*>(Sum(1).components[2])->seed, 102);
    EXPECT_EQ(static_cast<ITCBinaryNoiseParameters*>(Sum(1).components[3])->seed, 103);
    epochhdr->stimType[2] = 9;
    EXPECT_EQ(ITCNewRandomSeed(5, 2, 0), ITC_STIMULUS_ERROR) << "the slot is empty";
}

}  // namespace
