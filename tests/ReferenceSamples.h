// Stored samples, put together a second time from plain numbers, as reference for the tests.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace corvantis_test {

using Samples = std::vector<uint16_t>;

constexpr uint16_t kUntouched = 0x5AA5;

// The 16 bits that are stored for a real value.
inline uint16_t Stored(double value) {
    if (std::isnan(value)) return 0;
    const double bounded = std::clamp(std::trunc(value), -2147483648.0, 2147483647.0);
    return static_cast<uint16_t>(static_cast<int64_t>(bounded));
}

// A shape between its two runs at the holding level.
inline Samples Framed(int64_t level, int32_t prePoints, const Samples& shape, int32_t tailPoints) {
    const auto held = static_cast<uint16_t>(level);
    Samples all(static_cast<size_t>(std::max(prePoints, 0)), held);
    all.insert(all.end(), shape.begin(), shape.end());
    all.insert(all.end(), static_cast<size_t>(std::max(tailPoints, 0)), held);
    return all;
}

// The points that a calculation leaves in a buffer of that size; fails if it writes beside them.
template <class Calculate>
Samples Written(size_t points, Calculate calculate) {
    constexpr size_t kMargin = 16;
    Samples whole(points + 2 * kMargin, kUntouched);
    calculate(whole.data() + kMargin);
    const auto first = whole.begin() + kMargin;
    const auto last = whole.end() - kMargin;
    EXPECT_EQ(std::count(whole.begin(), first, kUntouched), kMargin) << "wrote before the buffer";
    EXPECT_EQ(std::count(last, whole.end(), kUntouched), kMargin) << "wrote behind the buffer";
    return Samples(first, last);
}

}  // namespace corvantis_test
