// The stimulus slots: what the builders accept and keep, and the sizes of the records.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "StimulusRecords.h"

namespace {

using corvantis_test::Entry;
using corvantis_test::kAdders;
using corvantis_test::kBuilders;
using corvantis_test::kEpochPoints;
using corvantis_test::kLatency;
using corvantis_test::LibrarySession;
using corvantis_test::QuietOutput;
using corvantis_test::Runs;

class SlotsTest : public testing::Test {
  protected:
    SlotsTest() { epochhdr->epochPoints = kEpochPoints; }
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
        ASSERT_EQ(ITCFreeParams(0), ITC_SUCCESS);
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
        EXPECT_EQ(builder.give(0, {1, 2, 3}),
                  builder.lengthsTested ? ITC_BAD_ARGUMENT : ITC_SUCCESS);
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
    ASSERT_EQ(ITCSummedParams(1, static_cast<ITCSummedParameters*>(StmParameters[1])), ITC_SUCCESS);
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

TEST(SlotsWithoutStartTest, EverythingButTheLatencyTestRefuses) {
    { const LibrarySession ended; }
    uint32_t size = 4711;
    for (const Entry& builder : kBuilders) EXPECT_EQ(builder.give(1, {}), ITC_NOT_STARTED);
    for (const Entry& adder : kAdders) EXPECT_EQ(adder.give(1, {}), ITC_NOT_STARTED);
    EXPECT_EQ(ITCStmParamsSize(&size, 1), ITC_NOT_STARTED);
    EXPECT_EQ(size, 4711U);
    EXPECT_EQ(ITCNewRandomSeed(1, 0, 0), ITC_NOT_STARTED);
    EXPECT_EQ(ITCFreeParams(0), ITC_SUCCESS);
    const ITCGClampParameters clamp{};
    QuietOutput quiet;
    EXPECT_EQ(ITCGClampParams(0, &clamp, 5), ITC_BAD_ARGUMENT);
    EXPECT_EQ(ITCGClampParams(0, &clamp, 65536), ITC_BAD_ARGUMENT);
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
}

TEST_F(SlotsTest, RecordSizes) {
    for (const Entry& builder : kBuilders) {
        uint32_t size = 4711;
        const bool sum = builder.type == 7;
        EXPECT_EQ(ITCStmParamsSize(&size, static_cast<uint32_t>(builder.type)),
                  sum ? ITC_FILE_ERROR : ITC_SUCCESS);
        EXPECT_EQ(size, sum ? 4711U : builder.size);
    }
    for (const uint32_t type : {0U, 15U, 255U, 0x80000000U, 0xFFFFFFFFU}) {
        uint32_t size = 4711;
        EXPECT_EQ(ITCStmParamsSize(&size, type), ITC_FILE_ERROR);
        EXPECT_EQ(size, 4711U);
    }
}

}  // namespace
