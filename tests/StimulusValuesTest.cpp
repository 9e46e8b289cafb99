// Single values out of a stimulus record: amplitude, mean, lengths and seed.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"

namespace {

using namespace corvantis_test;

constexpr int32_t kNone = INT_MIN;

// Expected amplitude, mean, points, pre-points and tail points of each type; kNone: no such value.
struct ValueCase {
    const void* record;
    int8_t type;
    int32_t values[5];
};

TEST(StimulusValues, EveryTypeByItsTable) {
    const LibrarySession session;
    static const ITCNoiseParameters noise{1, 2, 3, 4, 5, 6, 7, 8, 9};
    static const ITCPulseParameters eight{1, 2, 3, 4, 5, {6, 7, 8}};
    static const ITCBinaryNoiseParameters ten{1, 2, 3, 4, 5, 6, 7, {8, 9, 10}};
    static const ITCSineParameters sine{-1, 2, 3, 4, 5, 6, 7, {}};
    static const ITCAlternateVoltageParameters alternating{1, 2, 3, 4, 5, 6, {}};
    static const ITCCirclePulseParameters circle{1, 2, 3, {4, 5, 6}, {7, 8, 9}, 10, 11, 12};
    static const ITCSummedParameters any{};
    const int32_t none = kNone;
    const ValueCase cases[] = {
        {&sine, 1, {-1, 2, 5, 7, 6}},
        {&noise, 2, {1, 2, 4, 6, 5}},
        {&eight, 3, {1, 2, 3, 5, 4}},
        {&eight, 4, {1, 2, 3, 5, 4}},
        {&eight, 6, {1, 2, 3, 5, 4}},
        {&ten, 9, {1, 2, 4, 6, 5}},
        {&ten, 10, {1, 2, 4, 6, 5}},
        {nullptr, 11, {0, 0, 0, 0, 0}},
        {&circle, 12, {none, none, 10, 12, 11}},
        {&alternating, 13, {2, 3, 4, 6, 5}},
        {&any, 5, {none, none, none, none, none}},
        {&any, 7, {none, none, none, none, none}},
        {&any, 8, {none, none, none, none, none}},
        {&any, 14, {none, none, none, none, none}},
        {&any, 0, {none, none, none, none, none}},
        {&any, 15, {none, none, none, none, none}},
        {&any, -1, {none, none, none, none, none}},
        {&any, -128, {none, none, none, none, none}},
    };
    using Query = int32_t (*)(int32_t*, int8_t, const void*);
    const Query queries[5] = {ITCRetrieveStmAmp, ITCRetrieveStmMean, ITCRetrieveStmPts,
                              ITCRetrieveStmPrePts, ITCRetrieveStmTailPts};
    for (const ValueCase& each : cases) {
        for (size_t i = 0; i < 5; ++i) {
            int32_t value = kNone;
            const int32_t result = each.values[i] == kNone ? ITC_STIMULUS_ERROR : ITC_SUCCESS;
            EXPECT_EQ(queries[i](&value, each.type, each.record), result) << int{each.type};
            EXPECT_EQ(value, each.values[i]) << int{each.type} << ", query " << i;
        }
    }
    InitFlag = 0;
    int32_t value = 99;
    for (const Query query : queries) EXPECT_EQ(query(&value, 1, &sine), ITC_NOT_STARTED);
    InitFlag = 1;
    EXPECT_EQ(value, 99);
}

TEST(StimulusValues, OnlyFilteredNoiseTellsItsSeed) {
    const LibrarySession session;
    SetUpAcquisition(1, 64);
    const ITCNoiseParameters noise{500, 0, 77, 50, 7, 7, 5, 1000, 2};
    const ITCSegmentedNoiseParameters segments{800, 0, 5, 60, 2, 2, 6, {}};
    ASSERT_EQ(ITCNoiseParams(0, &noise), 0);
    ASSERT_EQ(ITCSegmentedNoiseParams(1, &segments), 0);
    int32_t seed = -1;
    EXPECT_EQ(ITCRetrieveRandomSeed(&seed, 0), ITC_SUCCESS);
    EXPECT_EQ(seed, 77);
    ITCFreeParams(0);
    for (const uint32_t channel : {0U, 1U, 2U, 4U, 0xFFFFFFFFU}) {
        EXPECT_EQ(ITCRetrieveRandomSeed(&seed, channel), ITC_STIMULUS_ERROR) << channel;
    }
    EXPECT_EQ(seed, 77);
}

}  // namespace
