// The random generators against a second implementation, known values and their own statistics.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "Corvantis.h"
#include "ReferenceRandom.h"

namespace {

using corvantis_test::DropSpareDeviate;
using corvantis_test::DropSpareDeviateOnRand;
using corvantis_test::ReferenceNormal;
using corvantis_test::ReferenceRan2;

// Drawn while the program is loaded, before any test can have touched the generators.
struct FirstDraws {
    FirstDraws() {
        for (float& value : uniform) value = ran2(&word);
        small = kr_rand();
    }
    int32_t word = 7;
    float uniform[4] = {};
    uint32_t small = 0;
};
const FirstDraws kFirstDraws;

float Scaled(int64_t last) {
    return static_cast<float>(static_cast<double>(last) * 4.656396227037057e-10);
}

TEST(RandomNumbersTest, APositiveWordDoesNotStartAnUntouchedGenerator) {
    const int64_t expected[] = {1407595835, 431733857, 1919139389, 605446718};
    ReferenceRan2 reference;
    int64_t word = 7;
    for (size_t n = 0; n < 4; ++n) {
        EXPECT_EQ(kFirstDraws.uniform[n], Scaled(expected[n]));
        EXPECT_EQ(kFirstDraws.uniform[n], reference.Draw(word));
    }
    EXPECT_EQ(kFirstDraws.word, 931702540);
    EXPECT_EQ(kFirstDraws.small, 16838u) << "the small generator is loaded with the state 1";
}

// Expected: the figures of a third implementation, in Python's unbounded integers.
struct LongRun {
    int32_t seed;
    int32_t draws;
    int64_t first[3];
    int64_t restarts;
    int64_t negatives;
    int32_t lastWord;
};

class LongRunTest : public testing::TestWithParam<LongRun> {};

TEST_P(LongRunTest, EveryDrawAndStateWordMatches) {
    const LongRun& run = GetParam();
    ReferenceRan2 reference;
    int32_t word = run.seed;
    int64_t referenceWord = run.seed;
    int64_t differences = 0;
    int64_t restarts = -1;
    int64_t negatives = 0;
    for (int32_t n = 0; n < run.draws; ++n) {
        restarts += word <= 0;
        const float value = ran2(&word);
        differences += n < 3 && value != Scaled(run.first[n]);
        differences += value != reference.Draw(referenceWord) || word != referenceWord;
        negatives += value < 0;
        if (value == 0 || value > 1) FAIL() << "draw " << n << " of " << run.seed << ": " << value;
    }
    EXPECT_EQ(differences, 0);
    EXPECT_EQ(restarts, run.restarts);
    EXPECT_EQ(reference.restarts, run.restarts + 1);
    EXPECT_EQ(negatives, run.negatives);
    EXPECT_EQ(word, run.lastWord);
}

INSTANTIATE_TEST_SUITE_P(
    Seeds, LongRunTest,
    testing::Values(
        LongRun{0, 1000000, {1754265359, 1043992477, 309750603}, 12, 42, 1537131452},
        LongRun{-5, 1000000, {134344149, 1601362241, 896002519}, 11, 43, 2051309675},
        LongRun{INT32_MIN, 20000, {1754265359, 1043992477, 309750603}, 1, 0, 1093035622},
        LongRun{-1, 20000, {1754265359, 1043992477, 309750603}, 1, 0, 1093035622},
        LongRun{-INT32_MAX, 20000, {1791087517, 765842362, 1782143464}, 1, 0, 1093318394},
        LongRun{-987654321, 20000, {1667153846, 1406802380, 890612086}, 2, 1, 88836605}));

TEST(RandomNumbersTest, ANegativeWordInMidSequenceRestartsFromItsMagnitude) {
    int32_t word = 0;
    for (int n = 0; n < 2219; ++n) ran2(&word);
    ASSERT_LT(word, 0);
    ReferenceRan2 restarted;
    int64_t referenceWord = word;
    for (int n = 0; n < 100; ++n) ASSERT_EQ(ran2(&word), restarted.Draw(referenceWord)) << n;
    EXPECT_EQ(restarted.restarts, 1);
}

TEST(RandomNumbersTest, APositiveWordContinuesWithTheTableAsItIs) {
    ReferenceRan2 reference;
    for (const int32_t start : {-5, 7, 2000000000, 1, -12}) {
        int32_t word = start;
        int64_t referenceWord = start;
        EXPECT_EQ(ITCSeedRandom(&word), reference.Draw(referenceWord));
        for (int n = 0; n < 500; ++n) ASSERT_EQ(ran2(&word), reference.Draw(referenceWord)) << n;
    }
    EXPECT_EQ(reference.restarts, 2);
}

TEST(RandomNumbersTest, NormalDeviatesHaveTheMomentsOfTheirDistribution) {
    constexpr int kCount = 400000;
    int32_t word = -20240607;
    double sums[5] = {};
    double neighbours = 0;
    double previous = 0;
    for (int n = 0; n < kCount; ++n) {
        const double deviate = double{ITCNormalDeviate(&word)};
        for (int power = 1; power <= 4; ++power) sums[power] += std::pow(deviate, power);
        neighbours += deviate * previous;
        previous = deviate;
    }
    const double deviation = 1 / std::sqrt(kCount);
    EXPECT_NEAR(sums[1] / kCount, 0, 5 * deviation);
    EXPECT_NEAR(sums[2] / kCount, 1, 5 * std::sqrt(2.0) * deviation);
    EXPECT_NEAR(sums[3] / kCount, 0, 5 * std::sqrt(15.0) * deviation);
    EXPECT_NEAR(sums[4] / kCount, 3, 5 * std::sqrt(96.0) * deviation);
    EXPECT_NEAR(neighbours / kCount, 0, 5 * deviation);
}

TEST(RandomNumbersTest, NormalDeviatesMatchAndARestartKeepsTheSpare) {
    DropSpareDeviate();
    ReferenceRan2 uniform;
    ReferenceNormal normal;
    // Odd counts leave the second deviate of a pair for the sequence after the next restart.
    for (const int count : {1, 2000, 7, 1, 30001}) {
        int32_t word = -count;
        int64_t referenceWord = -count;
        ASSERT_EQ(ITCSeedRandom(&word), uniform.Draw(referenceWord));
        for (int n = 0; n < count; ++n)
            ASSERT_EQ(ITCNormalDeviate(&word), normal.Draw(uniform, referenceWord)) << n;
        EXPECT_EQ(word, referenceWord);
    }
}

TEST(RandomNumbersTest, OlderDeviatesFollowThePlatformsGeneratorAndKeepTheirSpare) {
    DropSpareDeviateOnRand();
    ReferenceNormal normal;
    for (const unsigned seed : {1u, 42u, 0u, 4294967291u}) {
        std::vector<float> deviates(1001);
        std::srand(seed);
        for (float& deviate : deviates) deviate = V4ITCNormalDeviate();
        std::srand(seed);
        for (const float deviate : deviates) ASSERT_EQ(deviate, normal.DrawOnRand());
    }
}

TEST(RandomNumbersTest, TheTwoSpareDeviatesAreIndependent) {
    DropSpareDeviate();
    DropSpareDeviateOnRand();
    int32_t word = -3;
    ITCNormalDeviate(&word);
    std::srand(9);
    const float older = V4ITCNormalDeviate();
    std::srand(9);
    EXPECT_EQ(older, ReferenceNormal().DrawOnRand()) << "took the other generator's spare";
    const int32_t held = word;
    ITCNormalDeviate(&word);
    EXPECT_EQ(word, held) << "the spare was lost";
}

TEST(RandomNumbersTest, SmallGeneratorGivesThePublishedSequence) {
    kr_srand(1);
    for (const uint32_t expected : {16838u, 5758u, 10113u, 17515u, 31051u, 5627u, 23010u, 7419u})
        EXPECT_EQ(kr_rand(), expected);
    for (const uint64_t seed : {uint64_t{0}, uint64_t{4294967295}, uint64_t{2147483648}}) {
        uint64_t state = seed;
        kr_srand(static_cast<uint32_t>(seed));
        for (int n = 0; n < 100; ++n) {
            state = (state * 1103515245 + 12345) % 4294967296;
            ASSERT_EQ(kr_rand(), state / 65536 % 32768);
        }
    }
}

}  // namespace
