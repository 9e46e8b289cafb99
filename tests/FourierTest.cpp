// The Fourier transform against a direct sum over all pairs of points.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

#include "Corvantis.h"

namespace {

constexpr float kMark = -123.5F;

using Points = std::vector<std::complex<double>>;

std::vector<float> Random(uint32_t points) {
    std::mt19937 source(points);
    std::vector<float> data(2 * size_t{points} + 1, kMark);
    for (size_t k = 1; k < data.size(); ++k)
        data[k] = static_cast<float>(source() % 20001) / 100.0F - 100.0F;
    return data;
}

Points PointsOf(const std::vector<float>& data) {
    Points points;
    for (size_t k = 1; k + 1 < data.size(); k += 2) points.emplace_back(data[k], data[k + 1]);
    return points;
}

Points DirectSum(const Points& in) {
    Points out(in.size());
    const double angle = 2 * std::numbers::pi / static_cast<double>(in.size());
    for (size_t k = 0; k < in.size(); ++k)
        for (size_t n = 0; n < in.size(); ++n)
            out[k] += in[n] * std::polar(1.0, angle * static_cast<double>(n * k % in.size()));
    return out;
}

double LargestDifference(const Points& left, const Points& right) {
    double largest = 0;
    for (size_t k = 0; k < left.size(); ++k)
        largest = std::max(largest, std::abs(left[k] - right[k]));
    return largest;
}

// The library's 2 pi is short by 1.3e-6.
TEST(FourierTest, EqualsTheDirectSum) {
    for (uint32_t points = 1; points <= 512; points *= 2) {
        std::vector<float> data = Random(points);
        const Points in = PointsOf(data);
        const double norm = 60 * std::sqrt(2.0 * points);
        ITCfft(1, points, data.data());
        const double difference = LargestDifference(PointsOf(data), DirectSum(in));
        EXPECT_LE(difference, 1e-5 * norm) << points;
        EXPECT_TRUE(points < 256 || difference >= 1e-6 * norm) << "2 pi is not the library's";
        ITCfft(-1, points, data.data());
        EXPECT_LE(LargestDifference(PointsOf(data), in), 1e-5 * norm) << points;
        EXPECT_EQ(data[0], kMark);
    }
}

TEST(FourierTest, OtherLengthsLeaveTheDataAlone) {
    for (const uint32_t points : {0U, 3U, 5U, 6U, 12U, 100U, 255U}) {
        for (const int32_t isign : {1, -1}) {
            std::vector<float> data = Random(points);
            const std::vector<float> original = data;
            ITCfft(isign, points, data.data());
            EXPECT_EQ(data, original) << points << " points, direction " << isign;
        }
    }
    float none = kMark;
    ITCfft(-1, 0xFFFFFFFFU, &none);
    EXPECT_EQ(none, kMark);
}

}  // namespace
