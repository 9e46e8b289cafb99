// What a function's correctly rounded result is, by MPFR, and the count of what was held to it.
#pragma once

#include <mpfr.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace maths_test {

// Numbers of MPFR's, with the range and the denormals of a double or a float.
class Oracle {
  public:
    Oracle() {
        UseRange(-1073, 1024);
        mpfr_init2(single_, 24);
        mpfr_inits2(53, result_, a_, b_, c_, static_cast<mpfr_ptr>(nullptr));
    }
    double Sine(double x) { return Apply(mpfr_sin, x); }
    double Logarithm(double x) { return Apply(mpfr_log, x); }
    double Power(double base, int32_t exponent) {
        mpfr_set_d(a_, base, MPFR_RNDN);
        return Rounded(mpfr_pow_si(result_, a_, exponent, MPFR_RNDN));
    }
    double Fused(double a, double b, double c) {
        mpfr_set_d(a_, a, MPFR_RNDN);
        mpfr_set_d(b_, b, MPFR_RNDN);
        mpfr_set_d(c_, c, MPFR_RNDN);
        return Rounded(mpfr_fma(result_, a_, b_, c_, MPFR_RNDN));
    }
    float FusedSingle(float a, float b, float c) {
        UseRange(-148, 128);
        mpfr_set_flt(a_, a, MPFR_RNDN);
        mpfr_set_flt(b_, b, MPFR_RNDN);
        mpfr_set_flt(c_, c, MPFR_RNDN);
        Round(single_, mpfr_fma(single_, a_, b_, c_, MPFR_RNDN));
        UseRange(-1073, 1024);
        return mpfr_get_flt(single_, MPFR_RNDN);
    }

  private:
    static void UseRange(int lowest, int highest) {
        mpfr_set_emin(lowest);
        mpfr_set_emax(highest);
    }
    template <class Function>
    double Apply(Function function, double x) {
        mpfr_set_d(a_, x, MPFR_RNDN);
        return Rounded(function(result_, a_, MPFR_RNDN));
    }
    static void Round(mpfr_ptr number, int direction) {
        direction = mpfr_check_range(number, direction, MPFR_RNDN);
        mpfr_subnormalize(number, direction, MPFR_RNDN);
    }
    double Rounded(int direction) {
        Round(result_, direction);
        return mpfr_get_d(result_, MPFR_RNDN);
    }

    mpfr_t result_, single_, a_, b_, c_;
};

// Any NaN equals any other.
inline bool IsSame(double a, double b) {
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b);
}

// How many arguments of one kind were held to the oracle.
struct Tally {
    const char* name;
    int64_t held = 0;
    int64_t misrounded = 0;
    int64_t hard = 0;
    // Of the hardest: a bound on the distance from a boundary of rounding in units of 2^-128 of the
    // scale, and the arguments.
    uint64_t distance = UINT64_MAX;
    double x = 0.0;
    int32_t exponent = 0;

    void Hold(double found, double expected, double argument, int32_t n = 0) {
        ++held;
        if (IsSame(found, expected)) return;
        if (misrounded++ < 10)
            std::printf("%s(%a, %d) is %a, not %a\n", name, argument, n, found, expected);
    }
    // undecided(units): whether two words, believed to be off by so much, cannot tell.
    template <class Undecided>
    void Rank(Undecided undecided, double argument, int32_t n = 0) {
        ++hard;
        while (undecided(distance / 2)) {
            distance /= 2;
            x = argument;
            exponent = n;
        }
    }
    void Print() const {
        std::printf("%-34s %11lld held %3lld misrounded %6lld hard", name,
                    static_cast<long long>(held), static_cast<long long>(misrounded),
                    static_cast<long long>(hard));
        if (hard != 0)
            std::printf(", (%a, %d) to 2^%.1f", x, exponent,
                        std::log2(static_cast<double>(distance)) - 128);
        std::printf("\n");
    }
};

}  // namespace maths_test
