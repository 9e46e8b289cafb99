// The noise waveforms, one after the other: what one leaves behind shows in the next.
#include "ITCWaveforms/PowerGains.h"
#include "SameBits.h"

namespace corvantis_test {
namespace {

// From 0 or above a seed restarts; below 0 it continues, with whatever spare deviate is held.
constexpr int32_t kSeeds[] = {0, 12345, -7, -7, 12345, INT32_MAX, -1, INT32_MIN, 1};

void ExpectFiltered(const ITCNoiseParameters& record, int32_t interval = 100, int8_t version = 8) {
    const auto definition = [=](uint16_t* buffer, const ITCNoiseParameters& noise) {
        if (version <= 4) return definition::SmoothedNoise(buffer, noise);
        definition::SpectralNoise(buffer, noise, interval);
    };
    ExpectDefined(ITC_STIMULUS_NOISE, record, definition,
                  {.samplingInterval = interval, .version = version});
}

void ExpectSegments(const ITCSegmentedNoiseParameters& record) {
    ExpectDefined(ITC_STIMULUS_SEGMENTED_NOISE, record, definition::SegmentedNoise);
}

TEST_F(ExactTest, SpectralNoiseOfEveryLengthAndFilter) {
    for (const int32_t points : kAwkwardCounts)
        ExpectFiltered({3000, -7, points, points, 5, 3, 0, 300, 4});
    ExpectFiltered({3000, 100, 1, 1000000, 0, 0, 0, 60, 2});
    // The transform's duration wraps: 128 points of 2^25 + 50 µs last as long as of 50 µs.
    for (const int32_t interval : {100, 1, -40, 0, 8388608, (1 << 25) + 50}) {
        for (const int32_t order : {0, 1, 2, 3, 8, 31, 64, 10000, 10001, -1, -20}) {
            for (const int32_t cutoff : {60, 5000, 1, 0, -300, INT32_MAX}) {
                const int32_t points = interval > 8388608 ? 64 : 1300;
                ExpectFiltered({20000, 4, 9, points, 0, 0, 0, cutoff, order}, interval);
            }
        }
    }
    ExpectDigest(0xab51803f0e3482f4);
}

TEST_F(ExactTest, SmoothedNoiseOfEveryWindow) {
    for (const int32_t window : {1, 2, 3, 4, 50, 51, 128, 255, 501}) {
        for (const int32_t points : {0, 1, 100, 127, 128, 129, 1000, 5003}) {
            for (const int32_t more : {0, 1, window, 300}) {
                const int32_t side = window / 2 + more;
                ExpectFiltered({3000, 12, -window, points, side, side, window, 0, 0}, 100, 4);
            }
        }
    }
    ExpectFiltered({2000000, 1, 3, 300000, 100, 100, 25, 0, 0}, 100, 4);
    // With a level that shows every bit of a deviate.
    ExpectFiltered({1 << 30, 0, 42, 1000001, 0, 0, 1, 0, 0}, 100, 4);
    // The file's version chooses the method.
    for (const int8_t version : {-128, -1, 0, 4, 5, 8, 127})
        ExpectFiltered({2000, 10, 31, 64, 8, 8, 6, 200, 2}, 50, version);
    ExpectDigest(0xa4783a005033e74a);
}

TEST_F(ExactTest, SegmentsOfEveryLengthAndSeedInAnyHistory) {
    std::mt19937 source(4);
    size_t round = 0;
    for (const int32_t points : kAwkwardCounts) {
        for (const int32_t segment : {1, 2, 3, 17, 600}) {
            const int32_t amplitude = round % 4 == 0 ? INT32_MIN : RandomLevel(source);
            const int32_t seed = kSeeds[round++ % std::size(kSeeds)];
            const ITCSegmentedNoiseParameters record{
                amplitude, RandomLevel(source), seed, points, 4, 2, segment, {}};
            ExpectSegments(record);
            ExpectFiltered({3000, -100, seed, 30, 1, 1, 0, 500, 2});
            ExpectDefined(ITC_STIMULUS_BINARY_NOISE,
                          std::bit_cast<ITCBinaryNoiseParameters>(record), definition::BinaryNoise);
        }
    }
    for (const int32_t seed : {77, -1}) ExpectSegments({1 << 30, 0, seed, 3000001, 0, 0, 1, {}});
    ExpectDigest(0xfabc83260da2e2d0);
}

TEST_F(ExactTest, StatesBehindWaveformsWithoutPoints) {
    const ITCNoiseParameters tooLong{0, 0, 99, 1 << 30, 0, 0, 0, 100, 1};
    EXPECT_EQ(ITCStmCreateNoise(nullptr, &tooLong), ITC_OUT_OF_MEMORY);
    int32_t word = -99;
    definition::UniformDeviate(&word);
    ExpectFiltered({1000, 0, -1, 64, 0, 0, 0, 100, 1});
    ExpectSegments({1000, 0, 5, 10, 0, 0, 1, {}});
    ExpectSegments({1000, 0, -7, -10, 0, 30, -4, {}});
    ExpectSegments({1000, 0, -3, 10, 0, 0, 1, {}});
    ExpectDigest(0xde78775d88e2ea54);
}

// Products of many factors, whose errors are as large as they get, show that the guard is needed.
TEST_F(ExactTest, ThePowersGuardIsEnoughAndNoneIsNot) {
    bool isNeeded = false;
    for (int32_t order = 10000; order > 0; order -= order > 9950 || order <= 20 ? 1 : 9930) {
        const corvantis::FilterFormula formula = {order < 20 ? 1e-4 : 7e-7, 1, order};
        std::vector<float> gains(100000), expected;
        for (int32_t i = 0; i < 100000; ++i) expected.push_back(formula.Gain(i));
        CalculateGains(formula, 0, gains, 0.0);
        isNeeded = isNeeded || gains != expected;
        CalculateGains(formula, 0, gains);
        ExpectSame(gains, expected, order);
    }
    EXPECT_TRUE(isNeeded);
}

}  // namespace
}  // namespace corvantis_test
