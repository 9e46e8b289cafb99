// The random generators against known values and the plain form of each.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>

#include "Corvantis.h"
#include "SpareDeviates.h"
#include "reference/Definitions.h"

namespace {

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
    for (size_t n = 0; n < 4; ++n) EXPECT_EQ(kFirstDraws.uniform[n], Scaled(expected[n]));
    EXPECT_EQ(kFirstDraws.word, 931702540);
    EXPECT_EQ(kFirstDraws.small, 16838u) << "the small generator is loaded with the state 1";
}

// Expected: the figures of a third implementation, in Python's unbounded integers.
struct LongRun {
    int32_t seed, draws;
    int64_t first[3];
    int64_t restarts, negatives;
    int32_t lastWord;
};

TEST(RandomNumbersTest, EveryDrawAndStateWordOfLongRuns) {
    for (const LongRun& run :
         {LongRun{0, 1000000, {1754265359, 1043992477, 309750603}, 12, 42, 1537131452},
          LongRun{-5, 1000000, {134344149, 1601362241, 896002519}, 11, 43, 2051309675},
          LongRun{INT32_MIN, 20000, {1754265359, 1043992477, 309750603}, 1, 0, 1093035622},
          LongRun{-INT32_MAX, 20000, {1791087517, 765842362, 1782143464}, 1, 0, 1093318394},
          LongRun{-987654321, 20000, {1667153846, 1406802380, 890612086}, 2, 1, 88836605}}) {
        int32_t word = run.seed, plainWord = run.seed;
        int64_t differences = 0, restarts = -1, negatives = 0;
        for (int32_t n = 0; n < run.draws; ++n) {
            restarts += word <= 0;
            const float value = ran2(&word);
            differences += n < 3 && value != Scaled(run.first[n]);
            differences += value != definition::UniformDeviate(&plainWord) || word != plainWord;
            differences += value == 0 || value > 1;
            negatives += value < 0;
        }
        EXPECT_EQ(differences, 0) << run.seed;
        EXPECT_EQ(restarts, run.restarts);
        EXPECT_EQ(negatives, run.negatives);
        EXPECT_EQ(word, run.lastWord);
    }
}

// Odd counts leave the second deviate of a pair for the sequence after the next restart; the two
// generators keep theirs apart.
TEST(RandomNumbersTest, NormalDeviatesAndTheirSpares) {
    corvantis_test::DropSpareDeviate();
    corvantis_test::DropSpareDeviateOnRand();
    definition::DropSpareDeviates();
    unsigned seed = 4294967291u;
    for (const int count : {1, 2000, 7, 1, 30001}) {
        int32_t word = -count, plainWord = -count;
        for (int n = 0; n < count; ++n) {
            ASSERT_EQ(ITCNormalDeviate(&word), definition::NormalDeviate(&plainWord)) << n;
            ASSERT_EQ(word, plainWord);
        }
        for (int n = 0; n < count; n += 3) {
            std::srand(++seed);
            const float older = V4ITCNormalDeviate();
            const int next = std::rand();
            std::srand(seed);
            ASSERT_EQ(older, definition::OldNormalDeviate()) << n;
            ASSERT_EQ(next, std::rand());
        }
    }
}

TEST(RandomNumbersTest, SmallGeneratorGivesThePublishedSequence) {
    kr_srand(1);
    for (const uint32_t expected : {16838u, 5758u, 10113u, 17515u, 31051u, 5627u, 23010u, 7419u})
        EXPECT_EQ(kr_rand(), expected);
    uint64_t state = UINT32_MAX;
    kr_srand(UINT32_MAX);
    for (int n = 0; n < 100; ++n) {
        state = (state * 1103515245 + 12345) % 4294967296;
        ASSERT_EQ(kr_rand(), state / 65536 % 32768);
    }
}

}  // namespace
