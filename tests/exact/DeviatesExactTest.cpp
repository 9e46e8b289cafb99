// Random deviates in bulk against single draws of the plain generators.
#include <cstdlib>
#include <limits>

#include "ITCUtilities/Random/LibraryGenerators.h"
#include "ITCUtilities/Random/PolarFactor.h"
#include "SameBits.h"
#include "SpareDeviates.h"
#include "reference/Definitions.h"

namespace corvantis_test {
namespace {

// Library and plain generators in the same state, without spare deviates.
class DeviatesExactTest : public testing::Test {
  protected:
    DeviatesExactTest() {
        DropSpareDeviate();
        DropSpareDeviateOnRand();
        definition::DropSpareDeviates();
        EXPECT_EQ(ran2(&word), definition::UniformDeviate(&plainWord));
    }

    template <class Bulk, class Single>
    void ExpectSame(int32_t count, Bulk bulk, Single single) {
        std::vector<float> values(static_cast<size_t>(count));
        std::vector<float> expected(values.size());
        bulk(std::span(values));
        for (float& value : expected) value = single();
        EXPECT_EQ(CountDifferences(values, expected), 0u) << count << " deviates";
    }

    corvantis::NoiseGenerators& generators = corvantis::LibraryGenerators();
    int32_t word = -77;
    int32_t plainWord = -77;
};

TEST_F(DeviatesExactTest, UniformDeviatesBeyondRestartsOfTheGenerator) {
    const auto bulk = [&](auto values) {
        corvantis::DrawUniformDeviates(generators.uniform, word, values);
    };
    const auto single = [&] { return definition::UniformDeviate(&plainWord); };
    for (const int32_t count : kAwkwardCounts) ExpectSame(count, bulk, single);
    ExpectSame(4000000, bulk, single);
    EXPECT_EQ(word, plainWord);
    EXPECT_EQ(ran2(&word), definition::UniformDeviate(&plainWord));
}

// Words that are no state of the generator: 0 and below restart it, 2147483563 becomes the state 0,
// and those near 2^31 become negative ones.
TEST_F(DeviatesExactTest, UniformDeviatesFromAnyWord) {
    for (const int32_t first : {0, 1, 2, 53668, 2147430000, 2147483563, 2147483647, -1, -2147483647,
                                std::numeric_limits<int32_t>::min()}) {
        word = plainWord = first;
        ExpectSame(
            20000,
            [&](auto values) { corvantis::DrawUniformDeviates(generators.uniform, word, values); },
            [&] { return definition::UniformDeviate(&plainWord); });
        EXPECT_EQ(word, plainWord) << "from " << first;
    }
}

TEST_F(DeviatesExactTest, NormalDeviatesAndTheSpareBetweenCalls) {
    const auto bulk = [&](auto values) { corvantis::DrawNormalDeviates(generators, word, values); };
    const auto single = [&] { return definition::NormalDeviate(&plainWord); };
    for (const int32_t count : kAwkwardCounts) {
        ExpectSame(count, bulk, single);
        ExpectSame(0, bulk, single);
        EXPECT_EQ(word, plainWord);
    }
    ExpectSame(3000001, bulk, single);
    EXPECT_EQ(ITCNormalDeviate(&word), definition::NormalDeviate(&plainWord));
    EXPECT_EQ(ITCNormalDeviate(&word), definition::NormalDeviate(&plainWord));
    EXPECT_EQ(word, plainWord);
}

TEST_F(DeviatesExactTest, DeviatesOnRandLeaveItWhereSingleDrawsDo) {
    for (const int32_t count : {1, 2, 3, 255, 511, 512, 513, 100001, 1000000}) {
        std::vector<float> values(static_cast<size_t>(count));
        std::vector<float> expected(values.size());
        std::srand(42);
        corvantis::DrawOldNormalDeviates(generators, values);
        const int next = std::rand();
        std::srand(42);
        for (float& value : expected) value = definition::OldNormalDeviate();
        EXPECT_EQ(CountDifferences(values, expected), 0u) << count << " deviates";
        EXPECT_EQ(next, std::rand());
    }
}

// Squared distances as the polar method finds them, a few from each end of their range among them.
std::vector<float> SquaredDistances(size_t count) {
    std::mt19937 source(5);
    std::vector<float> squares;
    for (float low = 0x1p-60F, high = 1.0F; squares.size() < 300; low *= 1.4F) {
        high = std::nextafter(high, 0.0F);
        squares.push_back(high);
        if (low < 1.0F) squares.push_back(low);
    }
    while (squares.size() < count) {
        squares.push_back((static_cast<float>(source() >> 8) + 0.5F) * 0x1p-24F);
        if (squares.back() >= 1.0F) squares.pop_back();
    }
    return squares;
}

size_t WrongFactors(const std::vector<float>& squares, double guard) {
    std::vector<float> factors(squares.size());
    corvantis::CalculatePolarFactors(squares, factors, guard);
    std::vector<float> expected;
    for (const float square : squares) expected.push_back(corvantis::PolarFactor(square));
    return CountDifferences(factors, expected);
}

TEST(PolarFactorExactTest, TheGuardIsEnoughAndLessOfItIsNot) {
    const std::vector<float> squares = SquaredDistances(3000000);
    EXPECT_EQ(WrongFactors(squares, corvantis::kPolarGuard), 0u);
    EXPECT_GT(WrongFactors(squares, corvantis::kPolarGuard / 16), 0u);
    EXPECT_GT(WrongFactors(squares, 0.0), 0u);
}

}  // namespace
}  // namespace corvantis_test
