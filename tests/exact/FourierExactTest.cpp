// The Fourier transform against the published loops.
#include <limits>

#include "SameBits.h"
#include "reference/Definitions.h"

namespace corvantis_test {
namespace {

constexpr float kMark = -123.5F;

std::vector<float> RandomValues(uint32_t points, float scale, unsigned seed) {
    std::mt19937 source(seed);
    std::vector<float> values(2 * size_t{points} + 1, kMark);
    for (size_t k = 1; k < values.size(); ++k) {
        values[k] = scale * (static_cast<float>(source() >> 8) - 8388608.0F);
    }
    return values;
}

void ExpectSameTransform(int32_t isign, uint32_t points, std::vector<float> values) {
    std::vector<float> expected = values;
    definition::Fourier(isign, points, expected.data());
    ITCfft(isign, points, values.data());
    EXPECT_EQ(CountDifferences(values, expected), 0u) << points << " points, direction " << isign;
    EXPECT_EQ(values[0], kMark);
}

TEST(FourierExactTest, EveryLengthAndDirection) {
    for (uint32_t points = 1; points <= 1u << 18; points *= 2) {
        for (const int32_t isign : {1, -1}) {
            ExpectSameTransform(isign, points, RandomValues(points, 1e-3F, points));
        }
    }
    for (const int32_t isign : {2, -3, 0}) {
        for (const uint32_t points : {32u, 64u, 4096u, 8192u}) {
            ExpectSameTransform(isign, points, RandomValues(points, 1.0F, points));
        }
    }
}

TEST(FourierExactTest, AMillionPoints) {
    ExpectSameTransform(1, 1u << 20, RandomValues(1u << 20, 0.5F, 3));
    ExpectSameTransform(-1, 1u << 21, RandomValues(1u << 21, 0.5F, 4));
}

TEST(FourierExactTest, SmallestAndLargestNumbers) {
    for (const float scale : {1e-45F, 1e-44F, 3e-42F, 1e-38F, 1e31F}) {
        for (const uint32_t points : {16u, 128u, 2048u, 16384u}) {
            ExpectSameTransform(1, points, RandomValues(points, scale, points));
            ExpectSameTransform(-1, points, RandomValues(points, scale, points));
        }
    }
}

TEST(FourierExactTest, NaNsInfinitiesAndZerosOfBothSigns) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float special[] = {infinity, -infinity, std::numeric_limits<float>::quiet_NaN(), 0.0F,
                             -0.0F};
    for (const float value : special) {
        for (const uint32_t points : {8u, 64u, 512u, 4096u, 8192u}) {
            for (const size_t place : {size_t{1}, size_t{2}, size_t{points}, size_t{2} * points}) {
                std::vector<float> values = RandomValues(points, 1.0F, points);
                values[place] = value;
                ExpectSameTransform(1, points, values);
                std::vector<float> uniform(2 * size_t{points} + 1, -0.0F);
                uniform[0] = kMark;
                uniform[place] = value;
                ExpectSameTransform(-1, points, uniform);
            }
        }
    }
}

}  // namespace
}  // namespace corvantis_test
