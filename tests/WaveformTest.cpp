// The computed shapes by hand and against their plain formulas, by the dispatcher and by the
// generators, and what has no shape.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "WrittenSamples.h"
#include "reference/Definitions.h"

namespace {

using namespace corvantis_test;

uint16_t Low(int64_t level) { return static_cast<uint16_t>(level); }

template <class Record, class Result>
Samples Generated(size_t points, Result (*generate)(int16_t*, const Record*),
                  const Record& record) {
    QuietOutput none;
    const Samples samples = Written(
        points, [&](uint16_t* buffer) { generate(reinterpret_cast<int16_t*>(buffer), &record); });
    EXPECT_EQ(none.Text(), "") << "the dispatcher alone prints";
    return samples;
}

// Both ways of computing a record give these samples.
template <class Record, class Result>
void ExpectWave(uint32_t type, Result (*generate)(int16_t*, const Record*), const Record& record,
                const Samples& expected) {
    QuietOutput lines;
    const Samples calculated = Written(expected.size(), [&](uint16_t* buffer) {
        EXPECT_EQ(ITCCalcStimulus(type, buffer, &record), ITC_SUCCESS);
    });
    EXPECT_EQ(lines.Text(), "stim type " + std::to_string(type) + "\n" +
                                (type == 13 ? "alt voltage create\n" : ""));
    EXPECT_EQ(calculated, expected);
    EXPECT_EQ(Generated(expected.size(), generate, record), expected);
}

// Lengths of the three runs; a count of 0 or below writes nothing.
struct Runs {
    int32_t prePoints, points, tailPoints;
};
constexpr Runs kRuns[] = {{3, 24, 2}, {0, 7, 0},   {-2, 5, 1}, {2, -3, 1},
                          {2, 0, -1}, {-1, 5, -9}, {-1, 0, 0}, {1, 1, 1}};

template <class Record, class Result, class Formula>
void ExpectPlainWave(uint32_t type, Result (*generate)(int16_t*, const Record*), Record record,
                     Formula formula) {
    for (const Runs& runs : kRuns) {
        record.prePoints = runs.prePoints;
        record.points = runs.points;
        record.tailPoints = runs.tailPoints;
        const int32_t size =
            std::max(runs.prePoints, 0) + std::max(runs.points, 0) + std::max(runs.tailPoints, 0);
        const auto calculate = [&](uint16_t* buffer) { formula(buffer, record); };
        ExpectWave(type, generate, record, Written(static_cast<size_t>(size), calculate));
    }
}

class WaveformTest : public testing::Test {
  protected:
    LibrarySession session;
};

TEST_F(WaveformTest, SineByHand) {
    epochhdr->samplingInterval = 37;
    ITCSineParameters record{1000, 0, 4, 0, 8, 0, 0, {}};
    ExpectWave(1, ITCStmCreateSine, record, {0, 999, 0, Low(-999), 0, 999, 0, Low(-999)});
    // Bounds of 32 bits: the conversion stops at 2147483647 and at -2147483648.
    record = {2000000000, 2000000000, 4, 0, 2, 0, 0, {}};
    ExpectWave(1, ITCStmCreateSine, record, {Low(2000000000), 0xFFFF});
    record = {-2000000000, -2000000000, 4, 0, 2, 0, 0, {}};
    ExpectWave(1, ITCStmCreateSine, record, {Low(-2000000000), 0});
    // Without a period or an interval it is no number, for which zero is stored.
    for (const auto& [interval, period] : {std::pair{10, 0}, std::pair{0, 10}, std::pair{0, 0}}) {
        epochhdr->samplingInterval = interval;
        record = {500, 77, period, 0, 4, 1, 1, {}};
        ExpectWave(1, ITCStmCreateSine, record, {77, 0, 0, 0, 0, 77});
    }
}

// Its last point is moved by 1 if product and sum are rounded apart.
TEST_F(WaveformTest, ASineIsRoundedOnce) {
    epochhdr->samplingInterval = 10;
    const ITCSineParameters record{INT32_MAX, -2051404981, 361, 0, 6572, 0, 0, {}};
    const auto calculate = [&](uint16_t* buffer) { definition::Sine(buffer, record, 10); };
    ExpectWave(1, ITCStmCreateSine, record, Written(6572, calculate));
}

TEST_F(WaveformTest, PulseRampTriggersAndAlternationByHand) {
    ExpectWave(3, ITCStmCreatePulse, ITCPulseParameters{10000, 30000, 1, 1, 1, {}},
               {30000, 0x9C40, 30000});
    ExpectWave(4, ITCStmCreateRamp, ITCRampParameters{100, 0, 4, 1, 0, {}}, {0, 25, 50, 75, 0});
    ExpectWave(8, ITCStmCreateTrigSeries, ITCTrigSeriesParameters{5, 100, 3, 7, 0, 1, {}},
               {5, 105, 5, 5, 105, 5, 5, 105});
    ExpectWave(13, ITCStmCreateAltVoltage, ITCAlternateVoltageParameters{2, 9, 4, 5, 1, 0, {}},
               {4, 4, 13, 13, 4, 4});
}

TEST_F(WaveformTest, RunsOfEveryLengthAndSign) {
    for (const int32_t interval : {10, 262140}) {
        epochhdr->samplingInterval = interval;
        for (const ITCSineParameters& record :
             {ITCSineParameters{1000, 0, 4, 99, 0, 0, 0, {}},
              ITCSineParameters{INT32_MAX, -5, -9, 99, 0, 0, 0, {}}}) {
            ExpectPlainWave(1, ITCStmCreateSine, record, [=](uint16_t* buffer, const auto& sine) {
                definition::Sine(buffer, sine, interval);
            });
        }
    }
    for (const auto& [amplitude, mean] : {std::pair{-70000, 5}, std::pair{1, INT32_MAX},
                                          std::pair{INT32_MIN, INT32_MIN}, std::pair{70001, -7}}) {
        ExpectPlainWave(3, ITCStmCreatePulse, ITCPulseParameters{amplitude, mean, 0, 0, 0, {}},
                        definition::Pulse);
        ExpectPlainWave(4, ITCStmCreateRamp, ITCRampParameters{amplitude, mean, 0, 0, 0, {}},
                        definition::Ramp);
    }
    for (const int32_t period : {1, 3, -3, 24, 1000, INT32_MIN}) {
        ExpectPlainWave(8, ITCStmCreateTrigSeries,
                        ITCTrigSeriesParameters{60000, 9000, period, 0, 0, 0, {}},
                        definition::TriggerSeries);
        ExpectPlainWave(13, ITCStmCreateAltVoltage,
                        ITCAlternateVoltageParameters{period, -40000, -3000, 0, 0, 0, {}},
                        definition::AlternatingVoltage);
    }
}

TEST_F(WaveformTest, FileWaveCopiesAndLeavesTheRest) {
    const Samples wave = {1, 0xFFFF, 0x8000, 40000, 7};
    for (const int32_t length : {5, 3, 0, -4}) {
        Samples expected(8, kUntouched);
        std::copy_n(wave.begin(), std::max(length, 0), expected.begin());
        ExpectWave(5, ITCStmCreateFilewave, ITCFilewaveParameters{wave.data(), length}, expected);
    }
    ExpectWave(5, ITCStmCreateFilewave, ITCFilewaveParameters{nullptr, 0}, Samples(4, kUntouched));
}

TEST_F(WaveformTest, SpatialAndDynamicClampAreZero) {
    for (const int32_t points : {9, 1, 0, -5}) {
        const Samples zeros(static_cast<size_t>(std::max(points, 0)), 0);
        ExpectWave(14, ITCStmCreateSpatial, ITCSpatialStmParameters{points, {}}, zeros);
        epochhdr->epochPoints = points;
        QuietOutput quiet;
        const auto calculate = [](uint16_t* buffer) {
            EXPECT_EQ(ITCCalcStimulus(11, buffer, nullptr), ITC_SUCCESS);
        };
        EXPECT_EQ(Written(zeros.size(), calculate), zeros);
        const auto generate = [](uint16_t* buffer) {
            ITCStmCreateGClamp(reinterpret_cast<int16_t*>(buffer));
        };
        EXPECT_EQ(Written(zeros.size(), generate), zeros);
        EXPECT_EQ(quiet.Text(), "stim type 11\n");
    }
}

// The line comes before any check, so a log shows what was tried.
void ExpectRefused(uint32_t type, const void* record, int32_t result = ITC_STIMULUS_ERROR) {
    QuietOutput lines;
    const auto calculate = [&](uint16_t* buffer) {
        EXPECT_EQ(ITCCalcStimulus(type, buffer, record), result) << "type " << type;
    };
    EXPECT_EQ(Written(8, calculate), Samples(8, kUntouched));
    EXPECT_TRUE(
        lines.Text().starts_with("stim type " + std::to_string(static_cast<int32_t>(type)) + "\n"));
}

TEST_F(WaveformTest, TypesWithoutWaveformAndMissingRecords) {
    const uint8_t record[2048] = {};
    for (const uint32_t type : {0U, 6U, 7U, 12U, 15U, 255U, 0x80000000U, 0xFFFFFFFFU})
        ExpectRefused(type, record);
    for (const uint32_t type : {1U, 2U, 3U, 4U, 5U, 8U, 9U, 10U, 13U, 14U})
        ExpectRefused(type, nullptr);
}

// What cannot be divided is refused by the dispatcher and held by the generators.
TEST_F(WaveformTest, ZeroDivisors) {
    const Samples held(8, 300);
    const ITCTrigSeriesParameters triggers{300, 9, 0, 5, 1, 2, {}};
    ExpectRefused(8, &triggers);
    EXPECT_EQ(Generated(8, ITCStmCreateTrigSeries, triggers), held);
    const ITCAlternateVoltageParameters alternating{0, 9, 300, 5, 1, 2, {}};
    ExpectRefused(13, &alternating);
    EXPECT_EQ(Generated(8, ITCStmCreateAltVoltage, alternating), held);
    const ITCSegmentedNoiseParameters segments{9, 300, 1, 5, 1, 2, 0, {}};
    ExpectRefused(9, &segments);
    EXPECT_EQ(Generated(8, ITCStmCreateSegmentedNoise, segments), held);
    const ITCBinaryNoiseParameters binary{9, 300, 1, 5, 1, 2, 0, {}};
    ExpectRefused(10, &binary);
    EXPECT_EQ(Generated(8, ITCStmCreateBinaryNoise, binary), held);
}

TEST(WaveformWithoutStartTest, DispatcherRefusesAndGeneratorsWork) {
    { const LibrarySession ended; }
    const ITCPulseParameters pulse{20, 5, 2, 1, 1, {}};
    ExpectRefused(3, &pulse, ITC_NOT_STARTED);
    ExpectRefused(99, &pulse, ITC_NOT_STARTED);
    EXPECT_EQ(Generated(4, ITCStmCreatePulse, pulse), (Samples{5, 25, 25, 5}));
}

}  // namespace
