// a * b + c rounded once. Where the compiler knows an instruction for it, that is one instruction;
// elsewhere these are exact, too:
//
// In double precision whole numbers do it: the product has 106 bits at most, and product and
// addend are added in four words. Where one lies so far below the other that it is cut off, its
// last bit says so, far below any boundary of rounding.
//
// In single precision the product is exact in double precision. The sum is rounded there as if to
// odd: where it is not exact and its last bit is 0, the neighbour towards the exact sum is taken.
// With 53 bits, at least two more than twice 24, rounding that again gives what one rounding gives
// (S. Boldo, G. Melquiond).
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#include "ITCUtilities/FunctionClones.h"

namespace corvantis {

double FusedInWords(double a, double b, double c);
double FusedByInstruction(double a, double b, double c);

inline double FusedSum(double a, double b, double c) {
    return HasFusedInstruction() ? FusedByInstruction(a, b, c) : FusedInWords(a, b, c);
}

CORVANTIS_INLINE float FusedByRoundingToOdd(float a, float b, float c) {
    const double product = double{a} * b;
    const double sum = product + c;
    // The sum's error, exactly (D. Knuth).
    const double second = sum - product;
    const double error = (product - (sum - second)) + (c - second);
    const auto bits = std::bit_cast<int64_t>(sum);
    const bool odd = bits % 2 != 0;
    const int64_t step = (error > 0.0) == (sum > 0.0) ? 1 : -1;
    const bool inexact = error < 0.0 || error > 0.0;
    return static_cast<float>(std::bit_cast<double>(bits + (inexact && !odd ? step : 0)));
}

// For loops in all versions of FunctionClones.h: `instruction` where HasFusedInstruction() holds,
// since it is not asked for each value.
template <bool instruction>
CORVANTIS_INLINE float FusedSum(float a, float b, float c) {
    if constexpr (instruction) return __builtin_fmaf(a, b, c);
    return FusedByRoundingToOdd(a, b, c);
}

}  // namespace corvantis
