// Doubles taken apart into whole numbers, and fractions rounded to doubles: to nearest, ties to
// even, down to the smallest denormal.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <optional>

#include "ITCUtilities/Maths/Fraction.h"

namespace corvantis {

// A finite double is +-significand * 2^exponent.
struct DoubleParts {
    bool negative;
    int32_t exponent;
    uint64_t significand;
};

constexpr DoubleParts PartsOf(double value) {
    const uint64_t bits = std::bit_cast<uint64_t>(value);
    const uint64_t stored = bits & 0xFFFFFFFFFFFFF;
    const auto exponent = static_cast<int32_t>((bits >> 52) & 0x7FF);
    if (exponent == 0) return {bits >> 63 != 0, -1074, stored};
    return {bits >> 63 != 0, exponent - 1075, stored | 0x10000000000000};
}

// Rounds top * 2^(exponent - 64), the first bit of `top` being set; `more` says that the number is
// larger by less than the last bit of `top`.
constexpr double RoundWord(uint64_t top, bool more, int64_t exponent) {
    if (exponent > 1024) return std::numeric_limits<double>::infinity();
    if (exponent < -1074) return 0.0;
    const bool normal = exponent >= -1021;
    const auto kept = normal ? 53 : static_cast<int32_t>(exponent + 1074);
    uint64_t significand = kept == 0 ? 0 : top >> (64 - kept);
    const uint64_t rest = kept == 0 ? top : top << kept;
    constexpr uint64_t kHalf = uint64_t{1} << 63;
    const bool up = rest > kHalf || (rest == kHalf && (more || significand % 2 != 0));
    significand += up ? 1 : 0;
    const uint64_t below = normal ? static_cast<uint64_t>(exponent + 1021) << 52 : 0;
    return std::bit_cast<double>(below + significand);
}

// fraction * 2^exponent.
template <size_t N>
constexpr double Rounded(const Fraction<N>& fraction, int64_t exponent) {
    const size_t zeros = LeadingZeros(fraction);
    if (zeros == 64 * N) return 0.0;
    const Fraction<N> shifted = ShiftedLeft(fraction, zeros);
    bool more = false;
    for (size_t i = 1; i < N; ++i) more = more || shifted[i] != 0;
    return RoundWord(shifted[0], more, exponent - static_cast<int64_t>(zeros));
}

// The same for a fraction that is off by no more than so many units of its last word: nothing, if
// that leaves more than one result.
template <size_t N>
constexpr std::optional<double> RoundedIfCertain(const Fraction<N>& fraction, int64_t exponent,
                                                 uint64_t units) {
    Fraction<N> low = fraction, high = fraction, bound{};
    bound[N - 1] = units;
    if (SubtractFrom(low, bound)) low.fill(0);
    if (AddTo(high, bound)) high.fill(UINT64_MAX);
    const double result = Rounded(low, exponent);
    if (result != Rounded(high, exponent)) return {};
    return result;
}

// Two words decide nearly always, so their series end early: what is left out is less than 2^-100,
// elsewhere less than a unit of the last word.
template <size_t N>
inline constexpr size_t kSeriesBits = N == 2 ? 100 : 64 * N;
// A bound on 2^28 units, or 1, and the fewer than 63 that the roundings of either series make.
template <size_t N>
inline constexpr uint64_t kSeriesUnits = N == 2 ? uint64_t{1} << 29 : 64;

constexpr double WithSign(double magnitude, bool negative) {
    return negative ? -magnitude : magnitude;
}

}  // namespace corvantis
