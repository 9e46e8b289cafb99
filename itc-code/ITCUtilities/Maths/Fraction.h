// Binary fractions from 0 to below 1 of N words, with which the exact functions compute. Results
// are cut off: one that does not fit is less than one unit of the last word too small.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "ITCUtilities/Maths/Words.h"

namespace corvantis {

// The most significant word first.
template <size_t N>
using Fraction = std::array<uint64_t, N>;

// The first words of a constant that is known to more of them.
template <size_t N, size_t M>
constexpr Fraction<N> Leading(const Fraction<M>& constant) {
    static_assert(N <= M);
    Fraction<N> first{};
    for (size_t i = 0; i < N; ++i) first[i] = constant[i];
    return first;
}

// Sums and differences wrap; whether they did.
template <size_t N>
constexpr bool AddTo(Fraction<N>& sum, const Fraction<N>& a) {
    uint64_t carry = 0;
    for (size_t i = N; i-- > 0;) {
        const uint64_t partial = sum[i] + a[i];
        const uint64_t total = partial + carry;
        carry = (partial < a[i] ? 1 : 0) | (total < partial ? 1 : 0);
        sum[i] = total;
    }
    return carry != 0;
}

template <size_t N>
constexpr bool SubtractFrom(Fraction<N>& difference, const Fraction<N>& a) {
    uint64_t borrow = 0;
    for (size_t i = N; i-- > 0;) {
        const uint64_t partial = difference[i] - a[i];
        const uint64_t total = partial - borrow;
        borrow = (difference[i] < a[i] ? 1 : 0) | (partial < borrow ? 1 : 0);
        difference[i] = total;
    }
    return borrow != 0;
}

template <size_t N>
constexpr Fraction<N> Product(const Fraction<N>& a, const Fraction<N>& b) {
    std::array<uint64_t, 2 * N> sum{};
    for (size_t i = N; i-- > 0;) {
        uint64_t carry = 0;
        for (size_t j = N; j-- > 0;) {
            const WordPair product = MultiplyWords(a[i], b[j]);
            const uint64_t partial = sum[i + j + 1] + product.low;
            const uint64_t total = partial + carry;
            carry = product.high + (partial < product.low ? 1 : 0) + (total < partial ? 1 : 0);
            sum[i + j + 1] = total;
        }
        sum[i] = carry;
    }
    return Leading<N>(sum);
}

// The product with a whole number, without its own whole part.
template <size_t N>
constexpr Fraction<N> TimesWhole(const Fraction<N>& a, uint64_t factor) {
    Fraction<N> result{};
    uint64_t carry = 0;
    for (size_t i = N; i-- > 0;) {
        const WordPair product = MultiplyWords(a[i], factor);
        result[i] = product.low + carry;
        carry = product.high + (result[i] < carry ? 1 : 0);
    }
    return result;
}

template <size_t N>
constexpr Fraction<N> DividedByWhole(const Fraction<N>& a, uint64_t divisor) {
    Fraction<N> quotient{};
    uint64_t remainder = 0;
    for (size_t i = 0; i < N; ++i) quotient[i] = DivideWords(remainder, a[i], divisor);
    return quotient;
}

template <size_t N>
constexpr Fraction<N> ShiftedLeft(const Fraction<N>& a, size_t bits) {
    Fraction<N> result{};
    const size_t words = bits / 64, rest = bits % 64;
    for (size_t i = 0; i + words < N; ++i) {
        const uint64_t next = i + words + 1 < N ? a[i + words + 1] : 0;
        result[i] = rest == 0 ? a[i + words] : (a[i + words] << rest) | (next >> (64 - rest));
    }
    return result;
}

template <size_t N>
constexpr Fraction<N> ShiftedRight(const Fraction<N>& a, size_t bits) {
    Fraction<N> result{};
    const size_t words = bits / 64, rest = bits % 64;
    for (size_t i = words; i < N; ++i) {
        const uint64_t previous = i > words ? a[i - words - 1] : 0;
        result[i] = rest == 0 ? a[i - words] : (a[i - words] >> rest) | (previous << (64 - rest));
    }
    return result;
}

template <size_t N>
constexpr size_t LeadingZeros(const Fraction<N>& a) {
    for (size_t i = 0; i < N; ++i) {
        if (a[i] != 0) return 64 * i + static_cast<size_t>(std::countl_zero(a[i]));
    }
    return 64 * N;
}

}  // namespace corvantis
