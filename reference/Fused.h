// a * b + c rounded once, whatever the host's C library makes of it: products and sums with their
// errors, of which the smaller ones are rounded to odd (S. Boldo, G. Melquiond). For numbers whose
// products stay clear of both ends of double precision.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

namespace definition {

struct SumAndError {
    double sum;
    double error;
};

inline SumAndError ExactSum(double a, double b) {
    const double sum = a + b;
    const double second = sum - a;
    return {sum, (a - (sum - second)) + (b - second)};
}

// Each factor in two halves of 26 bits or fewer, whose products are exact (G. W. Veltkamp, T. J.
// Dekker).
inline SumAndError ExactProduct(double a, double b) {
    constexpr double kSplit = 134217729.0;
    const double a1 = kSplit * a - (kSplit * a - a), a2 = a - a1;
    const double b1 = kSplit * b - (kSplit * b - b), b2 = b - b1;
    const double product = a * b;
    return {product, a2 * b2 - (((product - a1 * b1) - a2 * b1) - a1 * b2)};
}

inline double SumToOdd(double a, double b) {
    const auto [sum, error] = ExactSum(a, b);
    const auto bits = std::bit_cast<uint64_t>(sum);
    const bool outwards = (error > 0.0) == (sum > 0.0);
    const uint64_t neighbour = outwards ? bits + 1 : bits - 1;
    const bool rounded = error > 0.0 || error < 0.0;
    return rounded && bits % 2 == 0 ? std::bit_cast<double>(neighbour) : sum;
}

inline double FusedBySums(double a, double b, double c) {
    if (!std::isfinite(a) || !std::isfinite(b) || !std::isfinite(c)) return a * b + c;
    const auto [product, low] = ExactProduct(a, b);
    const auto [middle, lowest] = ExactSum(c, low);
    const auto [high, rest] = ExactSum(product, middle);
    return high + SumToOdd(rest, lowest);
}

// The product of two floats is exact.
inline float FusedBySums(float a, float b, float c) {
    return static_cast<float>(SumToOdd(double{a} * b, c));
}

// The GNU C library's is exact, and fast where the processor has it.
template <class Number>
Number Fused(Number a, Number b, Number c) {
#if defined(__GLIBC__)
    return std::fma(a, b, c);
#else
    return FusedBySums(a, b, c);
#endif
}

}  // namespace definition
