// Random deviates, in bulk and one by one.
#include <cstdlib>

#include "ITCUtilities/Random/PolarFactor.h"
#include "SameBits.h"

namespace corvantis_test {
namespace {

// Then a single one, which shows the state behind them.
template <class Bulk, class Single, class Defined>
void ExpectDeviates(int32_t count, Bulk bulk, Single single, Defined defined) {
    std::vector<float> values(static_cast<size_t>(count)), expected;
    bulk(std::span(values));
    values.push_back(single());
    while (expected.size() < values.size()) expected.push_back(defined());
    ExpectSame(values, expected, count);
}

// Also from words that are no state of the generator: 0 and below restart it, 2147483563 becomes
// the state 0, and those near 2^31 become negative ones.
TEST_F(ExactTest, UniformDeviatesFromAnyWord) {
    for (const int32_t first :
         {-77, 0, 1, 2, 53668, 2147430000, 2147483563, INT32_MAX, -1, -INT32_MAX, INT32_MIN}) {
        int32_t word = first, plainWord = first;
        for (const int32_t count : {0, 1, 17, 1025, first == -77 ? 4000000 : 20000}) {
            ExpectDeviates(
                count, [&](auto values) { DrawUniformDeviates(generators.uniform, word, values); },
                [&] { return ran2(&word); },
                [&] { return definition::UniformDeviate(&plainWord); });
            EXPECT_EQ(word, plainWord) << first;
        }
    }
    ExpectDigest(0x7a60c37895bbf33d);
}

// Some restart, which keeps the spare.
TEST_F(ExactTest, NormalDeviatesWithTheSpareBetweenCalls) {
    int32_t word = 0, plainWord = 0;
    const auto expect = [&](int32_t count) {
        if (count % 5 == 0) word = plainWord = -count;
        ExpectDeviates(
            count, [&](auto values) { DrawNormalDeviates(generators, word, values); },
            [&] { return ITCNormalDeviate(&word); },
            [&] { return definition::NormalDeviate(&plainWord); });
        EXPECT_EQ(word, plainWord);
    };
    for (const int32_t count : kAwkwardCounts) expect(count);
    for (const int32_t count : {0, 3000001, 0, 2000}) expect(count);
    ExpectDigest(0x31735d8681db68f5);
}

TEST_F(ExactTest, NormalDeviatesOfThePlatformsNumbers) {
    for (const int32_t count : {1, 2, 3, 255, 511, 512, 513, 100001, 1000000}) {
        int next = 0;
        std::srand(42);
        ExpectDeviates(
            count, [&](auto values) { DrawOldNormalDeviates(generators, values); },
            [&] {
                const float last = V4ITCNormalDeviate();
                next = std::rand();
                std::srand(42);
                return last;
            },
            definition::OldNormalDeviate);
        EXPECT_EQ(next, std::rand());
    }
    ExpectDigest(0x5828fbc02c5e0fce);
}

TEST_F(ExactTest, ThePolarFactorsGuardIsEnoughAndLessOfItIsNot) {
    std::vector<float> squares, expected;
    for (int32_t i = 0; i < 1 << 22; ++i) {
        squares.push_back((static_cast<float>(i) + 0.5F) * 0x1p-22F);
        expected.push_back(corvantis::PolarFactor(squares.back()));
    }
    std::vector<float> factors(squares.size());
    corvantis::CalculatePolarFactors(squares, factors);
    ExpectSame(factors, expected);
    corvantis::CalculatePolarFactors(squares, factors, corvantis::kPolarGuard / 16);
    EXPECT_TRUE(factors != expected);
}

}  // namespace
}  // namespace corvantis_test
