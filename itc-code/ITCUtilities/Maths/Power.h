// Powers with a whole exponent, with N words. Method:
//
// A base is m * 2^e with m from 1/2 to below 1. Squares of it and products of these make m^n, each
// brought back to that range; where n is negative, the reciprocal comes last.
//
// Error: cutting a product off and bringing it back, which doubles that, is less than 4 parts in
// 2^(64 N) of it. The power n is made of n factors with fewer than 2 n such cuts behind them,
// each of which counts once in it: less than 8 n, and of a negative n the reciprocal's own 4 parts:
// |n| * 8 + 4 units at most, doubled for the curvature that remains, since n is at most 2^31.
//
// Nothing is cut off as long as the bits of the whole power fit, and then ties are known. A power
// that does not fit in two words has more than 64 bits from its first to its last that is set and
// lies on no boundary of rounding, nor does any reciprocal but that of a power of two: so some
// number of words decides.
#pragma once

#include "ITCUtilities/Maths/Rounding.h"

namespace corvantis {

// fraction * 2^exponent, the fraction being 1/2 or more.
template <size_t N>
struct ScaledFraction {
    Fraction<N> fraction;
    int64_t exponent;
};

template <size_t N>
ScaledFraction<N> Normalised(const Fraction<N>& fraction, int64_t exponent) {
    const size_t zeros = LeadingZeros(fraction);
    return {ShiftedLeft(fraction, zeros), exponent - static_cast<int64_t>(zeros)};
}

template <size_t N>
ScaledFraction<N> ScaledProduct(const ScaledFraction<N>& a, const ScaledFraction<N>& b) {
    return Normalised(Product(a.fraction, b.fraction), a.exponent + b.exponent);
}

// A bit of the quotient at a time.
template <size_t N>
ScaledFraction<N> Reciprocal(const ScaledFraction<N>& a) {
    Fraction<N> rest{uint64_t{1} << 63}, quotient{};
    // Half by the fraction lies between 1/2 and 1.
    if (rest == a.fraction) return {rest, 2 - a.exponent};
    for (size_t bit = 0; bit < 64 * N; ++bit) {
        const bool carry = rest[0] >> 63 != 0;
        rest = ShiftedLeft(rest, 1);
        if (carry || rest >= a.fraction) {
            SubtractFrom(rest, a.fraction);
            quotient[bit / 64] |= uint64_t{1} << (63 - bit % 64);
        }
    }
    return {quotient, 1 - a.exponent};
}

// Of a finite number above 0; nothing where N words cannot tell how the power rounds.
template <size_t N>
std::optional<double> PowerInWords(double base, int32_t exponent, uint64_t unitsPerFactor = 16) {
    const DoubleParts parts = PartsOf(base);
    const uint64_t factors = exponent < 0 ? uint64_t{0} - static_cast<uint64_t>(exponent)
                                          : static_cast<uint64_t>(exponent);
    ScaledFraction<N> square = Normalised(Fraction<N>{parts.significand}, parts.exponent + 64);
    ScaledFraction<N> power = {{uint64_t{1} << 63}, 1};
    for (uint64_t left = factors; left != 0; left /= 2) {
        if (left % 2 != 0) power = ScaledProduct(power, square);
        if (left > 1) square = ScaledProduct(square, square);
    }
    const uint64_t odd = parts.significand >> std::countr_zero(parts.significand);
    const auto bits = static_cast<uint64_t>(64 - std::countl_zero(odd));
    const bool exact = bits == 1 || (exponent > 0 && bits * factors <= 64 * N);
    if (exponent < 0) power = Reciprocal(power);
    return RoundedIfCertain(power.fraction, power.exponent,
                            exact ? 0 : unitsPerFactor * (factors + 1));
}

}  // namespace corvantis
