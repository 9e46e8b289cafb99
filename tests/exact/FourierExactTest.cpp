// The Fourier transform beside the published loops.
#include "SameBits.h"

namespace corvantis_test {
namespace {

std::vector<float> RandomValues(uint32_t points, float scale) {
    std::mt19937 source(points);
    std::vector<float> values;
    while (values.size() < 2 * size_t{points} + 1)
        values.push_back(scale * (static_cast<float>(source() >> 8) - 8388608.0F));
    return values;
}

void ExpectTransform(int32_t isign, uint32_t points, std::vector<float> values) {
    std::vector<float> expected = values;
    definition::Fourier(isign, points, expected.data());
    ITCfft(isign, points, values.data());
    ExpectSame(values, expected, points, isign);
}

TEST_F(ExactTest, TransformsOfEveryLengthAndDirection) {
    for (uint32_t points = 1; points <= 1u << 21; points *= 2) {
        ExpectTransform(1, points, RandomValues(points, 1e-3F));
        ExpectTransform(-1, points, RandomValues(points, 0.5F));
    }
    // Numbers too small and too large, zeros of both signs, infinities and NaNs.
    for (const uint32_t points : {8u, 64u, 4096u, 8192u}) {
        for (const int32_t isign : {1, -1, 2, -3, 0}) {
            for (const float scale : {1e-45F, 3e-42F, 1e31F})
                ExpectTransform(isign, points, RandomValues(points, scale));
            for (const float special : {INFINITY, -INFINITY, NAN, 0.0F}) {
                std::vector<float> values(2 * points + 1, -0.0F);
                values[points - 1] = special;
                ExpectTransform(isign, points, values);
            }
        }
    }
    ExpectDigest(0xe5bcbdd2a32bb268);
}

TEST_F(ExactTest, TransformsOfOtherLengthsLeaveTheDataAlone) {
    for (const uint32_t points : {0U, 3U, 5U, 6U, 12U, 100U, 255U, 0xFFFFFFFFU}) {
        for (const int32_t isign : {1, -1}) {
            const std::vector<float> original = RandomValues(points % 256, 1);
            std::vector<float> data = original;
            ITCfft(isign, points, data.data());
            EXPECT_EQ(data, original) << points << " points, direction " << isign;
        }
    }
}

}  // namespace
}  // namespace corvantis_test
