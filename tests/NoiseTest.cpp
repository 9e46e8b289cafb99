// The noise generators against a second implementation of each, over histories of several calls.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "ReferenceNoise.h"
#include "ReferenceRandom.h"
#include "ReferenceSamples.h"

namespace {

using corvantis_test::DropSpareDeviate;
using corvantis_test::DropSpareDeviateOnRand;
using corvantis_test::kUntouched;
using corvantis_test::LibrarySession;
using corvantis_test::QuietOutput;
using corvantis_test::ReferenceNoise;
using corvantis_test::Samples;
using corvantis_test::Written;

class NoiseTest : public testing::Test {
  protected:
    NoiseTest() {
        DropSpareDeviate();
        DropSpareDeviateOnRand();
        epochhdr->samplingInterval = 50;
    }
    template <class Record>
    static Samples Calculated(uint32_t type, const Record& record, size_t points) {
        QuietOutput quiet;
        return Written(points, [&](uint16_t* buffer) {
            EXPECT_EQ(ITCCalcStimulus(type, buffer, &record), ITC_SUCCESS);
        });
    }
    template <class Record>
    void Expect(uint32_t type, const Record& record, const Samples& expected) {
        EXPECT_EQ(Calculated(type, record, expected.size()), expected)
            << "type " << type << ", seed " << record.seed;
    }

