// Signed 32-bit arithmetic that wraps, as the home platform's registers do.
#pragma once

#include <cstdint>

namespace corvantis {

constexpr int32_t WrapToInt32(uint64_t value) {
    return static_cast<int32_t>(static_cast<uint32_t>(value));
}
constexpr int32_t WrappingAdd(int32_t a, int32_t b) {
    return WrapToInt32(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
constexpr int32_t WrappingSubtract(int32_t a, int32_t b) {
    return WrapToInt32(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}
constexpr int32_t WrappingMultiply(int32_t a, int32_t b) {
    return WrapToInt32(static_cast<uint64_t>(static_cast<uint32_t>(a)) * static_cast<uint32_t>(b));
}
constexpr int32_t WrappingNegate(int32_t a) { return WrappingSubtract(0, a); }

}  // namespace corvantis
