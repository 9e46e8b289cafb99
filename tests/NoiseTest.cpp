// The noise waveforms: by hand, beyond the buffer's start, and against their plain formulas.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "SpareDeviates.h"
#include "WrittenSamples.h"
#include "reference/Definitions.h"

namespace {

using namespace corvantis_test;

class NoiseTest : public testing::Test {
  protected:
    NoiseTest() {
        DropSpares();
        epochhdr->samplingInterval = 50;
    }
    static void DropSpares() {
        DropSpareDeviate();
        DropSpareDeviateOnRand();
        definition::DropSpareDeviates();
    }
    template <class Record>
    static Samples Calculated(uint32_t type, const Record& record, size_t points) {
        QuietOutput quiet;
        return Written(points, [&](uint16_t* buffer) {
            EXPECT_EQ(ITCCalcStimulus(type, buffer, &record), ITC_SUCCESS);
        });
    }
    template <class Record, class Plain>
    static void Expect(uint32_t type, const Record& record, Plain formula) {
        const auto points =
            static_cast<size_t>(record.prePoints + record.points + record.tailPoints);
        EXPECT_EQ(Calculated(type, record, points),
                  Written(points, [&](uint16_t* buffer) { formula(buffer, record); }))
            << "type " << type << ", seed " << record.seed;
    }
    // Three points that would lie before the buffer are passed over, the rest moves up.
    template <class Record>
    static void ExpectShift(uint32_t type, Record record) {
        record.prePoints = record.tailPoints = 0;
        const auto points = static_cast<size_t>(record.points);
        DropSpares();
        Samples expected = Calculated(type, record, points);
        std::rotate(expected.begin(), expected.begin() + 3, expected.end());
        std::fill(expected.end() - 3, expected.end(), static_cast<uint16_t>(record.mean));
        record.prePoints = -3;
        record.tailPoints = 3;
        DropSpares();
        EXPECT_EQ(Calculated(type, record, points), expected) << "type " << type;
    }

    LibrarySession session;
};

// From 0 or above a seed restarts, below 0 it continues, with whatever spare deviate is held.
TEST_F(NoiseTest, SeedsRestartOrContinue) {
    for (const int32_t seed : {0, 12345, -7, -7, 12345, INT32_MAX, -1, INT32_MIN, 1}) {
        for (const int32_t amplitude : {3000, -20000, INT32_MIN}) {
            Expect(9, ITCSegmentedNoiseParameters{amplitude, 40000, seed, 11, 2, 3, 4, {}},
                   definition::SegmentedNoise);
            Expect(10, ITCBinaryNoiseParameters{amplitude, 100, seed, 999, 0, 0, 3, {}},
                   definition::BinaryNoise);
        }
        Expect(9, ITCSegmentedNoiseParameters{700, 5, seed, 9, 2, 3, 1, {}},
               definition::SegmentedNoise);
    }
}

TEST_F(NoiseTest, TheFilesVersionChoosesTheMethod) {
    for (const int version : {-128, -1, 0, 4, 5, 8, 127}) {
        filehdr->version = static_cast<int8_t>(version);
        for (const int32_t seed : {31, 0, -5}) {
            // With the long interval the transform lasts as long, wrapped, as with the short one.
            const int32_t interval = seed == 0 ? (1 << 25) + 50 : 50;
            epochhdr->samplingInterval = interval;
            const ITCNoiseParameters record{2000, 10, seed, 64, 8, 8, 6, 200, 2};
            Expect(2, record, [=](uint16_t* buffer, const ITCNoiseParameters& noise) {
                if (version <= 4) return definition::SmoothedNoise(buffer, noise);
                definition::SpectralNoise(buffer, noise, interval);
            });
        }
    }
}

TEST_F(NoiseTest, PointsBeforeTheBufferArePassedOver) {
    ExpectShift(2, ITCNoiseParameters{2500, 7, 77, 100, 0, 0, 0, -500, 1});
    ExpectShift(9, ITCSegmentedNoiseParameters{700, 5, 77, 10, 0, 0, 2, {}});
    ExpectShift(9, ITCSegmentedNoiseParameters{700, 5, 77, 10, 0, 0, 1, {}});
    ExpectShift(10, ITCBinaryNoiseParameters{700, 5, 77, 10, 0, 0, 5, {}});
}

TEST_F(NoiseTest, ADrawOfExactlyOneHalfGivesTheNegativeLevel) {
    int32_t word = -9687;
    for (int n = 0; n < 117; ++n) ran2(&word);
    ASSERT_EQ(ran2(&word), 0.5F);
    const ITCBinaryNoiseParameters record{1000, 0, 9687, 117, 0, 0, 1, {}};
    EXPECT_EQ(Calculated(10, record, 117).back(), static_cast<uint16_t>(-1000));
}

// Nothing divided by nothing is no number.
TEST_F(NoiseTest, NoPointsNoSegmentsNoCutoffOrNoWindow) {
    const Samples held(7, 9);
    EXPECT_EQ(Calculated(2, ITCNoiseParameters{2000, 9, 1, 0, 4, 3, 0, 50, 1}, 7), held);
    EXPECT_EQ(Calculated(9, ITCSegmentedNoiseParameters{700, 9, 1, 5, 1, 1, -2, {}}, 7), held);
    const Samples zeros = {9, 0, 0, 0, 9};
    EXPECT_EQ(Calculated(2, ITCNoiseParameters{2000, 9, 1, 3, 1, 1, 0, 0, 2}, 5), zeros);
    filehdr->version = 4;
    EXPECT_EQ(Calculated(2, ITCNoiseParameters{1800, 9, 1, 3, 1, 1, 0, 60, 1}, 5), zeros);
}

TEST_F(NoiseTest, AWindowThatDoesNotFitIsRefused) {
    filehdr->version = 4;
    for (const auto& [tail, pre, smoothing] :
         {std::array{9, 1, 4}, std::array{1, 9, 4}, std::array{9, -3, 1}, std::array{-1, 9, 1}}) {
        const ITCNoiseParameters record{100, 5, 1, 10, tail, pre, smoothing, 60, 1};
        QuietOutput quiet;
        const auto calculate = [&](uint16_t* buffer) {
            EXPECT_EQ(ITCStmCreateNoise(buffer, &record), ITC_STIMULUS_ERROR);
            EXPECT_EQ(ITCCalcStimulus(2, buffer, &record), ITC_STIMULUS_ERROR);
        };
        EXPECT_EQ(Written(24, calculate), Samples(24, kUntouched));
    }
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