    LibrarySession session;
    ReferenceNoise reference;
};

// From 0 or above a seed restarts, below 0 it continues, with whatever spare deviate is held.
constexpr int32_t kSeeds[] = {0, 12345, -7, -7, 12345, INT32_MAX, -1, INT32_MIN, 1};

TEST_F(NoiseTest, SegmentedNoise) {
    for (const int32_t seed : kSeeds) {
        for (const auto& record :
             {ITCSegmentedNoiseParameters{3000, 100, seed, 10, 2, 3, 4, {}},
              ITCSegmentedNoiseParameters{-900, 40000, seed, 999, 0, 0, 9, {}},
              ITCSegmentedNoiseParameters{500000, -20000, seed, 7, 0, 1, 1, {}},
              ITCSegmentedNoiseParameters{700, 5, seed, 10, 3, -3, 2, {}},
              ITCSegmentedNoiseParameters{700, 5, seed, 3, 1, 1, 4, {}},
              ITCSegmentedNoiseParameters{700, 5, seed, 6, 1, 1, -2, {}}}) {
            Expect(9, record, reference.Segmented(record));
        }
    }
}

TEST_F(NoiseTest, BinaryNoise) {
    for (const int32_t seed : kSeeds) {
        for (const auto& record : {ITCBinaryNoiseParameters{3000, 100, seed, 10, 2, 3, 4, {}},
                                   ITCBinaryNoiseParameters{-20000, 40000, seed, 999, 0, 0, 3, {}},
                                   ITCBinaryNoiseParameters{700, 5, seed, 10, 3, -3, 2, {}},
                                   ITCBinaryNoiseParameters{INT32_MIN, 5, seed, 9, 0, 0, 1, {}},
                                   ITCBinaryNoiseParameters{700, 5, seed, 0, 1, 1, 4, {}}}) {
            Expect(10, record, reference.Binary(record));
        }
    }
}

TEST_F(NoiseTest, ADrawOfExactlyOneHalfGivesTheNegativeLevel) {
    int32_t word = -9687;
    for (int n = 0; n < 117; ++n) ran2(&word);
    ASSERT_EQ(ran2(&word), 0.5F);
    const ITCBinaryNoiseParameters record{1000, 0, 9687, 117, 0, 0, 1, {}};
    EXPECT_EQ(Calculated(10, record, 117).back(), static_cast<uint16_t>(-1000));
}

TEST_F(NoiseTest, SpectralNoise) {
    for (const int32_t interval : {50, 4, 262140}) {
        epochhdr->samplingInterval = interval;
        for (const int32_t seed : {77, -1, 0}) {
            // amplitude, mean, points, tail, pre, cutoff, order; 10000 points wrap the product of
            // lengths, and samples of millions show a separate rounding of the product.
            for (const auto& [amplitude, mean, points, tail, pre, cutoff, order] :
                 {std::array{2500, 0, 1000, 12, 12, 300, 2},
                  std::array{2500, 40000, 1024, 0, 0, 60, 1},
                  std::array{2500, -300, 1, 2, 1, 100, 4},
                  std::array{5000000, -20000, 10000, 0, 7, 1000, 3},
                  std::array{2500, 7, 100, 3, -3, -500, 1}, std::array{2500, 9, 300, 1, 1, 50, 0},
                  std::array{-2500, 9, 300, 1, 1, 100000, -2}}) {
                const ITCNoiseParameters record{amplitude, mean, seed,   points, tail,
                                                pre,       0,    cutoff, order};
                Expect(2, record, reference.Spectral(record, interval));
            }
        }
    }
}

TEST_F(NoiseTest, SmoothedNoise) {
    filehdr->version = 4;
    for (const int32_t seed : {5, 0, -5}) {
        // mean, points, tail, pre, smoothing
        for (const auto& [mean, points, tail, pre, smoothing] :
             {std::array{0, 10, 4, 4, 5}, std::array{40000, 500, 20, 25, 20},
              std::array{-300, 11, 2, 2, 4}, std::array{12, 9, 0, 0, 1},
              std::array{1, 3, 40, 40, 80}, std::array{7, 20, 0, -3, -8},
              std::array{7, 0, 3, 3, 6}}) {
            const ITCNoiseParameters record{1800, mean, seed, points, tail, pre, smoothing, 60, 1};
            Expect(2, record, reference.Smoothed(record));
        }
    }
    // No window: nothing divided by nothing is no number.
    Expect(2, ITCNoiseParameters{1800, 9, 1, 3, 1, 1, 0, 60, 1}, {9, 0, 0, 0, 9});
}

TEST_F(NoiseTest, SmoothingByHand) {
    // Half a window into the pre and tail runs, and nothing further.
    filehdr->version = 4;
    const Samples samples = Calculated(2, ITCNoiseParameters{9000, 3, 8, 10, 4, 4, 5, 0, 0}, 18);
    for (const size_t held : {0U, 1U, 16U, 17U}) EXPECT_EQ(samples[held], 3) << held;
    for (size_t noisy = 2; noisy < 16; ++noisy) EXPECT_NE(samples[noisy], 3) << noisy;
}

TEST_F(NoiseTest, AWindowThatDoesNotFitIsRefused) {
    filehdr->version = 4;
    for (const auto& [tail, pre, smoothing] :
         {std::array{9, 1, 4}, std::array{1, 9, 4}, std::array{9, -3, 1}, std::array{-1, 9, 1}}) {
        const ITCNoiseParameters record{100, 5, 1, 10, tail, pre, smoothing, 60, 1};
        int32_t result = -1;
        EXPECT_EQ(Written(24, [&](uint16_t* b) { result = ITCStmCreateNoise(b, &record); }),
                  Samples(24, kUntouched));
        EXPECT_EQ(result, ITC_STIMULUS_ERROR);
        QuietOutput quiet;
        EXPECT_EQ(Written(24, [&](uint16_t* b) { result = ITCCalcStimulus(2, b, &record); }),
                  Samples(24, kUntouched));
        EXPECT_EQ(result, ITC_STIMULUS_ERROR);
    }
}

TEST_F(NoiseTest, TheFilesVersionChoosesTheMethod) {
    const ITCNoiseParameters record{2000, 10, 31, 64, 8, 8, 5, 200, 2};
    for (const int version : {-128, -1, 0, 4, 5, 8, 127}) {
        filehdr->version = static_cast<int8_t>(version);
        Expect(2, record,
               version <= 4 ? reference.Smoothed(record) : reference.Spectral(record, 50));
    }
}

TEST_F(NoiseTest, AHeldDeviateComesFirst) {
    const ITCSegmentedNoiseParameters odd{1000, 0, 4, 3, 0, 0, 1, {}};
    const Samples fresh = Calculated(9, odd, 3);
    const Samples held = Calculated(9, odd, 3);
    EXPECT_NE(held, fresh) << "three deviates leave one behind";
    EXPECT_EQ(held[1], fresh[0]);
    EXPECT_EQ(held[2], fresh[1]);
    EXPECT_EQ(Calculated(9, odd, 3), fresh);
    EXPECT_EQ(fresh, reference.Segmented(odd));
}

TEST_F(NoiseTest, NoPointsOrNoCutoff) {
    Expect(2, ITCNoiseParameters{2000, 9, 1, 0, 4, 3, 0, 50, 1}, Samples(7, 9));
    Expect(2, ITCNoiseParameters{2000, 77, 1, 3, 1, 1, 0, 0, 2}, {77, 0, 0, 0, 77});
}

TEST_F(NoiseTest, OutputsHaveTheStatedSpread) {
    double sums[2] = {};
    const ITCNoiseParameters record{2000, 0, 3, 60000, 0, 0, 0, 500, 2};
    for (const uint16_t sample : Calculated(2, record, 60000)) {
        const double value = static_cast<int16_t>(sample);
        sums[0] += value / 60000;
        sums[1] += value * value / 60000;
    }
    EXPECT_NEAR(sums[0], 0, 100);
    EXPECT_NEAR(std::sqrt(sums[1]), 2000, 100);
}

}  // namespace
