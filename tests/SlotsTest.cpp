// The stimulus slots: what builders and adders accept and keep, and what is given back.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <utility>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "StimulusRecords.h"

namespace {

using namespace corvantis_test;

class SlotsTest : public testing::Test {
  protected:
    SlotsTest() { epochhdr->epochPoints = kEpochPoints; }
    static ITCSummedParameters& Sum(size_t channel) {
        return *static_cast<ITCSummedParameters*>(StmParameters[channel]);
    }

    LibrarySession session;
};

TEST_F(SlotsTest, BuildersKeepACopyAndNameItsType) {
    for (const int32_t channel : {0, 3, 1, 2}) {
        for (const Entry& builder : kBuilders) {
            const auto slot = static_cast<size_t>(builder.type == 6 ? 0 : channel);
            ASSERT_EQ(builder.give(channel, {}), ITC_SUCCESS) << int{builder.type};
            EXPECT_TRUE(builder.isCopy(StmParameters[slot])) << int{builder.type};
            EXPECT_EQ(epochhdr->stimType[slot], builder.type);
        }
    }
    EXPECT_EQ(epochhdr->pointsLatency, kLatency);
}

TEST_F(SlotsTest, LengthsThatDoNotFillTheEpochAreRefused) {
    const Runs wrong[] = {{100, 800, 99}, {0, 0, 0}, {1000, 1, 0}, {INT32_MAX, INT32_MAX, 0}};
    const Runs right[] = {{0, 1000, 0},
                          {-500, 1600, -100},
                          {INT32_MAX, 1001, INT32_MIN},
                          {INT32_MAX, INT32_MAX, 1002}};
    for (const Entry& builder : kBuilders) {
        ASSERT_EQ(builder.give(0, {}), ITC_SUCCESS);
        epochhdr->stimType[0] = 99;
        const void* const kept = StmParameters[0];
        for (const Runs& runs : wrong) {
            if (!builder.lengthsTested) continue;
            EXPECT_EQ(builder.give(0, runs), ITC_BAD_ARGUMENT) << int{builder.type};
            EXPECT_EQ(StmParameters[0], kept);
            EXPECT_TRUE(builder.isCopy(kept));
            EXPECT_EQ(epochhdr->stimType[0], 99);
        }
        for (const Runs& runs : right) EXPECT_EQ(builder.give(0, runs), ITC_SUCCESS);
    }
}

// An application may change a record in its slot and install it again.
TEST_F(SlotsTest, ARecordCanTakeItsOwnPlace) {
    const ITCPulseParameters pulse{1000, 5, 800, 100, 100, {}};
    ASSERT_EQ(ITCPulseParams(0, &pulse), ITC_SUCCESS);
    auto* installed = static_cast<ITCPulseParameters*>(StmParameters[0]);
    installed->amplitude = 77;
    ASSERT_EQ(ITCPulseParams(0, installed), ITC_SUCCESS);
    EXPECT_EQ(static_cast<const ITCPulseParameters*>(StmParameters[0])->amplitude, 77);
    InstallSum(1, 3);
    ASSERT_EQ(ITCAddPulseParams(1, &pulse), ITC_SUCCESS);
    ASSERT_EQ(ITCSummedParams(1, &Sum(1)), ITC_SUCCESS);
    EXPECT_EQ(Sum(1).count, 3);
    EXPECT_EQ(Sum(1).components[0], nullptr);
}

TEST_F(SlotsTest, BadChannelsAndMissingRecordsChangeNothing) {
    InstallSum(2, 4);
    const ITCEpochHeader header = *epochhdr;
    for (const int32_t channel : {-1, 4, INT32_MAX, INT32_MIN}) {
        for (const Entry& builder : kBuilders) {
            if (builder.type == 6) continue;
            EXPECT_EQ(builder.give(channel, {}), ITC_STIMULUS_ERROR) << int{builder.type};
        }
        for (const Entry& adder : kAdders)
            EXPECT_EQ(adder.give(channel, {}), ITC_STIMULUS_ERROR) << int{adder.type};
        EXPECT_EQ(ITCNewRandomSeed(1, static_cast<uint32_t>(channel), 0), ITC_STIMULUS_ERROR);
        EXPECT_EQ(ITCFreeParams(static_cast<uint32_t>(channel)), ITC_SUCCESS);
    }
    for (const Entry& builder : kBuilders) EXPECT_EQ(builder.giveNull(1), ITC_STIMULUS_ERROR);
    for (const Entry& adder : kAdders) EXPECT_EQ(adder.giveNull(2), ITC_STIMULUS_ERROR);
    EXPECT_EQ(std::memcmp(epochhdr, &header, sizeof(header)), 0);
    for (const size_t channel : {0U, 1U, 3U}) EXPECT_EQ(StmParameters[channel], nullptr);
    EXPECT_EQ(Sum(2).components[0], nullptr);
}

TEST_F(SlotsTest, LatencyOfTheDynamicClamp) {
    struct Case {
        int32_t latency, result;
        uint16_t stored;
        const char* lines;
    };
    const char* const tooShort = " must be greater than pipeline-length (5l)\n";
    const char* const tooLong = " is too large; should be no more than 65535\n";
    for (const auto& [latency, result, stored, lines] :
         {Case{6, 0, 6, ""}, Case{65535, 0, 65535, ""}, Case{-1, 0, 65535, ""},
          Case{INT32_MIN, 0, 0, ""}, Case{5, 6, 9, tooShort}, Case{0, 6, 9, tooShort},
          Case{65536, 6, 9, tooLong}, Case{INT32_MAX, 6, 9, tooLong}}) {
        epochhdr->pointsLatency = 9;
        const ITCGClampParameters clamp{1, 2};
        QuietOutput printed;
        EXPECT_EQ(ITCGClampParams(1, &clamp, latency), result) << latency;
        const std::string start = "points-latency (" + std::to_string(latency) + ")";
        EXPECT_EQ(printed.Text(), *lines ? start + lines : "");
        EXPECT_EQ(epochhdr->pointsLatency, stored) << latency;
    }
    const QuietOutput quiet;
    InitFlag = 0;  // the latency is looked at first
    EXPECT_EQ(ITCGClampParams(0, nullptr, 5), ITC_BAD_ARGUMENT);
    EXPECT_EQ(ITCGClampParams(0, nullptr, 65536), ITC_BAD_ARGUMENT);
    InitFlag = 1;
}

TEST_F(SlotsTest, RecordSizes) {
    const auto expectSize = [](uint32_t type, uint32_t expected) {
        uint32_t size = 4711;
        EXPECT_EQ(ITCStmParamsSize(&size, type), expected == 4711 ? ITC_FILE_ERROR : ITC_SUCCESS);
        EXPECT_EQ(size, expected) << type;
    };
    for (const Entry& builder : kBuilders)
        expectSize(static_cast<uint32_t>(builder.type), builder.type == 7 ? 4711U : builder.size);
    for (const uint32_t type : {0U, 15U, 255U, 0x80000000U, 0xFFFFFFFFU}) expectSize(type, 4711);
}

TEST_F(SlotsTest, AddersFillTheFirstFreeComponentWithACopy) {
    auto own = Patterned<ITCSummedParameters>({});
    own.count = std::size(kAdders);
    ASSERT_EQ(ITCSummedParams(3, &own), ITC_SUCCESS);
    const auto isNull = [](const void* component) { return component == nullptr; };
    EXPECT_TRUE(std::all_of(std::begin(own.components), std::end(own.components), isNull));
    epochhdr->pointsLatency = 9;
    for (size_t k = 0; k < std::size(kAdders); ++k) {
        EXPECT_EQ(Sum(3).components[k], nullptr);
        ASSERT_EQ(kAdders[k].give(3, {1, 2, 3}), ITC_SUCCESS) << k;
        EXPECT_EQ(Sum(3).componentType[k], kAdders[k].type);
    }
    EXPECT_EQ(epochhdr->pointsLatency, 9);
    for (const Entry& adder : kAdders) EXPECT_EQ(adder.give(3, {}), ITC_STIMULUS_ERROR);
    EXPECT_EQ(Sum(3).componentType[std::size(kAdders)], 0x35) << "a refused adder left its type";
    for (const Entry& adder : kAdders) {
        ITCFree(Sum(3).components[4]);
        Sum(3).components[4] = nullptr;
        ASSERT_EQ(adder.give(3, {}), ITC_SUCCESS);
        EXPECT_EQ(Sum(3).componentType[4], adder.type);
        EXPECT_TRUE(adder.isCopy(Sum(3).components[4])) << int{adder.type};
    }
}

TEST_F(SlotsTest, AddersNeedASumWithRoom) {
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

TEST_F(SlotsTest, ReleaseGivesTheMemoryBackAndLeavesTheType) {
    size_t inUse = 0;
    for (int round = 0; round < 200; ++round) {
        for (const Entry& builder : kBuilders) {
            InstallSum(0, 3);
            for (const int adder : {0, 4, 9}) ASSERT_EQ(kAdders[adder].give(0, {}), ITC_SUCCESS);
            ASSERT_EQ(builder.give(0, {}), ITC_SUCCESS);
            if (round % 2 == 0) continue;
            EXPECT_EQ(ITCFreeParams(0), ITC_SUCCESS);
            EXPECT_EQ(StmParameters[0], nullptr);
            EXPECT_EQ(epochhdr->stimType[0], builder.type);
        }
        EXPECT_EQ(ITCFreeParams(0), ITC_SUCCESS);
        if (round == 1) inUse = mallinfo2().uordblks;
    }
    EXPECT_LT(mallinfo2().uordblks, inUse + 100 * 8) << "less than one lost record in two rounds";
}

// The block that is given back first is mostly the next one to be had.
TEST_F(SlotsTest, AnApplicationsOwnRecordMayLieWhereTheLibrarysLay) {
    ASSERT_EQ(kBuilders[2].give(1, {}), ITC_SUCCESS);
    ITCFree(StmParameters[1]);
    const ITCAlternateVoltageParameters record{1, 2, 3, 4, 5, 6, {7, 8, 9}};
    StmParameters[1] = std::memcpy(ITCMalloc(1, sizeof record), &record, sizeof record);
    ITCAlternateVoltageParameters read{};
    ITCGetStimParams(1, &read, sizeof read);
    EXPECT_EQ(std::memcmp(&read, &record, sizeof record), 0);
}

TEST_F(SlotsTest, NewSeeds) {
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
