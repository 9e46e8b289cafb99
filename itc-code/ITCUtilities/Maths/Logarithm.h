// The natural logarithm with N words. Method:
//
// A positive double is 2^e * m with m between 0.7 and 1.42, and with s = (m - 1) / (m + 1)
//   log m = 2 s (1 + z / 3 + z^2 / 5 + ...), z = s^2 < 0.031.
// The fraction s is kept as s * 2^k between 1/4 and 1/2, so that a logarithm near 0 has as many
// digits as any other. If e is not 0, e ln 2 is added, both parts in units of 2^11.
//
// Error, in units of the last word: s * 2^k is off by 1, s by 1.5 and z by 2 * 0.172 * 1.5 + 1 <
// 1.6. A place of the series adds 2 for its coefficient, 1 for its product and 1.6 / 3 for z, and
// takes over 0.031 of the error behind it: less than 3.8. Its product with z is off by 0.031 * 3.8
// + 0.6 + 1 < 1.8, that with s * 2^k by 1.8 / 2 + 0.01 + 1 < 2, and the sum by 3, which is all if e
// is 0. Else the sum is shifted right, which leaves less than 3 * 2 / 2^11 + 1, and e ln 2 / 2^11
// is off by 2. What the series leaves out comes on top (Rounding.h).
#pragma once

#include <cstdlib>

#include "ITCUtilities/Maths/Constants.h"
#include "ITCUtilities/Maths/Rounding.h"

namespace corvantis {

inline constexpr int32_t kLogarithmScale = 11;

// z^n / (2 n + 1) with this n does not count: z < 2^-5.
template <size_t N>
inline constexpr size_t kLogarithmTerms = kSeriesBits<N> / 5 + 1;

template <size_t N>
constexpr auto MakeInverseOddNumbers() {
    std::array<Fraction<N>, kLogarithmTerms<N>> inverses{};
    for (size_t j = 1; j < inverses.size(); ++j) {
        Fraction<N> half{uint64_t{1} << 63};
        inverses[j] = ShiftedLeft(DividedByWhole(half, 2 * j + 1), 1);
    }
    return inverses;
}
// 1 / (2 j + 1), of which that of 0 is not used.
template <size_t N>
inline constexpr auto kInverseOddNumbers = MakeInverseOddNumbers<N>();

// 2^e * significand / one.
struct LogarithmParts {
    int32_t e;
    uint64_t significand;
    uint64_t one;
};

constexpr LogarithmParts SplitForLogarithm(const DoubleParts& x) {
    const int32_t shift = std::countl_zero(x.significand) - 11;
    const uint64_t significand = x.significand << shift;
    const int32_t e = x.exponent - shift + 52;
    constexpr uint64_t kRootOf2 = 0x16A09E667F3BCD;
    if (significand > kRootOf2) return {e + 1, significand, uint64_t{1} << 53};
    return {e, significand, uint64_t{1} << 52};
}

// artanh(s) * 2^k for s = numerator / denominator < 0.18.
template <size_t N>
Fraction<N> HalfLogarithm(uint64_t numerator, uint64_t denominator, size_t& k) {
    k = 0;
    while (numerator != 0 && 4 * (numerator << k) < denominator) ++k;
    Fraction<N> s;
    uint64_t rest = numerator << k;
    for (uint64_t& word : s) word = DivideWords(rest, 0, denominator);
    const Fraction<N> small = ShiftedRight(s, k);
    const Fraction<N> z = Product(small, small);
    Fraction<N> product = Product(z, kInverseOddNumbers<N>[kLogarithmTerms<N> - 1]);
    for (size_t j = kLogarithmTerms<N> - 1; j-- > 1;) {
        AddTo(product, kInverseOddNumbers<N>[j]);
        product = Product(z, product);
    }
    AddTo(s, Product(s, product));
    return s;
}

// e ln 2 / 2^11.
template <size_t N>
Fraction<N> ScaledLogarithmOfPower(int32_t e) {
    const auto magnitude = static_cast<uint64_t>(std::abs(e));
    const auto scaled = ShiftedRight(Leading<N + 1>(kLogarithmOf2InWords), kLogarithmScale);
    return Leading<N>(TimesWhole(scaled, magnitude));
}

// Of a finite number above 0; nothing where N words cannot tell how the logarithm rounds.
template <size_t N>
std::optional<double> LogarithmInWords(double x, uint64_t units = kSeriesUnits<N>) {
    const auto [e, significand, one] = SplitForLogarithm(PartsOf(x));
    const bool below = significand < one;
    size_t k = 0;
    const Fraction<N> half =
        HalfLogarithm<N>(below ? one - significand : significand - one, significand + one, k);
    std::optional<double> magnitude;
    if (e == 0) {
        magnitude = RoundedIfCertain(half, 1 - static_cast<int64_t>(k), units);
    } else {
        Fraction<N> sum = ScaledLogarithmOfPower<N>(e);
        const Fraction<N> part = ShiftedRight(half, k + kLogarithmScale - 1);
        if (below == (e < 0)) {
            AddTo(sum, part);
        } else {
            SubtractFrom(sum, part);
        }
        magnitude = RoundedIfCertain(sum, kLogarithmScale, units);
    }
    if (!magnitude) return {};
    return WithSign(*magnitude, e == 0 ? below : e < 0);
}

}  // namespace corvantis
