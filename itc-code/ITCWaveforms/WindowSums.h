// Sums over a moving window for many points at a time.
#pragma once

#include <cstdint>

namespace corvantis {

inline constexpr int64_t kWindowBatch = 128;

// Sum i is that of values i to i + window - 1, added one by one in this order, from 0. A running
// sum would be faster still, but rounds differently.
void SumWindows(float* sums, const float* values, int64_t window);

}  // namespace corvantis
