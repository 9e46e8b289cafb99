// Random deviates one by one; those in bulk are seen in the noise.
#include <cstdlib>

#include "ITCUtilities/Random/PolarFactor.h"
#include "SameBits.h"

namespace corvantis_test {
namespace {

// The words that both leave count as values, too.
template <class Single, class Defined>
void ExpectDeviates(int32_t first, int32_t count, Single single, Defined defined) {
    std::vector<float> values, expected;
    int32_t word = first, plainWord = first;
    while (count-- > 0) {
        values.insert(values.end(), {single(&word), static_cast<float>(word)});
        expected.insert(expected.end(), {defined(&plainWord), static_cast<float>(plainWord)});
    }
    EXPECT_EQ(word, plainWord);
    ExpectSame(values, expected, first);
}

// Also from words that are no state of the generator: 0 and below restart it, 2147483563 becomes
// the state 0, and those near 2^31 become negative ones. Odd counts keep a spare across restarts.
TEST_F(ExactTest, DeviatesFromAnyWord) {
    for (const int32_t first :
         {-77, 0, 1, 2, 53668, 2147430000, 2147483563, INT32_MAX, -1, -INT32_MAX, INT32_MIN}) {
        ExpectDeviates(first, first == -77 ? 3000000 : 20000, ran2, definition::UniformDeviate);
        ExpectDeviates(first, 20001, ITCNormalDeviate, definition::NormalDeviate);
    }
    ExpectDigest(0x6cd995c01a6b73ef);
}

#if defined(__GLIBC__)  // elsewhere the library draws from a generator of its own
TEST_F(ExactTest, NormalDeviatesOfThePlatformsNumbers) {
    std::vector<float> values, expected;
    std::srand(42);
    while (values.size() < 100001) values.push_back(V4ITCNormalDeviate());
    const int next = std::rand();
    std::srand(42);
    while (expected.size() < 100001) expected.push_back(definition::OldNormalDeviate());
    EXPECT_EQ(next, std::rand());
    ExpectSame(values, expected);
    ExpectDigest(0xb666cb1d7c75c579);
}
#endif

TEST_F(ExactTest, ThePolarFactorsGuardIsEnoughAndLessOfItIsNot) {
    std::vector<float> squares, expected;
    for (int32_t i = 0; i < 1 << 20; ++i) {
        squares.push_back((static_cast<float>(i) + 0.5F) * 0x1p-20F);
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
