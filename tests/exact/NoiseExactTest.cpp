// The noise waveforms against the plain formulas, from the same state of the generators.
#include "ITCInitialize/State.h"
#include "ITCWaveforms/PowerGains.h"
#include "SameBits.h"
#include "SpareDeviates.h"
#include "reference/Definitions.h"

namespace corvantis_test {
namespace {

class NoiseExactTest : public testing::Test {
  protected:
    NoiseExactTest() {
        DropSpareDeviate();
        DropSpareDeviateOnRand();
        definition::DropSpareDeviates();
        corvantis::CurrentFileHeader().version = 8;
        corvantis::CurrentEpochHeader().samplingInterval = 100;
    }
    ~NoiseExactTest() override { corvantis::CurrentFileHeader().version = 8; }

    void ExpectSameNoise(const ITCNoiseParameters& record) {
        std::vector<uint16_t> samples = BufferFor(record);
        std::vector<uint16_t> expected = samples;
        EXPECT_EQ(ITCStmCreateNoise(samples.data(), &record), ITC_SUCCESS);
        if (corvantis::CurrentFileHeader().version <= 4) {
            definition::SmoothedNoise(expected.data(), record);
        } else {
            definition::SpectralNoise(expected.data(), record,
                                      corvantis::CurrentEpochHeader().samplingInterval);
        }
        EXPECT_EQ(CountDifferences(samples, expected), 0u)
            << record.points << " points, window " << record.smoothingPoints << ", cutoff "
            << record.cutoffFrequency << ", order " << record.filterOrder;
    }
};

TEST_F(NoiseExactTest, SpectralNoiseOfEveryLength) {
    for (const int32_t points : kAwkwardCounts) {
        ExpectSameNoise({.amplitude = 3000,
                         .mean = -7,
                         .seed = points,
                         .points = points,
                         .tailPoints = 5,
                         .prePoints = 3,
                         .cutoffFrequency = 300,
                         .filterOrder = 4});
    }
    ExpectSameNoise(
        {.amplitude = 3000, .seed = 1, .points = 1000000, .cutoffFrequency = 60, .filterOrder = 2});
}

TEST_F(NoiseExactTest, FiltersOfEveryOrder) {
    for (const int32_t interval : {100, 1, -40, 0, 8388608}) {
        corvantis::CurrentEpochHeader().samplingInterval = interval;
        for (const int32_t order : {0, 1, 2, 3, 8, 31, 64, 10000, 10001, -1, -20}) {
            for (const int32_t cutoff : {60, 5000, 1, 0, -300, INT32_MAX}) {
                ExpectSameNoise({.amplitude = 20000,
                                 .mean = 4,
                                 .seed = 9,
                                 .points = 1300,
                                 .cutoffFrequency = cutoff,
                                 .filterOrder = order});
            }
        }
    }
}

TEST_F(NoiseExactTest, SmoothedNoiseOfEveryWindow) {
    corvantis::CurrentFileHeader().version = 4;
    for (const int32_t window : {1, 2, 3, 4, 50, 51, 128, 255, 501}) {
        for (const int32_t points : {0, 1, 100, 127, 128, 129, 1000, 5003}) {
            for (const int32_t more : {0, 1, window, 300}) {
                ExpectSameNoise({.amplitude = 3000,
                                 .mean = 12,
                                 .seed = window,
                                 .points = points,
                                 .tailPoints = window / 2 + more,
                                 .prePoints = window / 2 + more,
                                 .smoothingPoints = window});
            }
        }
    }
    ExpectSameNoise({.amplitude = 2000000,
                     .mean = 1,
                     .seed = 3,
                     .points = 300000,
                     .tailPoints = 100,
                     .prePoints = 100,
                     .smoothingPoints = 25});
}

TEST_F(NoiseExactTest, SegmentsOfEveryLength) {
    std::mt19937 source(4);
    for (const int32_t points : kAwkwardCounts) {
        for (const int32_t segment : {1, 2, 3, 17, 600}) {
            const ITCSegmentedNoiseParameters record = {.amplitude = RandomLevel(source),
                                                        .mean = RandomLevel(source),
                                                        .seed = points,
                                                        .points = points,
                                                        .tailPoints = 4,
                                                        .prePoints = 2,
                                                        .segmentPoints = segment};
            std::vector<uint16_t> samples = BufferFor(record);
            std::vector<uint16_t> expected = samples;
            ITCStmCreateSegmentedNoise(SignedSamples(samples), &record);
            definition::SegmentedNoise(expected.data(), record);
            EXPECT_EQ(CountDifferences(samples, expected), 0u) << points << " by " << segment;
            const auto binary = std::bit_cast<ITCBinaryNoiseParameters>(record);
            ITCStmCreateBinaryNoise(SignedSamples(samples), &binary);
            definition::BinaryNoise(expected.data(), binary);
            EXPECT_EQ(CountDifferences(samples, expected), 0u) << points << " by " << segment;
        }
    }
}

// What a waveform that lays nothing leaves behind shows in the next one of negative seed.
TEST_F(NoiseExactTest, StatesBehindWaveformsWithoutPoints) {
    const ITCNoiseParameters first = {
        .amplitude = 1000, .seed = 3, .points = 64, .cutoffFrequency = 100, .filterOrder = 1};
    ITCNoiseParameters next = first;
    next.seed = -1;
    ExpectSameNoise(first);
    const ITCNoiseParameters tooLong = {.seed = 99, .points = 1 << 30};
    EXPECT_EQ(ITCStmCreateNoise(nullptr, &tooLong), ITC_OUT_OF_MEMORY);
    int32_t word = -99;
    definition::UniformDeviate(&word);
    ExpectSameNoise(next);

    const ITCSegmentedNoiseParameters segments[] = {
        {.amplitude = 1000, .seed = 5, .points = 10, .segmentPoints = 1},
        {.amplitude = 1000, .seed = -7, .points = -10, .prePoints = 30, .segmentPoints = -4},
        {.amplitude = 1000, .seed = -3, .points = 10, .segmentPoints = 1}};
    for (const ITCSegmentedNoiseParameters& record : segments) {
        std::vector<uint16_t> samples = BufferFor(record);
        std::vector<uint16_t> expected = samples;
        ITCStmCreateSegmentedNoise(SignedSamples(samples), &record);
        definition::SegmentedNoise(expected.data(), record);
        EXPECT_EQ(CountDifferences(samples, expected), 0u) << record.seed;
    }
}

size_t WrongGains(const corvantis::FilterFormula& formula, double guard) {
    std::vector<float> gains(100000);
    std::vector<float> expected;
    corvantis::CalculateGains(formula, 0, gains, guard);
    for (int32_t i = 0; i < static_cast<int32_t>(gains.size()); ++i) {
        expected.push_back(formula.Gain(i));
    }
    return CountDifferences(gains, expected);
}

// Products of many factors, whose errors are as large as they get, show that the guard is needed.
TEST(PowerGainsExactTest, TheGuardIsEnoughAndNoneIsNot) {
    size_t unguarded = 0;
    for (int32_t order = 10000; order > 9950; --order) {
        const corvantis::FilterFormula formula = {7e-7, 1, order};
        EXPECT_EQ(WrongGains(formula, corvantis::kPowerGuard), 0u) << order;
        unguarded += WrongGains(formula, 0.0);
    }
    EXPECT_GT(unguarded, 0u);
    for (int32_t order = 1; order < 20; ++order) {
        EXPECT_EQ(WrongGains({1e-4, 1, order}, corvantis::kPowerGuard), 0u) << order;
    }
}

}  // namespace
}  // namespace corvantis_test
