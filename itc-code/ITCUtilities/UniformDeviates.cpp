// The uniform generators: ran2 with its restart, and the small congruential one for callers.
#include "Corvantis.h"
#include "ITCUtilities/BulkDeviates.h"
#include "ITCUtilities/WrappingArithmetic.h"

namespace corvantis {
namespace {

// One multiplicative congruential generator, computed by Schrage's factorisation of its modulus.
struct Congruential {
    int32_t multiplier;
    int32_t quotient;
    int32_t remainder;
    uint32_t modulus;
};

// The moduli lie beyond 31 bits: adding one wraps some states to negative, on which the sequence of
// every recorded noise depends.
constexpr Congruential kFirst = {40014, 53668, 12211, 2147583563u};
constexpr Congruential kSecond = {40692, 52774, 3791, 2147583399u};
constexpr uint32_t kLargestOutput = kFirst.modulus - 1;
constexpr int32_t kTableSize = 1024;
constexpr int32_t kWarmUp = 32;
constexpr uint32_t kTableDivisor = 1 + kLargestOutput / kTableSize;
constexpr double kToUnit = 4.656396227037057e-10;
constexpr float kLargestDeviate = 1.0F;

int32_t idum2 = 123456789;
int32_t iv[kTableSize];
int32_t iy = 0;
uint32_t next = 1;

int32_t AddModulus(int32_t value, uint32_t modulus) {
    return WrappingAdd(value, static_cast<int32_t>(modulus));
}

int32_t LowerByModulus(int32_t value, uint32_t modulus) {
    return WrappingSubtract(value, static_cast<int32_t>(modulus));
}

int32_t Step(const Congruential& generator, int32_t state) {
    const int32_t k = state / generator.quotient;
    const int32_t low = WrappingSubtract(state, WrappingMultiply(k, generator.quotient));
    const int32_t result = WrappingSubtract(WrappingMultiply(generator.multiplier, low),
                                            WrappingMultiply(k, generator.remainder));
    return result < 0 ? AddModulus(result, generator.modulus) : result;
}

void Restart(int32_t& state) {
    state = WrappingNegate(state);
    if (state <= 0) state = 1;
    idum2 = state;
    for (int32_t j = kTableSize + kWarmUp; j >= 0; --j) {
        state = Step(kFirst, state);
        if (j < kTableSize) iv[j] = state;
    }
    iy = iv[0];
}

// As unsigned numbers all states are at most kLargestOutput + 1, and so is a difference that had
// the modulus added: the index never reaches the table's size.
int32_t Shuffle(int32_t state) {
    const uint32_t j = static_cast<uint32_t>(iy) / kTableDivisor;
    iy = WrappingSubtract(iv[j], idum2);
    iv[j] = state;
    if (iy < 1) iy = AddModulus(iy, kLargestOutput);
    return iy;
}

float NextDeviate(int32_t& state) {
    if (state <= 0) Restart(state);
    state = Step(kFirst, state);
    idum2 = Step(kSecond, idum2);
    const float deviate = static_cast<float>(Shuffle(state) * kToUnit);
    return deviate > kLargestDeviate ? kLargestDeviate : deviate;
}

// Quotients of numbers below 2^31 by multiplication: with the factor (2^shift + e) / divisor, the
// quotient is exact as long as 2^31 * e < 2^shift, and e is at most the divisor.
template <uint32_t Divisor, int Shift>
uint32_t DividePositive(uint32_t number) {
    constexpr uint64_t kFactor = (uint64_t{1} << Shift) / Divisor + 1;
    static_assert((uint64_t{Divisor} << 31) < uint64_t{1} << Shift && kFactor >> 32 == 0);
    return static_cast<uint32_t>(number * kFactor >> Shift);
}

// The same step for a state that is not negative. The sign chooses by a mask: as a branch it would
// be guessed wrong every so often.
template <const Congruential& Generator>
int32_t StepPositive(int32_t state) {
    constexpr auto kMultiplier = static_cast<uint32_t>(Generator.multiplier);
    constexpr auto kQuotient = static_cast<uint32_t>(Generator.quotient);
    constexpr uint32_t kStep = kMultiplier * kQuotient + static_cast<uint32_t>(Generator.remainder);
    const auto number = static_cast<uint32_t>(state);
    const uint32_t result = kMultiplier * number - DividePositive<kQuotient, 47>(number) * kStep;
    const auto mask = static_cast<uint32_t>(static_cast<int32_t>(result) >> 31);
    return static_cast<int32_t>(result + (Generator.modulus & mask));
}

// Deviates as long as no state is negative, which one in some 10,000 is; returns how many. The
// states stay in registers, so that the latency of their steps is all that is waited for.
size_t DrawWhilePositive(int32_t& state, std::span<float> deviates) {
    int32_t first = state;
    int32_t second = idum2;
    int32_t output = iy;
    size_t drawn = 0;
    for (; drawn < deviates.size() && first > 0 && (second | output) >= 0; ++drawn) {
        first = StepPositive<kFirst>(first);
        second = StepPositive<kSecond>(second);
        int32_t& entry = iv[DividePositive<kTableDivisor, 53>(static_cast<uint32_t>(output))];
        const int32_t difference = WrappingSubtract(entry, second);
        const int32_t raised = WrappingSubtract(entry, LowerByModulus(second, kLargestOutput));
        entry = first;
        output = difference < 1 ? raised : difference;
        const float deviate = static_cast<float>(output * kToUnit);
        deviates[drawn] = deviate > kLargestDeviate ? kLargestDeviate : deviate;
    }
    state = first;
    idum2 = second;
    iy = output;
    return drawn;
}

}  // namespace

void DrawUniformDeviates(int32_t& state, std::span<float> deviates) {
    while (!deviates.empty()) {
        deviates = deviates.subspan(DrawWhilePositive(state, deviates));
        if (deviates.empty()) return;
        deviates[0] = NextDeviate(state);
        deviates = deviates.subspan(1);
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
