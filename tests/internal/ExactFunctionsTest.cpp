// The exact functions on every host: hard cases as MPFR rounds them, limits, and fused sums beside
// the definitions' own.
#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "ITCUtilities/Maths/Functions.h"
#include "ITCUtilities/Maths/FusedOperation.h"
#include "ITCUtilities/Maths/Logarithm.h"
#include "ITCUtilities/Maths/Power.h"
#include "ITCUtilities/Maths/Sine.h"
#include "ITCUtilities/Maths/Turn.h"
#include "reference/Fused.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kSmallest = std::numeric_limits<double>::denorm_min();
constexpr double kLargest = std::numeric_limits<double>::max();

struct Case {
    double x, expected;
};
struct PowerCase {
    double base;
    int32_t exponent;
    double expected;
};

// Beside boundaries of rounding, or beside whole half turns.
constexpr Case kSines[] = {{0x1.2106ca49838cap+6, -0x1.ce182350948b5p-28},
                           {0x1.925e965af8648p+1, -0x1.f708a1712d5ap-10},
                           {0x1.578f562085183p+19, 0x1.5d744aaa6e3c7p-1},
                           {0x1.7dff79cc74b84p+13, 0x1.4d54c8bdedadcp-9},
                           {0x1.6ac5b262ca1ffp+849, 0x1p+0},
                           {0x1.fffffffffffffp+1023, 0x1.452fc98b34e97p-8},
                           {0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53},
                           {0x1p-27, 0x1p-27},
                           {0x1.0000000000001p-26, 0x1.0000000000001p-26}};
constexpr Case kLogarithms[] = {
    {0x1.5e055d9893d7p-2, -0x1.12cf812d454a8p+0},
    {0x1.17ea17f2d41d4p-9, -0x1.8989835426244p+2},
    {0x1.851d78007174bp-4, -0x1.2d4c4c709f3b8p+1},
    {0x1.201cc4655ae06p-23, -0x1.fa5ff1df6a715p+3},
    {0x1.eaba4d12bb76ap-21, -0x1.bcf8dce3ed7e2p+3},
    {0x1.fffffffffffffp-1, -0x1p-53},
    {0x1.0000000000001p+0, 0x1.fffffffffffffp-53},
    {0x0.0000000000001p-1022, -0x1.74385446d71c3p+9},
    {0x1.fffffffffffffp+1023, 0x1.62e42fefa39efp+9},
    {0x1.6a09e667f3bcdp+0, 0x1.62e42fefa39fp-2}};  // The same; denormals with two ties among them,
                                                   // and ties of normal numbers.
constexpr PowerCase kPowers[] = {{0x1.78fe26b62b6efp-1, 100, 0x1.ca087177d06efp-45},
                                 {0x1.70153d32b9772p-2, 5, 0x1.8949465ebeac8p-8},
                                 {0x1.521500d041413p-1, 3, 0x1.26d1d2e84645ep-2},
                                 {0x1.0000000000001p+0, 2147483647, 0x1.00000800001ffp+0},
                                 {0x1.fffffffffffffp-1, -2147483648, 0x1.000004000008p+0},
                                 {0x1.fffffffffffffp+1023, -1, 0x0.4p-1022},
                                 {0x1p-215, 5, 0x0p+0},
                                 {0x1.8p-214, 5, 0x0.000000000007ap-1022},
                                 {0x1.8p-537, 2, 0x0.0000000000002p-1022},
                                 {0x1.8p+1, 34, 0x1.d9fe779881944p+53},
                                 {0x1.8000004p+0, 2, 0x1.2000006p+1},
                                 {0x1.800000cp+0, 2, 0x1.2000012000004p+1}};

// Also with more words than they need, which these cases do not reach otherwise.
TEST(ExactFunctions, HardCases) {
    for (const auto& [x, sine] : kSines) {
        EXPECT_EQ(corvantis::Sine(x), sine);
        EXPECT_EQ(corvantis::Sine(-x), -sine);
        EXPECT_EQ(corvantis::SineInWords<4>(x), sine);
        EXPECT_EQ(corvantis::SineInWords<8>(x), sine);
    }
    for (const auto& [x, logarithm] : kLogarithms) {
        EXPECT_EQ(corvantis::Logarithm(x), logarithm);
        EXPECT_EQ(corvantis::LogarithmInWords<4>(x), logarithm);
        EXPECT_EQ(corvantis::LogarithmInWords<8>(x), logarithm);
    }
    for (const auto& [base, exponent, power] : kPowers) {
        EXPECT_EQ(corvantis::Power(base, exponent), power);
        EXPECT_EQ(corvantis::Power(-base, exponent), exponent % 2 == 0 ? power : -power);
        EXPECT_EQ(corvantis::PowerInWords<4>(base, exponent), power);
        EXPECT_EQ(corvantis::PowerInWords<8>(base, exponent), power);
    }
}

