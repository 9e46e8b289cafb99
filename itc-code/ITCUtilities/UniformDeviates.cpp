// The uniform generators: ran2 with its restart, and the small congruential one for callers.
#include <algorithm>

#include "Corvantis.h"
#include "ITCUtilities/BulkDeviates.h"
#include "ITCUtilities/LongPeriodGenerator.h"
#include "ITCUtilities/ScaledRun.h"
#include "ITCUtilities/WrappingArithmetic.h"

namespace corvantis {
namespace {

constexpr int32_t kWarmUp = 32;

uint32_t next = 1;

int32_t AddModulus(int32_t value, uint32_t modulus) {
    return WrappingAdd(value, static_cast<int32_t>(modulus));
}

// Most states are not negative, and of those the step takes less.
template <const Congruential& Generator>
int32_t Step(int32_t state) {
    if (state >= 0) [[likely]]
        return StepPositive<Generator>(state);
    const int32_t k = state / Generator.quotient;
    const int32_t low = WrappingSubtract(state, WrappingMultiply(k, Generator.quotient));
    const int32_t result = WrappingSubtract(WrappingMultiply(Generator.multiplier, low),
                                            WrappingMultiply(k, Generator.remainder));
    return result < 0 ? AddModulus(result, Generator.modulus) : result;
}

void Restart(int32_t& state) {
    state = WrappingNegate(state);
    if (state <= 0) state = 1;
    longPeriod.idum2 = state;
    for (int32_t j = kTableSize + kWarmUp; j >= 0; --j) {
        state = Step<kFirst>(state);
        if (j < kTableSize) longPeriod.SetEntry(static_cast<size_t>(j), state);
    }
    longPeriod.iy = longPeriod.iv[0];
}

// As unsigned numbers all states are at most kLargestOutput + 1, and so is a difference that had
// the modulus added: the index never reaches the table's size.
int32_t Shuffle(int32_t state) {
    int32_t& iy = longPeriod.iy;
    const uint32_t j = static_cast<uint32_t>(iy) / kTableDivisor;
    iy = WrappingSubtract(longPeriod.iv[j], longPeriod.idum2);
    longPeriod.SetEntry(j, state);
    if (iy < 1) iy = AddModulus(iy, kLargestOutput);
    return iy;
}

}  // namespace

LongPeriodState longPeriod;

float NextDeviate(int32_t& state) {
    if (state <= 0) Restart(state);
    state = Step<kFirst>(state);
    longPeriod.idum2 = Step<kSecond>(longPeriod.idum2);
    return ToDeviate(Shuffle(state));
}

void DrawUniformDeviates(int32_t& state, std::span<float> deviates) {
    while (!deviates.empty()) {
        if constexpr (kHasWideRegisters) {
            deviates = deviates.subspan(DrawInBlocks(state, deviates));
        }
        const size_t most = kHasWideRegisters ? kBlockDraws : deviates.size();
        const size_t single = std::min(most, deviates.size());
        UniformRun run(state);
        for (float& deviate : deviates.first(single)) deviate = run.Next();
        deviates = deviates.subspan(single);
    }
}

}  // namespace corvantis

float ran2(int32_t* idum) { return corvantis::NextDeviate(*idum); }

float ITCSeedRandom(int32_t* idum) { return ran2(idum); }

uint32_t kr_rand() {
    corvantis::next = corvantis::next * 1103515245u + 12345u;
    return (corvantis::next >> 16) & 32767u;
}

void kr_srand(uint32_t seed) { corvantis::next = seed; }
