// Noise at the edges: of the buffer, of one half, of nothing, and of the window.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "SpareDeviates.h"
#include "WrittenSamples.h"

namespace {

using namespace corvantis_test;

struct NoiseTest : testing::Test {
    NoiseTest() { epochhdr->samplingInterval = 50; }
    LibrarySession session;
};

template <class Record>
Samples Calculated(uint32_t type, const Record& record, size_t points,
                   int32_t result = ITC_SUCCESS) {
    const QuietOutput quiet;
    DropSpareDeviate();
    return Written(points, [&](uint16_t* buffer) {
        EXPECT_EQ(ITCCalcStimulus(type, buffer, &record), result);
    });
}

// Three points that would lie before the buffer are passed over, the rest moves up.
template <class Record>
void ExpectShift(uint32_t type, Record record) {
    Samples expected = Calculated(type, record, 10);
    std::rotate(expected.begin(), expected.begin() + 3, expected.end());
    std::fill(expected.end() - 3, expected.end(), static_cast<uint16_t>(record.mean));
    record.prePoints = -3;
    record.tailPoints = 3;
    EXPECT_EQ(Calculated(type, record, 10), expected) << "type " << type;
}

TEST_F(NoiseTest, PointsBeforeTheBufferArePassedOver) {
    ExpectShift(2, ITCNoiseParameters{2500, 7, 77, 10, 0, 0, 0, -500, 1});
    for (const int32_t segment : {1, 2, 5})
        ExpectShift(9, ITCSegmentedNoiseParameters{700, 5, 77, 10, 0, 0, segment, {}});
}

TEST_F(NoiseTest, ADrawOfExactlyOneHalfGivesTheNegativeLevel) {
    int32_t word = -9687;
    for (int n = 0; n < 117; ++n) ran2(&word);
    ASSERT_EQ(ran2(&word), 0.5F);
    const ITCBinaryNoiseParameters record{1000, 0, 9687, 117, 0, 0, 1, {}};
    EXPECT_EQ(Calculated(10, record, 117).back(), static_cast<uint16_t>(-1000));
}

// Nothing divided by nothing is no number. Totals wrap: twice -2^31 and 7 are 7.
TEST_F(NoiseTest, NoPointsNoSegmentsNoCutoffOrNoWindow) {
    const Samples held(7, 9), zeros = {9, 0, 0, 0, 9};
    EXPECT_EQ(Calculated(2, ITCNoiseParameters{2000, 9, 1, 0, 4, 3, 0, 50, 1}, 7), held);
    EXPECT_EQ(Calculated(2, ITCNoiseParameters{1, 9, 1, INT32_MIN, 7, INT32_MIN, 0, 1, 1}, 7),
              held);
    EXPECT_EQ(Calculated(9, ITCSegmentedNoiseParameters{700, 9, 1, 5, 1, 1, -2, {}}, 7), held);
    EXPECT_EQ(Calculated(2, ITCNoiseParameters{2000, 9, 1, 3, 1, 1, 0, 0, 2}, 5), zeros);
    filehdr->version = 4;
    EXPECT_EQ(Calculated(2, ITCNoiseParameters{1800, 9, 1, 3, 1, 1, 0, 60, 1}, 5), zeros);
}

TEST_F(NoiseTest, AWindowThatDoesNotFitIsRefused) {
    filehdr->version = 4;
    for (const auto& [tail, pre, smoothing] :
         {std::array{9, 1, 4}, std::array{1, 9, 4}, std::array{9, -3, 1}, std::array{-1, 9, 1}}) {
        const ITCNoiseParameters record{100, 5, 1, 10, tail, pre, smoothing, 60, 1};
        EXPECT_EQ(Calculated(2, record, 24, ITC_STIMULUS_ERROR), Samples(24, kUntouched));
    }
}

}  // namespace
