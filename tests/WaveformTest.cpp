// The computed shapes against formulas written here, by the dispatcher and by the generators.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "ReferenceSamples.h"

namespace {

using corvantis_test::Framed;
using corvantis_test::kUntouched;
using corvantis_test::LibrarySession;
using corvantis_test::QuietOutput;
using corvantis_test::Samples;
using corvantis_test::Stored;
using corvantis_test::Written;

template <class Formula>
Samples Shape(int32_t points, Formula formula) {
    Samples shape;
    for (int32_t i = 0; i < points; ++i) shape.push_back(formula(i));
    return shape;
}

uint16_t Low(int64_t level) { return static_cast<uint16_t>(level); }

// Both ways of computing a record give these samples; the dispatcher alone prints.
template <class Record, class Result>
void ExpectWave(uint32_t type, Result (*generate)(int16_t*, const Record*), const Record& record,
                const Samples& expected) {
    int32_t result = -1;
    QuietOutput lines;
    const Samples calculated = Written(expected.size(), [&](uint16_t* buffer) {
        result = ITCCalcStimulus(type, buffer, &record);
    });
    EXPECT_EQ(lines.Text(), "stim type " + std::to_string(type) + "\n" +
                                (type == 13 ? "alt voltage create\n" : ""));
    EXPECT_EQ(result, ITC_SUCCESS);
    EXPECT_EQ(calculated, expected);
    QuietOutput none;
    EXPECT_EQ(
        Written(expected.size(),
                [&](uint16_t* buffer) { generate(reinterpret_cast<int16_t*>(buffer), &record); }),
        expected);
    EXPECT_EQ(none.Text(), "");
}

// Lengths of the three runs; a count of 0 or below writes nothing.
struct Runs {
    int32_t prePoints, points, tailPoints;
};
constexpr Runs kRuns[] = {{3, 24, 2}, {0, 7, 0},   {-2, 5, 1}, {2, -3, 1},
                          {2, 0, -1}, {-1, 5, -9}, {-1, 0, 0}, {1, 1, 1}};

template <class Record>
Record WithRuns(Record record, const Runs& runs) {
    record.prePoints = runs.prePoints;
    record.points = runs.points;
    record.tailPoints = runs.tailPoints;
    return record;
}

Samples SineWave(const ITCSineParameters& r) {
    const double interval = epochhdr->samplingInterval;
    const double step = 6.283184 / (r.period * interval * 1e-6);
    return Shape(r.points, [&](int32_t i) {
        const double sine = std::sin(static_cast<double>(i) * interval * 1e-6 * step);
        return Stored(std::fma(static_cast<double>(r.amplitude), sine, r.mean));
    });
}

class WaveformTest : public testing::Test {
  protected:
    LibrarySession session;
};

TEST_F(WaveformTest, Sine) {
    for (const int32_t interval : {10, 4, 65535, 262140}) {
        epochhdr->samplingInterval = interval;
        for (const auto& [amplitude, mean, period] :
             {std::array{1000, 0, 4}, std::array{-31000, 777, 37}, std::array{INT32_MAX, -5, -9},
              std::array{2000000000, 2000000000, 11}, std::array{1999999999, INT32_MIN, 10}}) {
            for (const Runs& runs : kRuns) {
                const auto record =
                    WithRuns(ITCSineParameters{amplitude, mean, period, 99, 0, 0, 0, {}}, runs);
                ExpectWave(1, ITCStmCreateSine, record,
                           Framed(mean, runs.prePoints, SineWave(record), runs.tailPoints));
            }
        }
    }
}

TEST_F(WaveformTest, SineByHand) {
    epochhdr->samplingInterval = 37;
    ITCSineParameters record{1000, 0, 4, 0, 8, 0, 0, {}};
    ExpectWave(1, ITCStmCreateSine, record, {0, 999, 0, Low(-999), 0, 999, 0, Low(-999)});
    // Bounds of 32 bits: the conversion stops at 2147483647 and at -2147483648.
    record = {2000000000, 2000000000, 4, 0, 2, 0, 0, {}};
    ExpectWave(1, ITCStmCreateSine, record, {Low(2000000000), 0xFFFF});
    record = {-2000000000, -2000000000, 4, 0, 2, 0, 0, {}};
    ExpectWave(1, ITCStmCreateSine, record, {Low(-2000000000), 0});
}

TEST_F(WaveformTest, LongSines) {
    // Time beyond 32 bits; then a point (6571) that a separate rounding of the product moves by 1.
    epochhdr->samplingInterval = 262140;
    ITCSineParameters record{2000000011, 123456789, 1013, 0, 20000, 0, 0, {}};
    ExpectWave(1, ITCStmCreateSine, record, SineWave(record));
    epochhdr->samplingInterval = 10;
    record = {INT32_MAX, -2051404981, 361, 0, 6572, 0, 0, {}};
    ExpectWave(1, ITCStmCreateSine, record, SineWave(record));
}

TEST_F(WaveformTest, SineWithoutPeriodOrIntervalIsNoNumberAndStoresZero) {
    for (const auto& [interval, period] : {std::pair{10, 0}, std::pair{0, 10}, std::pair{0, 0}}) {
        epochhdr->samplingInterval = interval;
        ExpectWave(1, ITCStmCreateSine, ITCSineParameters{500, 77, period, 0, 4, 1, 1, {}},
                   {77, 0, 0, 0, 0, 77});
    }
}

TEST_F(WaveformTest, Pulse) {
    for (const auto& [amplitude, mean] : {std::pair{10000, 30000}, std::pair{-70000, 5},
                                          std::pair{1, INT32_MAX}, std::pair{-1, INT32_MIN}}) {
        for (const Runs& runs : kRuns) {
            const uint16_t level = Low(int64_t{mean} + amplitude);
            const Samples shape = Shape(runs.points, [&](int32_t) { return level; });
            ExpectWave(3, ITCStmCreatePulse,
                       WithRuns(ITCPulseParameters{amplitude, mean, 0, 0, 0, {}}, runs),
                       Framed(mean, runs.prePoints, shape, runs.tailPoints));
        }
    }
    ExpectWave(3, ITCStmCreatePulse, ITCPulseParameters{10000, 30000, 1, 1, 1, {}},
               {30000, 0x9C40, 30000});
}

TEST_F(WaveformTest, Ramp) {
    ExpectWave(4, ITCStmCreateRamp, ITCRampParameters{100, 0, 4, 1, 0, {}}, {0, 25, 50, 75, 0});
    for (const auto& [amplitude, mean] : {std::pair{-40000, 40000}, std::pair{32767, -12345},
                                          std::pair{INT32_MIN, INT32_MIN}, std::pair{70001, -7}}) {
        for (const Runs& runs : kRuns) {
            const float rise = static_cast<float>(amplitude);
            const float start = static_cast<float>(mean);
            const Samples shape = Shape(runs.points, [&](int32_t i) {
                const float part = static_cast<float>(i) / static_cast<float>(runs.points);
                return Stored(double{std::fma(part, rise, start)});
            });
            ExpectWave(4, ITCStmCreateRamp,
                       WithRuns(ITCRampParameters{amplitude, mean, 0, 0, 0, {}}, runs),
                       Framed(mean, runs.prePoints, shape, runs.tailPoints));
        }
    }
}

TEST_F(WaveformTest, LongRampRoundsOnce) {
    // Exact arithmetic in double, rounded to single once, is what a fused operation gives; two
    // roundings give another sample at some of these points.
    const ITCRampParameters record{30011, -12345, 50000, 0, 0, {}};
    int separate = 0;
    const Samples shape = Shape(record.points, [&](int32_t i) {
        const float part = static_cast<float>(i) / 50000.0F;
        const float twice = part * 30011.0F + -12345.0F;
        const auto once = static_cast<float>(double{part} * 30011.0 - 12345.0);
        separate += Stored(double{twice}) != Stored(double{once});
        return Stored(double{once});
    });
    EXPECT_GT(separate, 0) << "this ramp cannot tell";
    ExpectWave(4, ITCStmCreateRamp, record, shape);
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

TEST_F(WaveformTest, TriggerSeries) {
    ExpectWave(8, ITCStmCreateTrigSeries, ITCTrigSeriesParameters{5, 100, 3, 7, 0, 1, {}},
               {5, 105, 5, 5, 105, 5, 5, 105});
    for (const int32_t interval : {1, 3, -3, 24, 1000, INT32_MIN}) {
        for (const Runs& runs : kRuns) {
            const Samples shape = Shape(runs.points, [&](int32_t i) {
                return i % std::abs(int64_t{interval}) == 0 ? Low(60000 + 9000) : Low(60000);
            });
            ExpectWave(8, ITCStmCreateTrigSeries,
                       WithRuns(ITCTrigSeriesParameters{60000, 9000, interval, 0, 0, 0, {}}, runs),
                       Framed(60000, runs.prePoints, shape, runs.tailPoints));
        }
    }
}

TEST_F(WaveformTest, AlternatingVoltage) {
    ExpectWave(13, ITCStmCreateAltVoltage, ITCAlternateVoltageParameters{2, 9, 4, 5, 1, 0, {}},
               {4, 4, 13, 13, 4, 4});
    for (const int32_t halfPeriod : {1, 5, -2, 1000, INT32_MIN}) {
        for (const Runs& runs : kRuns) {
            const Samples shape = Shape(runs.points, [&](int32_t i) {
                return i / std::abs(int64_t{halfPeriod}) % 2 ? Low(-3000 - 40000) : Low(-3000);
            });
            ExpectWave(
                13, ITCStmCreateAltVoltage,
                WithRuns(ITCAlternateVoltageParameters{halfPeriod, -40000, -3000, 0, 0, 0, {}},
                         runs),
                Framed(-3000, runs.prePoints, shape, runs.tailPoints));
        }
    }
}

TEST_F(WaveformTest, SpatialAndDynamicClampAreZero) {
    for (const int32_t points : {9, 1, 0, -5}) {
        const Samples zeros(static_cast<size_t>(std::max(points, 0)), 0);
        ExpectWave(14, ITCStmCreateSpatial, ITCSpatialStmParameters{points, {}}, zeros);
        epochhdr->epochPoints = points;
        QuietOutput quiet;
        int32_t result = -1;
        const auto calculate = [&](uint16_t* b) { result = ITCCalcStimulus(11, b, nullptr); };
        EXPECT_EQ(Written(zeros.size(), calculate), zeros);
        EXPECT_EQ(result, ITC_SUCCESS);
        EXPECT_EQ(Written(zeros.size(),
                          [](uint16_t* b) { ITCStmCreateGClamp(reinterpret_cast<int16_t*>(b)); }),
                  zeros);
        EXPECT_EQ(quiet.Text(), "stim type 11\n");
    }
}

}  // namespace
