// States of the long-period generator multiplied by constants, which make shifts of its divisions.
//
// A step divides the state x by q. With f = floor(2^47 / q) + 1 the quotient k is f x >> 47, and
// the step x' = a x - k s, plus the modulus m where that is negative, is P' = a P - k (f s), plus
// f m, for P = f x: from P to P' there are a shift, a multiplication and a difference to wait for.
// x < 2^31 and f < 2^32, so P and P' stay below 2^63 in magnitude.
//
// An output y = d, or d + n where the difference d of two states is below 1, is kept as
// u = c d modulo 2^64, c = floor(2^64 / n): the addition of n is nearly one of 2^64, that is, of
// nothing. Exactly, u = c y + r where n was added and c y elsewhere, r = 2^64 - c n = 0.15 c <
// 2^31. The table's index is u >> 54 instead of y / t. In units of 2^-54, the quotient u / 2^54 is
// larger than y / t by at most u (1 - 2^54 / (c t)) + r < u / 2^22 + 2^31. So the whole parts
// differ only where u's lower 54 bits are less than that, which CouldMislead tells.
//
// From u's upper half, h, y comes back as floor((h + 1) n / 2^32 + 1/4): h + 1 exceeds c y / 2^32
// by at most 1 + r / 2^32, so the product lies between y - 0.15 and y + 0.65.
#pragma once

#include <bit>
#include <cstdint>

#include "ITCUtilities/LongPeriodGenerator.h"

namespace corvantis {

inline constexpr int kIndexShift = 54;
inline constexpr uint64_t kFraction = (uint64_t{1} << kIndexShift) - 1;
static_assert(kOutputUnit * kTableDivisor - (kOutputUnit * kTableDivisor >> 22) <=
              uint64_t{1} << kIndexShift);

// From here on outputs are 2^31 or more, that is, negative: only a single draw goes on from those.
inline constexpr uint64_t kNegativeOutput = kOutputUnit << 31;

// The sign bit is set for outputs whose index takes a division, and for negative ones.
inline uint64_t CouldMislead(uint64_t output) {
    const uint64_t above = (output & kFraction) - (output >> 22) - (uint64_t{1} << 31);
    return above | (output & (kNegativeOutput - 1 - output));
}

// A number from 0 to n from the upper half of its product with kOutputUnit.
inline uint32_t FromUpperHalf(uint64_t product) {
    constexpr uint64_t kRounded = kLargestOutput + (uint64_t{1} << 30);
    return static_cast<uint32_t>(((product >> 32) * kLargestOutput + kRounded) >> 32);
}

constexpr uint64_t InverseModulo64Bits(uint64_t odd) {
    uint64_t inverse = odd;
    for (int correctBits = 3; correctBits < 64; correctBits *= 2) inverse *= 2 - odd * inverse;
    return inverse;
}

template <const Congruential& Generator>
struct Scaled {
    static constexpr auto kMultiplier = static_cast<uint64_t>(Generator.multiplier);
    static constexpr uint64_t kFactor = Reciprocal<Generator.quotient, kQuotientShift>();
    static constexpr uint64_t kStep = kFactor * Generator.FactoredModulus();
    static constexpr int kEvenBits = std::countr_zero(kFactor);
    static constexpr uint64_t kInverse = InverseModulo64Bits(kFactor >> kEvenBits);
    // From here on states are 2^31 or more, that is, negative.
    static constexpr uint64_t kNegative = kFactor << 31;

    static uint64_t From(int32_t state) { return static_cast<uint64_t>(state) * kFactor; }
    static int32_t State(uint64_t scaled) {
        return static_cast<int32_t>((scaled >> kEvenBits) * kInverse);
    }
    // The state times kOutputUnit.
    static uint64_t InOutputUnits(uint64_t scaled) {
        return (scaled >> kEvenBits) * (kInverse * kOutputUnit);
    }
    // The sign chooses by a mask, as for single steps.
    static uint64_t Next(uint64_t scaled) {
        const uint64_t next = kMultiplier * scaled - (scaled >> kQuotientShift) * kStep;
        const auto mask = static_cast<uint64_t>(static_cast<int64_t>(next) >> 63);
        return next + (Generator.modulus * kFactor & mask);
    }
};

}  // namespace corvantis
