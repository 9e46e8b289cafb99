// Products and quotients of 64-bit words in full, which not every compiler has.
#pragma once

#include <bit>
#include <cstdint>

namespace corvantis {

struct WordPair {
    uint64_t high;
    uint64_t low;
};

#if defined(__SIZEOF_INT128__)

__extension__ using DoubleWord = unsigned __int128;

constexpr WordPair MultiplyWords(uint64_t a, uint64_t b) {
    const DoubleWord product = static_cast<DoubleWord>(a) * b;
    return {static_cast<uint64_t>(product >> 64), static_cast<uint64_t>(product)};
}

// The quotient of a pair whose high word is less than the divisor, and in that word the remainder.
constexpr uint64_t DivideWords(uint64_t& high, uint64_t low, uint64_t divisor) {
    const DoubleWord dividend = (static_cast<DoubleWord>(high) << 64) | low;
    high = static_cast<uint64_t>(dividend % divisor);
    return static_cast<uint64_t>(dividend / divisor);
}

#else

constexpr WordPair MultiplyWords(uint64_t a, uint64_t b) {
    const uint64_t a1 = a >> 32, a0 = a & 0xFFFFFFFF;
    const uint64_t b1 = b >> 32, b0 = b & 0xFFFFFFFF;
    const uint64_t low = a0 * b0, first = a1 * b0, second = a0 * b1;
    const uint64_t middle = (low >> 32) + (first & 0xFFFFFFFF) + (second & 0xFFFFFFFF);
    return {a1 * b1 + (first >> 32) + (second >> 32) + (middle >> 32),
            (middle << 32) | (low & 0xFFFFFFFF)};
}

constexpr uint64_t DivideWords(uint64_t& high, uint64_t low, uint64_t divisor) {
    uint64_t quotient = 0;
    for (int bit = 63; bit >= 0; --bit) {
        const bool carry = (high >> 63) != 0;
        high = (high << 1) | ((low >> bit) & 1);
        const bool fits = carry || high >= divisor;
        high -= fits ? divisor : 0;
        quotient = (quotient << 1) | (fits ? 1 : 0);
    }
    return quotient;
}

#endif

}  // namespace corvantis
