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

constexpr double kTwoPi = 6.283184;
constexpr float kMark = -123.5F;

using Points = std::vector<std::complex<double>>;

std::vector<float> Random(uint32_t points) {
    std::mt19937 source(points);
    std::vector<float> data(2 * points + 1, kMark);
    for (size_t k = 1; k < data.size(); ++k)
        data[k] = static_cast<float>(source() % 20001) / 100.0F - 100.0F;
    return data;
}

Points PointsOf(const std::vector<float>& data) {
    Points points;
    for (size_t k = 1; k + 1 < data.size(); k += 2) points.emplace_back(data[k], data[k + 1]);
    return points;
}

// Angle by which point n enters bin k. Bit b of n is taken up by the transforms of length
// points / 2^b, which turn by the library's 2 pi up to half a turn and by an exact sign beyond.
double Angle(uint32_t n, uint32_t k, uint32_t points, int32_t isign) {
    double angle = 0;
    for (uint32_t length = points; length > 1; length /= 2, n /= 2) {
        if (n % 2 == 0) continue;
        const uint32_t half = length / 2;
        angle += kTwoPi / isign * (k % half) / length;
        angle += k % length >= half ? std::numbers::pi : 0.0;
    }
    return angle;
}

Points DirectTransform(const Points& in, int32_t isign) {
    const auto points = static_cast<uint32_t>(in.size());
    Points out(points);
    for (uint32_t k = 0; k < points; ++k) {
        for (uint32_t n = 0; n < points; ++n)
            out[k] += in[n] * std::polar(1.0, Angle(n, k, points, isign));
        if (isign == -1) out[k] /= points;
    }
    return out;
}

double LargestDifference(const Points& left, const Points& right) {
    double largest = 0;
    for (size_t k = 0; k < left.size(); ++k)
        largest = std::max(largest, std::abs(left[k] - right[k]));
    return largest;
}

double Norm(const Points& points) {
    double sum = 0;
    for (const auto& point : points) sum += std::norm(point);
    return std::sqrt(sum);
}

TEST(FourierTest, EqualsTheDirectSum) {
    for (const int32_t isign : {1, -1, 2, -3}) {
        for (uint32_t points = 1; points <= 256; points *= 2) {
            std::vector<float> data = Random(points);
            const Points in = PointsOf(data);
            ITCfft(isign, points, data.data());
            const double scale = Norm(in) / (isign == -1 ? points : 1);
            EXPECT_LE(LargestDifference(PointsOf(data), DirectTransform(in, isign)), 3e-7 * scale)
                << points << " points, direction " << isign;
            EXPECT_EQ(data[0], kMark);
        }
    }
}

TEST(FourierTest, DirectSumAgreesWithTheTextbookTransform) {
    const Points in = PointsOf(Random(256));
    Points textbook(in.size());
    for (size_t k = 0; k < in.size(); ++k)
        for (size_t n = 0; n < in.size(); ++n)
            textbook[k] += in[n] * std::polar(1.0, 2 * std::numbers::pi / 256 *
                                                       static_cast<double>(n * k % 256));
    const double difference = LargestDifference(DirectTransform(in, 1), textbook);
    EXPECT_LE(difference, 1e-5 * Norm(in));
    EXPECT_GE(difference, 1e-6 * Norm(in)) << "2 pi is short by 1.3e-6";
}

TEST(FourierTest, ImpulseAndConstantAreExact) {
    for (const uint32_t points : {1U, 2U, 8U, 1024U}) {
        std::vector<float> impulse(2 * points + 1);
        impulse[1] = 1;
        ITCfft(1, points, impulse.data());
        for (size_t k = 1; k < impulse.size(); ++k) ASSERT_EQ(impulse[k], k % 2 ? 1.0F : 0.0F);

        std::vector<float> constant(2 * points + 1);
        for (size_t k = 1; k < constant.size(); k += 2) constant[k] = 3;
        const std::vector<float> original = constant;
        ITCfft(1, points, constant.data());
        for (size_t k = 1; k < constant.size(); ++k)
            ASSERT_EQ(constant[k], k == 1 ? 3.0F * static_cast<float>(points) : 0.0F);
        ITCfft(-1, points, constant.data());
        EXPECT_EQ(constant, original);
    }
}

TEST(FourierTest, InverseUndoesForward) {
    for (const uint32_t points : {4U, 64U, 4096U, 65536U}) {
        std::vector<float> data = Random(points);
        const Points original = PointsOf(data);
        ITCfft(1, points, data.data());
        ITCfft(-1, points, data.data());
        EXPECT_LE(LargestDifference(PointsOf(data), original), 0.002) << points << " points";
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

TEST(FourierTest, ExtremeDirectionsStayInsideTheData) {
    for (const int32_t isign : {0, INT32_MAX, INT32_MIN}) {
        std::vector<float> data = Random(16);
        ITCfft(isign, 16, data.data());
        EXPECT_EQ(data[0], kMark);
    }
}

}  // namespace
