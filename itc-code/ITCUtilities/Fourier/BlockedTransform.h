// The Fourier transform for 64 points and more, ordered for vectors and caches.
#pragma once

#include <cstdint>

namespace corvantis {

inline constexpr uint32_t kSmallestBlockedTransform = 64;

// As the plain form, bit for bit; `points` is a power of two of at least the smallest. Values stand
// at 2k and 2k + 1. Nothing is allocated.
void TransformInBlocks(bool forward, uint32_t points, float* values);

}  // namespace corvantis
