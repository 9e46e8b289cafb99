// The waveforms that are formulas of the point's number, against those formulas.
#include "ITCInitialize/State.h"
#include "ITCWaveforms/SampleRuns.h"
#include "ITCWaveforms/SineRotation.h"
#include "SameBits.h"
#include "reference/Definitions.h"

namespace corvantis_test {
namespace {

int32_t& SamplingInterval() { return corvantis::CurrentEpochHeader().samplingInterval; }

void ExpectSameSine(const ITCSineParameters& record) {
    std::vector<uint16_t> samples = BufferFor(record);
    std::vector<uint16_t> expected = samples;
    ITCStmCreateSine(SignedSamples(samples), &record);
    definition::Sine(expected.data(), record, SamplingInterval());
    EXPECT_EQ(CountDifferences(samples, expected), 0u)
        << "amplitude " << record.amplitude << ", mean " << record.mean << ", period "
        << record.period << ", points " << record.points;
}

TEST(WaveformExactTest, SinesOfAnyLevelsPeriodAndLength) {
    std::mt19937 source(1);
    for (int round = 0; round < 3000; ++round) {
        SamplingInterval() = static_cast<int32_t>(source() % 2000) - 10;
        ExpectSameSine({.amplitude = RandomLevel(source),
                        .mean = RandomLevel(source),
                        .period = RandomLevel(source),
                        .points = static_cast<int32_t>(source() % 1500),
                        .tailPoints = static_cast<int32_t>(source() % 20),
                        .prePoints = static_cast<int32_t>(source() % 20)});
    }
    for (const int32_t points : kAwkwardCounts) {
        ExpectSameSine({.amplitude = 12000, .mean = 17, .period = 37, .points = points});
    }
}

TEST(WaveformExactTest, LongSinesWithLevelsNearIntegers) {
    SamplingInterval() = 50;
    for (const int32_t period : {1, 2, 3, 4, 8, 12, 100, 360, 4000, -7}) {
        for (const int32_t amplitude : {1, 2, 1000, 32767, 20000000, 2000000000, -999}) {
            ExpectSameSine({.amplitude = amplitude, .mean = 10, .period = period, .points = 60000});
        }
    }
    ExpectSameSine({.amplitude = 30000, .mean = -5, .period = 41, .points = 3000000});
}

TEST(WaveformExactTest, SinesOfNothing) {
    for (const int32_t interval : {0, 1, INT32_MAX, INT32_MIN}) {
        SamplingInterval() = interval;
        for (const int32_t period : {0, 1, 50, INT32_MAX, INT32_MIN}) {
            ExpectSameSine({.amplitude = 1000, .mean = 3, .period = period, .points = 300});
            ExpectSameSine({.amplitude = 0, .mean = -3, .period = period, .points = 300});
            ExpectSameSine(
                {.amplitude = INT32_MIN, .mean = INT32_MIN, .period = period, .points = 300});
        }
    }
}

size_t WrongSamples(double guardShare) {
    const corvantis::SineFormula formula(10000000, 0, 3, 100);
    std::vector<uint16_t> samples(1000000);
    std::vector<uint16_t> expected;
    corvantis::WriteSine(samples, formula, guardShare);
    for (int32_t i = 0; i < static_cast<int32_t>(samples.size()); ++i) {
        expected.push_back(formula.Sample(i));
    }
    return CountDifferences(samples, expected);
}

TEST(WaveformExactTest, TheSinesGuardIsEnoughAndNoneIsNot) {
    EXPECT_EQ(WrongSamples(1.0), 0u);
    EXPECT_GT(WrongSamples(1.0 / 64), 0u);
    EXPECT_GT(WrongSamples(0.0), 0u);
}

template <class Record, class Library, class Plain>
void ExpectSame(const Record& record, Library library, Plain plainForm) {
    std::vector<uint16_t> samples = BufferFor(record);
    std::vector<uint16_t> expected = samples;
    library(SignedSamples(samples), &record);
    plainForm(expected.data(), record);
    EXPECT_EQ(CountDifferences(samples, expected), 0u) << record.points << " points";
}

TEST(WaveformExactTest, RampsAndPulses) {
    std::mt19937 source(2);
    for (const int32_t points : kAwkwardCounts) {
        for (int round = 0; round < 40; ++round) {
            const int32_t amplitude = RandomLevel(source);
            const int32_t mean = RandomLevel(source);
            ExpectSame(ITCRampParameters{amplitude, mean, points, round % 7, round % 3, {}},
                       ITCStmCreateRamp, definition::Ramp);
            ExpectSame(ITCPulseParameters{amplitude, mean, points, round % 7, round % 3, {}},
                       ITCStmCreatePulse, definition::Pulse);
        }
    }
    ExpectSame(ITCRampParameters{.amplitude = 2147483647, .mean = 70, .points = 18000000},
               ITCStmCreateRamp, definition::Ramp);
}

// An amplitude of 2^30 shows every bit of a point's share of the ramp.
TEST(WaveformExactTest, SharesOfRampsOfAnyLength) {
    std::mt19937 source(4);
    std::vector<int32_t> lengths = {3, 5, 6, 7, 1000003, 1048573, 1048575, 1048576, 1048577};
    while (lengths.size() < 40) lengths.push_back(static_cast<int32_t>(source() % 1048577));
    for (const int32_t points : lengths) {
        ExpectSame(ITCRampParameters{.amplitude = 1 << 30, .mean = 0, .points = points},
                   ITCStmCreateRamp, definition::Ramp);
    }
}

TEST(WaveformExactTest, PeriodsOfEveryLength) {
    for (const int32_t points : kAwkwardCounts) {
        for (const int32_t period :
             {1, 2, 3, 7, 16, 100, 1024, 2048, 4097, 30000, -1, -5, -2049, INT32_MAX, INT32_MIN}) {
            ExpectSame(ITCAlternateVoltageParameters{.halfPeriod = period,
                                                     .amplitude = 40000,
                                                     .mean = -9,
                                                     .points = points,
                                                     .tailPoints = 3,
                                                     .prePoints = 5},
                       ITCStmCreateAltVoltage, definition::AlternatingVoltage);
            ExpectSame(ITCTrigSeriesParameters{.baseline = 5,
                                               .amplitude = -70000,
                                               .interval = period,
                                               .points = points,
                                               .tailPoints = 2,
                                               .prePoints = 1},
                       ITCStmCreateTrigSeries, definition::TriggerSeries);
        }
    }
}

// Levels that a sum can have, beyond 32 bits and not numbers too.
TEST(WaveformExactTest, LevelsAddedToSamples) {
    std::mt19937 source(3);
    std::vector<float> levels = {INFINITY, -INFINITY, NAN, 2147483648.0F, -2147483648.0F, -0.5F};
    while (levels.size() < 2000003) levels.push_back(std::bit_cast<float>(uint32_t(source())));
    std::vector<uint16_t> samples(levels.size());
    for (uint16_t& sample : samples) sample = static_cast<uint16_t>(source());
    std::vector<uint16_t> expected = samples;
    corvantis::AddLevels(samples, levels.data());
    for (size_t i = 0; i < levels.size(); ++i) {
        const auto held = static_cast<float>(static_cast<int16_t>(expected[i]));
        expected[i] = definition::Sample(levels[i] + held);
    }
    EXPECT_EQ(CountDifferences(samples, expected), 0u);
}

}  // namespace
}  // namespace corvantis_test
