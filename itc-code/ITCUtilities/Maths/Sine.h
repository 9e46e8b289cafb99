// The sine with N words. Method:
//
// A double is m * 2^e with m < 2^53, so m times the bits of 1 / 2 pi from place e on is, but for
// whole turns, the angle in turns. The nearest quarter of a turn is taken off; what is left, up to
// an eighth, times 2 pi is r <= pi / 4, and with z = r^2 the Taylor series are
//   sin r = r - r z (1/3! - z (1/5! - ...)),    cos r = 1 - z (1/2! - z (1/4! - ...)).
//
// Error, in units of the last word: the bits of 1 / 2 pi left out make 2^53 / 2^64 and cutting the
// angle to N words 1; times 8 * pi / 4, with 3 more for that product and its cut constant, r is off
// by 9.4. Then z is off by 2 * 0.786 * 9.4 + 1 < 15.8. A place of the series adds 3 for its
// coefficient and product and 15.8 / 2 for z, and takes over 0.617 of the error behind it: less
// than 10.9 / 0.383 < 29 for the sum. Its product with z is off by 0.617 * 29 + 7.9 + 1 < 27: that
// is all for the cosine but 1 for its complement. For the sine 1 / 6 stands for 1 / 2, which leaves
// 15 of 29 and 13 of 27; it takes over 9.4 * 1.11 from r and 0.786 * 13 + 1 from the sum, less than
// 22. What the series leave out comes on top (Rounding.h).
#pragma once

#include <utility>

#include "ITCUtilities/Maths/Constants.h"
#include "ITCUtilities/Maths/Rounding.h"

namespace corvantis {

// An angle as quarters of a turn and what is left, in radians.
template <size_t N>
struct ReducedAngle {
    uint64_t quarters;
    bool negative;
    Fraction<N> rest;
};

// Of a magnitude of 2^-27 or more.
template <size_t N>
ReducedAngle<N> ReduceAngle(const DoubleParts& x) {
    const int32_t place = x.exponent + 64 * kZerosOfInverseTurn;
    const auto word = static_cast<size_t>(place / 64), bits = static_cast<size_t>(place % 64);
    Fraction<N + 1> window;
    for (size_t i = 0; i <= N; ++i) {
        const uint64_t next = kInverseTurn[word + i + 1] >> 1 >> (63 - bits);
        window[i] = (kInverseTurn[word + i] << bits) | next;
    }
    Fraction<N> turn = Leading<N>(TimesWhole(window, x.significand));
    Fraction<N> eighth{};
    eighth[0] = uint64_t{1} << 61;
    AddTo(turn, eighth);
    const uint64_t quarters = turn[0] >> 62;
    turn[0] &= UINT64_MAX >> 2;
    const bool negative = turn[0] < eighth[0];
    if (negative) std::swap(turn, eighth);
    SubtractFrom(turn, eighth);
    const Fraction<N> half = Product(ShiftedLeft(turn, 2), Leading<N>(kQuarterPi));
    return {quarters, negative, ShiftedLeft(half, 1)};
}

// The last k for which (pi / 4)^k / k! counts.
template <size_t N>
constexpr size_t LastPower() {
    constexpr double kSmallest = RoundWord(uint64_t{1} << 63, false, 1 - int64_t{kSeriesBits<N>});
    size_t k = 1;
    double term = 0.7854;
    while (term >= kSmallest) term *= 0.7854 / static_cast<double>(++k);
    return k - 1;
}

// 1 / k!, of which those of 0 and 1 are not used.
template <size_t N>
constexpr auto MakeInverseFactorials() {
    std::array<Fraction<N>, LastPower<N>() + 1> inverses{};
    Fraction<N> inverse{uint64_t{1} << 63};
    for (size_t k = 2; k < inverses.size(); ++k) {
        inverses[k] = inverse;
        inverse = DividedByWhole(inverse, k + 1);
    }
    return inverses;
}
template <size_t N>
inline constexpr auto kInverseFactorials = MakeInverseFactorials<N>();

// z (1/k! - z (1/(k + 2)! - ...)).
template <size_t N>
Fraction<N> SumOfSeries(const Fraction<N>& z, size_t k) {
    constexpr size_t kLast = LastPower<N>();
    size_t j = kLast - (kLast - k) % 2;
    Fraction<N> product = Product(z, kInverseFactorials<N>[j]);
    while (j > k) {
        j -= 2;
        Fraction<N> sum = kInverseFactorials<N>[j];
        SubtractFrom(sum, product);
        product = Product(z, sum);
    }
    return product;
}

template <size_t N>
Fraction<N> SineOfRest(const Fraction<N>& r) {
    Fraction<N> sine = r;
    SubtractFrom(sine, Product(r, SumOfSeries(Product(r, r), 3)));
    return sine;
}

template <size_t N>
Fraction<N> CosineOfRest(const Fraction<N>& r) {
    Fraction<N> cosine = SumOfSeries(Product(r, r), 2);
    for (uint64_t& word : cosine) word = ~word;
    return cosine;
}

// Of a magnitude of 2^-27 or more; nothing where N words cannot tell how the sine rounds.
template <size_t N>
std::optional<double> SineInWords(double x, uint64_t units = kSeriesUnits<N>) {
    const DoubleParts parts = PartsOf(x);
    const ReducedAngle<N> angle = ReduceAngle<N>(parts);
    const bool isCosine = angle.quarters % 2 != 0;
    const Fraction<N> value = isCosine ? CosineOfRest(angle.rest) : SineOfRest(angle.rest);
    bool negative = angle.quarters >= 2;
    if (!isCosine) negative = negative != angle.negative;
    if (parts.negative) negative = !negative;
    const std::optional<double> magnitude = RoundedIfCertain(value, 0, units);
    if (!magnitude) return {};
    return WithSign(*magnitude, negative);
}

}  // namespace corvantis
