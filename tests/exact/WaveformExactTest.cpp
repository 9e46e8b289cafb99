// The waveforms that are formulas of the point's number.
#include "ITCWaveforms/SineRotation.h"
#include "SameBits.h"

namespace corvantis_test {
namespace {

void ExpectSine(int32_t interval, const ITCSineParameters& record) {
    const auto definition = [=](uint16_t* buffer, const ITCSineParameters& sine) {
        definition::Sine(buffer, sine, interval);
    };
    ExpectDefined(ITC_STIMULUS_SINE, record, definition, {.samplingInterval = interval});
}

TEST_F(ExactTest, SinesOfAnyLevelsPeriodAndLength) {
    std::mt19937 source(1);
    const auto below = [&](uint32_t limit) { return static_cast<int32_t>(source() % limit); };
    for (int round = 0; round < 3000; ++round) {
        const int32_t interval = below(2000) - 10, points = below(1503) - 3;
        const int32_t amplitude = RandomLevel(source), mean = RandomLevel(source);
        ExpectSine(interval,
                   {amplitude, mean, RandomLevel(source), 0, points, below(23) - 3, 1, {}});
    }
    for (const int32_t points : kAwkwardCounts)
        ExpectSine(50, {12000, 17, 37, 0, points, 0, 0, {}});
    ExpectSine(50, {30000, -5, 41, 0, 3000000, 0, 0, {}});
    // The last point is moved by 1 if product and sum are rounded apart.
    ExpectSine(10, {INT32_MAX, -2051404981, 361, 0, 6572, 0, 0, {}});
    ExpectDigest(0x59338d7376584d85);
}

TEST_F(ExactTest, SinesWithLevelsNearIntegersAndOfNothing) {
    for (const int32_t interval : {50, 0, INT32_MIN}) {
        for (const int32_t period :
             {0, 1, 2, 3, 4, 8, 12, 100, 360, 4000, -7, INT32_MAX, INT32_MIN}) {
            for (const int32_t amplitude : {0, 1, 2, 1000, 32767, 20000000, 2000000000, -999})
                ExpectSine(interval, {amplitude, 10, period, 0, 8000, 0, 0, {}});
            ExpectSine(interval, {INT32_MIN, INT32_MIN, period, 0, 300, 0, 0, {}});
        }
    }
    ExpectDigest(0x2eae3ad005706728);
}

TEST_F(ExactTest, TheSinesGuardIsEnoughAndLessOfItIsNot) {
    const corvantis::SineFormula formula(10000000, 0, 3, 100);
    Samples samples(1000000), expected;
    for (int32_t i = 0; i < 1000000; ++i) expected.push_back(formula.Sample(i));
    corvantis::WriteSine(samples, formula);
    ExpectSame(samples, expected);
    corvantis::WriteSine(samples, formula, 1.0 / 64);
    EXPECT_TRUE(samples != expected);
}

TEST_F(ExactTest, RampsPulsesAndPeriodsOfEveryLength) {
    std::mt19937 source(2);
    for (const int32_t length : kAwkwardCounts) {
        for (int32_t round = 0; round < 40; ++round) {
            const int32_t amplitude = RandomLevel(source), mean = RandomLevel(source);
            const int32_t points = round == 0 ? -length : length;
            const ITCRampParameters ramp{amplitude, mean, points, round % 7 - 1, round % 3 - 1, {}};
            ExpectDefined(ITC_STIMULUS_RAMP, ramp, definition::Ramp);
            ExpectDefined(ITC_STIMULUS_PULSE, std::bit_cast<ITCPulseParameters>(ramp),
                          definition::Pulse);
        }
        for (const int32_t period :
             {1, 2, 3, 7, 16, 100, 1024, 2048, 4097, 30000, -1, -5, -2049, INT32_MAX, INT32_MIN}) {
            ExpectDefined(ITC_STIMULUS_ALTERNATING_VOLTAGE,
                          ITCAlternateVoltageParameters{period, 40000, -9, length, 3, 5, {}},
                          definition::AlternatingVoltage);
            ExpectDefined(ITC_STIMULUS_TRIGGER_SERIES,
                          ITCTrigSeriesParameters{5, -70000, period, length, 2, 1, {}},
                          definition::TriggerSeries);
        }
    }
    ExpectDigest(0x7f2b676fdafd5e77);
}

// An amplitude of 2^30 shows every bit of a point's share of the ramp.
TEST_F(ExactTest, SharesOfRampsOfAnyLength) {
    std::mt19937 source(4);
    const auto expect = [](int32_t points) {
        const ITCRampParameters ramp{1 << 30, 0, points, 0, 0, {}};
        ExpectDefined(ITC_STIMULUS_RAMP, ramp, definition::Ramp);
    };
    for (const int32_t points : {3, 5, 6, 7, 1000003, 1048575, 1048576, 1048577, 18000000})
        expect(points);
    for (int round = 0; round < 30; ++round) expect(static_cast<int32_t>(source() % 1048577));
    ExpectDigest(0x85edb2f417f9164c);
}

}  // namespace
}  // namespace corvantis_test
