// Single values out of a stimulus record, and by epoch number, channel and component.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <optional>

#include "AnalysisFile.h"
#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"

namespace {

using namespace corvantis_test;

constexpr int32_t kNone = INT32_MIN;

// Expected amplitude, mean, points, pre-points and tail points; kNone: no such value.
void ExpectValues(int8_t type, const void* record, const std::array<int32_t, 5>& expected) {
    const std::array queries = {ITCRetrieveStmAmp, ITCRetrieveStmMean, ITCRetrieveStmPts,
                                ITCRetrieveStmPrePts, ITCRetrieveStmTailPts};
    for (size_t i = 0; i < queries.size(); ++i) {
        int32_t value = kNone;
        const int32_t result = expected[i] == kNone ? ITC_STIMULUS_ERROR : ITC_SUCCESS;
        EXPECT_EQ(queries[i](&value, type, record), result) << int{type};
        EXPECT_EQ(value, expected[i]) << int{type} << ", query " << i;
        InitFlag = 0;
        EXPECT_EQ(queries[i](&value, type, record), ITC_NOT_STARTED);
        InitFlag = 1;
    }
}

TEST(StimulusValues, EveryTypeByItsFields) {
    const LibrarySession session;
    const ITCNoiseParameters noise{1, 2, 3, 4, 5, 6, 7, 8, 9};
    const ITCPulseParameters eight{1, 2, 3, 4, 5, {6, 7, 8}};
    const ITCBinaryNoiseParameters ten{1, 2, 3, 4, 5, 6, 7, {8, 9, 10}};
    const ITCSineParameters sine{-1, 2, 3, 4, 5, 6, 7, {}};
    const ITCAlternateVoltageParameters alternating{1, 2, 3, 4, 5, 6, {}};
    const ITCCirclePulseParameters circle{1, 2, 3, {4, 5, 6}, {7, 8, 9}, 10, 11, 12};
    ExpectValues(1, &sine, {-1, 2, 5, 7, 6});
    ExpectValues(2, &noise, {1, 2, 4, 6, 5});
    for (const int8_t type : {3, 4, 6}) ExpectValues(type, &eight, {1, 2, 3, 5, 4});
    for (const int8_t type : {9, 10}) ExpectValues(type, &ten, {1, 2, 4, 6, 5});
    ExpectValues(11, nullptr, {0, 0, 0, 0, 0});
    ExpectValues(12, &circle, {kNone, kNone, 10, 12, 11});
    ExpectValues(13, &alternating, {2, 3, 4, 6, 5});
    for (const int8_t type : {5, 7, 8, 14, 0, 15, -1})
        ExpectValues(type, &noise, {kNone, kNone, kNone, kNone, kNone});
    ExpectValues(3, nullptr, {kNone, kNone, kNone, kNone, kNone});
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
    for (const uint32_t channel : {0U, 1U, 2U, 4U, 0xFFFFFFFFU})
        EXPECT_EQ(ITCRetrieveRandomSeed(&seed, channel), ITC_STIMULUS_ERROR) << channel;
    EXPECT_EQ(seed, 77);
}

Bytes Words(std::initializer_list<int64_t> values) {
    Bytes bytes;
    for (const int64_t value : values) bytes = Join({bytes, Big32(static_cast<uint32_t>(value))});
    return bytes;
}

// Noise, a sum of five, a dynamic clamp, an alternating voltage; two points each.
Bytes StimulusEpoch() {
    const Bytes noise = Words({500, -1, 0x12345678, 4, 5, 6, 7, 3000, 9});
    const Bytes sum = Join({Big32(5), Hex("03 02 0C 0B 0E"), Bytes(250), Hex("80"), Bytes(1024)});
    const Bytes components = Join(
        {Words({1000, -5, 20, 30, 40, 0, 0, 0}), Words({-600, 32768, -9, 41, 51, 61, 1, 1, 1}),
         Words({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}), Hex("3F800000 40000000"), Bytes(16, 1)});
    const Bytes clamp = Join({Hex("41200000 C28C0000"), Bytes(16, 2)});
    const Bytes alternating = Words({2, -3, 70000, 5, 6, 7, 0, 0, 0});
    return Join({EpochHeaderBytes(400, 2, {2, 7, 11, 13}), noise, sum, components, clamp,
                 alternating, Bytes(16, 3)});
}

struct EpochCase {
    int32_t channel, component;
    std::optional<int32_t> type, amplitude, mean, points, prePoints, tailPoints, seed;
};

TEST_F(AnalysisTest, StimulusValues) {
    Open(DataFileBytes({StimulusEpoch(), Bytes(100)}));
    const auto expect = [](const Getter& get, std::optional<double> expected) {
        if (expected) ExpectValue(get, 0, *expected);
        if (!expected) ExpectFailure(get, 0, ITC_STIMULUS_ERROR);
        for (const int32_t epoch : {-1, 1, 2}) ExpectFailure(get, epoch, ITC_FILE_ERROR);
        InitFlag = 0;
        ExpectFailure(get, 0, ITC_FILE_ERROR);
        InitFlag = 1;
    };
    constexpr std::nullopt_t none = std::nullopt;
    for (const EpochCase& each :
         {EpochCase{0, 99, 2, 500, -1, 4, 6, 5, 0x12345678},
          EpochCase{1, 0, 3, 1000, -5, 20, 40, 30, none},
          EpochCase{1, 1, 2, -600, 32768, 41, 61, 51, -9},
          EpochCase{1, 4, 14, none, none, none, none, none, none},
          EpochCase{3, -7, 13, -3, 70000, 5, 7, 6, none},
          EpochCase{1, 255, -128, {}, {}, {}, {}, {}, {}},
          EpochCase{1, 256, {}, {}, {}, {}, {}, {}, {}},
          EpochCase{1, -1, {}, {}, {}, {}, {}, {}, {}}, EpochCase{4, 0, {}, {}, {}, {}, {}, {}, {}},
          EpochCase{-1, 0, {}, {}, {}, {}, {}, {}, {}}}) {
        SCOPED_TRACE(testing::Message() << each.channel << ", " << each.component);
        expect(Of(ITCGetStmType, each.channel, each.component), each.type);
        expect(Of(ITCGetStmAmp, each.channel, each.component), each.amplitude);
        expect(Of(ITCGetStmMean, each.channel, each.component), each.mean);
        expect(Of(ITCGetStmPts, each.channel, each.component), each.points);
        expect(Of(ITCGetStmPrePts, each.channel, each.component), each.prePoints);
        expect(Of(ITCGetStmTailPts, each.channel, each.component), each.tailPoints);
        expect(Of(ITCGetSeed, each.channel, each.component), each.seed);
    }
    for (const int32_t channel : {-1, 0, 1, 2, 3, 4}) {
        expect(Of(ITCGetGClampERev, channel), channel == 2 ? std::optional(10.0) : none);
        expect(Of(ITCGetGClampIRev, channel), channel == 2 ? std::optional(-70.0) : none);
    }
}

TEST_F(AnalysisTest, TypesOfChannelsThatTheSequenceHasNot) {
    Bytes epoch = StimulusEpoch();
    Put(epoch, 580, Big32(1));
    Put(epoch, 605, {2, 3, 0x80, 7});
    Open(DataFileBytes({epoch}));
    ExpectValue(Of(ITCGetStmType, 1, 0), 0, 3);
    ExpectValue(Of(ITCGetStmType, 2, 0), 0, -128);
    ExpectFailure(Of(ITCGetStmType, 3, 0), 0, ITC_STIMULUS_ERROR);
    ExpectFailure(Of(ITCGetStmAmp, 1, 0), 0, ITC_STIMULUS_ERROR);
    // A record that the slot holds already answers, if it is of the header's type.
    const ITCPulseParameters pulse{4711, 0, 0, 0, 2, {}};
    ASSERT_EQ(ITCPulseParams(1, &pulse), ITC_SUCCESS);
    ExpectValue(Of(ITCGetStmAmp, 1, 0), 0, 4711);
    Put(epoch, 605, {2, 13});
    Open(DataFileBytes({epoch}));
    ExpectFailure(Of(ITCGetStmAmp, 1, 0), 0, ITC_STIMULUS_ERROR);
}

}  // namespace
