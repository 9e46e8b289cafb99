// The samples that a calculation leaves in a buffer, with margins that it may not touch.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace corvantis_test {

using Samples = std::vector<uint16_t>;

constexpr uint16_t kUntouched = 0x5AA5;

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
