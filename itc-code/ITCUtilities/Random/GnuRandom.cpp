// Seeding and stepping the additive generator.
#include "ITCUtilities/Random/GnuRandom.h"

namespace corvantis {
namespace {

constexpr int64_t kMultiplier = 16807;  // of the generator that the words are seeded by
constexpr int64_t kModulus = 2147483647;
constexpr int kWarmUp = 310;

}  // namespace

int32_t GnuRandom::Draw() {
    uint32_t& word = words_[next_];
    word += words_[(next_ + kWords - kLag) % kWords];
    next_ = (next_ + 1) % kWords;
    return static_cast<int32_t>(word >> 1);
}

// Of a negative seed the remainder is taken towards zero, then made positive.
void GnuRandom::SeedWords(uint32_t seed) {
    int64_t word = seed == 0 ? 1 : static_cast<int32_t>(seed);
    for (uint32_t& each : words_) {
        each = static_cast<uint32_t>(word);
        word = kMultiplier * word % kModulus;
        if (word < 0) word += kModulus;
    }
    next_ = kLag;
    for (int i = 0; i < kWarmUp; ++i) Draw();
}

}  // namespace corvantis