TEST(ExactFunctions, Limits) {
    using namespace corvantis;
    EXPECT_TRUE(std::signbit(Sine(-0.0)));
    EXPECT_EQ(Sine(kSmallest), kSmallest);
    EXPECT_TRUE(std::isnan(Sine(kInfinity)));
    EXPECT_EQ(Logarithm(-0.0), -kInfinity);
    EXPECT_EQ(Logarithm(kInfinity), kInfinity);
    EXPECT_FALSE(std::signbit(Logarithm(1.0)));
    EXPECT_TRUE(std::isnan(Logarithm(-1.0)));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(Sine(nan)) && std::isnan(Logarithm(nan)) && std::isnan(Power(nan, 1)));
    EXPECT_EQ(Power(nan, 0), 1.0);
    EXPECT_EQ(Power(0.0, 0), 1.0);
    EXPECT_EQ(Power(-0.0, -3), -kInfinity);
    EXPECT_EQ(Power(-kInfinity, -2), 0.0);
    EXPECT_EQ(Power(-kInfinity, INT32_MAX), -kInfinity);
    EXPECT_EQ(Power(0.5, INT32_MIN), kInfinity);
    EXPECT_EQ(Power(1.0, INT32_MIN), 1.0);
}

// Beside the C library's, which are good to a few units in the last place.
#if defined(__GLIBC__)  // others' sines may be off where angles are large
TEST(ExactFunctions, TurnsAreWithinTheirBound) {
    std::mt19937_64 source(1);
    for (int round = 0; round < 200000; ++round) {
        const auto whole = static_cast<double>(static_cast<int64_t>(source()));
        const double x = std::ldexp(whole, -static_cast<int>(source() % 95));
        const corvantis::Turn turn = corvantis::TurnBy(x);
        ASSERT_LT(std::abs(turn.sine - std::sin(x)), 0x1p-51) << x;
        ASSERT_LT(std::abs(turn.cosine - std::cos(x)), 0x1p-51) << x;
    }
}
#endif

TEST(ExactFunctions, FusedSums) {
    using corvantis::FusedInWords;
    EXPECT_EQ(FusedInWords(kLargest, 2.0, -kLargest), kLargest);
    EXPECT_EQ(FusedInWords(kLargest, kLargest, -kInfinity), -kInfinity);
    EXPECT_EQ(FusedInWords(kSmallest, 0.5, kSmallest), 2 * kSmallest);
    EXPECT_EQ(FusedInWords(kSmallest, 0.5, 0.0), 0.0);
    EXPECT_EQ(FusedInWords(1 + 0x1p-30, 1 - 0x1p-30, -1.0), -0x1p-60);
    EXPECT_EQ(FusedInWords(1.0, 1.0, 0x1p-53 + 0x1p-105), 1 + 0x1p-52);
    EXPECT_EQ(FusedInWords(1.0, 1.0, 0x1p-53), 1.0);
    EXPECT_TRUE(std::signbit(FusedInWords(-kSmallest, 0x1p-5, 0.0)));
    EXPECT_FALSE(std::signbit(FusedInWords(3.0, 0.5, -1.5)));
    EXPECT_TRUE(std::isnan(FusedInWords(0.0, kInfinity, 1.0)));
    // Half of the smallest float above a tie, and a tie broken by what double precision cannot
    // hold.
    EXPECT_EQ(corvantis::FusedByRoundingToOdd(1 + 0x1p-12F, 1 + 0x1p-12F, 0x1p-90F),
              1 + 0x1p-11F + 0x1p-23F);
    EXPECT_EQ(corvantis::FusedByRoundingToOdd(1 + 0x1p-12F, 1 + 0x1p-12F, -0x1p-90F), 1 + 0x1p-11F);
    std::mt19937_64 source(1);
    for (int round = 0; round < 200000; ++round) {
        const auto draw = [&] {
            return std::ldexp(
                static_cast<double>(static_cast<int64_t>(source() << (source() % 50))),
                -static_cast<int>(source() % 40));
        };
        const double a = draw(), b = draw();
        const double beside = std::ldexp(-a * b, static_cast<int>(source() % 120) - 60);
        for (const double c : {draw(), beside, -a * b, 0.0}) {
            ASSERT_EQ(FusedInWords(a, b, c), definition::FusedBySums(a, b, c)) << a << b << c;
            ASSERT_EQ(corvantis::FusedSum(a, b, c), definition::FusedBySums(a, b, c))
                << a << b << c;
        }
    }
}

}  // namespace
