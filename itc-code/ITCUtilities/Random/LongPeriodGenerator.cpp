// The long-period generator: two congruential generators, whose difference comes out of a table
// shuffled by the output before.
#include "ITCUtilities/Random/LongPeriodGenerator.h"

#include "ITCUtilities/WrappingArithmetic.h"

namespace corvantis {
namespace {

// One multiplicative congruential generator, computed by Schrage's factorisation of its modulus.
struct Congruential {
    int32_t multiplier;
    int32_t quotient;
    int32_t remainder;
    uint32_t modulus;

    // The modulus that the factorisation is of, 100,000 below the one that is added.
    constexpr uint32_t FactoredModulus() const {
        return static_cast<uint32_t>(multiplier * quotient + remainder);
    }
};

// The moduli lie beyond 31 bits: adding one wraps some states to negative, on which the sequence of
// every recorded noise depends.
constexpr Congruential kFirst = {40014, 53668, 12211, 2147583563u};
constexpr Congruential kSecond = {40692, 52774, 3791, 2147583399u};
constexpr uint32_t kLargestOutput = kFirst.modulus - 1;
constexpr int32_t kTableSize = LongPeriodState::kTableSize;
constexpr uint32_t kTableDivisor = 1 + kLargestOutput / kTableSize;
constexpr int32_t kWarmUp = 32;

// Quotients of numbers below 2^31 by multiplication with (2^shift + e) / divisor, exact as long as
// 2^31 * e < 2^shift; e is at most the divisor.
template <uint32_t Divisor, int Shift>
uint32_t DividePositive(uint32_t number) {
    constexpr uint64_t kFactor = (uint64_t{1} << Shift) / Divisor + 1;
    static_assert((uint64_t{Divisor} << 31) < uint64_t{1} << Shift && kFactor >> 32 == 0);
    return static_cast<uint32_t>(number * kFactor >> Shift);
}

// A generator's step for a state that is not negative. The sign chooses by a mask: as a branch it
// would be guessed wrong every so often.
template <const Congruential& Generator>
int32_t StepPositive(int32_t state) {
    constexpr auto kMultiplier = static_cast<uint32_t>(Generator.multiplier);
    const auto number = static_cast<uint32_t>(state);
    const uint32_t k = DividePositive<Generator.quotient, 47>(number);
    const uint32_t result = kMultiplier * number - k * Generator.FactoredModulus();
    const auto mask = static_cast<uint32_t>(static_cast<int32_t>(result) >> 31);
    return static_cast<int32_t>(result + (Generator.modulus & mask));
}

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

void Restart(LongPeriodState& state, int32_t& word) {
    word = WrappingNegate(word);
    if (word <= 0) word = 1;
    state.idum2 = word;
    for (int32_t j = kTableSize + kWarmUp; j >= 0; --j) {
        word = Step<kFirst>(word);
        if (j < kTableSize) state.iv[j] = word;
    }
    state.iy = state.iv[0];
}

// As unsigned numbers all states are at most kLargestOutput + 1, and so is a difference that had
// the modulus added: the index never reaches the table's size.
int32_t Shuffle(LongPeriodState& state, int32_t word) {
    const uint32_t j = static_cast<uint32_t>(state.iy) / kTableDivisor;
    state.iy = WrappingSubtract(state.iv[j], state.idum2);
    state.iv[j] = word;
    if (state.iy < 1) state.iy = AddModulus(state.iy, kLargestOutput);
    return state.iy;
}

float ToDeviate(int32_t output) {
    const float deviate = static_cast<float>(output * 4.656396227037057e-10);
    return deviate > 1.0F ? 1.0F : deviate;
}

// Draws one after the other, with the states in registers while none is negative, which one in some
// 10,000 is: then the latency of their steps is all that is waited for, and what the caller does
// with the numbers takes no time of its own.
class UniformRun {
  public:
    UniformRun(LongPeriodState& state, int32_t& word) : state_(state), word_(word) { Load(); }
    UniformRun(const UniformRun&) = delete;
    UniformRun& operator=(const UniformRun&) = delete;
    ~UniformRun() { Store(); }

    float Next() {
        if (first_ <= 0 || (second_ | output_) < 0) [[unlikely]] {
            Store();
            const float deviate = DrawUniformDeviate(state_, word_);
            Load();
            return deviate;
        }
        first_ = StepPositive<kFirst>(first_);
        second_ = StepPositive<kSecond>(second_);
        const uint32_t index = DividePositive<kTableDivisor, 53>(static_cast<uint32_t>(output_));
        const int32_t entry = state_.iv[index];
        const int32_t difference = WrappingSubtract(entry, second_);
        const int32_t lowered = WrappingSubtract(second_, static_cast<int32_t>(kLargestOutput));
        const int32_t raised = WrappingSubtract(entry, lowered);
        state_.iv[index] = first_;
        output_ = difference < 1 ? raised : difference;
        return ToDeviate(output_);
    }

  private:
    void Load() {
        first_ = word_;
        second_ = state_.idum2;
        output_ = state_.iy;
    }
    void Store() {
        word_ = first_;
        state_.idum2 = second_;
        state_.iy = output_;
    }

    LongPeriodState& state_;
    int32_t& word_;
    int32_t first_;
    int32_t second_;
    int32_t output_;
};

}  // namespace

float DrawUniformDeviate(LongPeriodState& state, int32_t& word) {
    if (word <= 0) Restart(state, word);
    word = Step<kFirst>(word);
    state.idum2 = Step<kSecond>(state.idum2);
    return ToDeviate(Shuffle(state, word));
}

void DrawUniformDeviates(LongPeriodState& state, int32_t& word, std::span<float> deviates) {
    UniformRun run(state, word);
    for (float& deviate : deviates) deviate = run.Next();
}

}  // namespace corvantis
