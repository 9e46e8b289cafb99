// The long-period generator behind ran2: its constants, its state, and long runs of draws.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ITCUtilities/WrappingArithmetic.h"

namespace corvantis {

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
inline constexpr Congruential kFirst = {40014, 53668, 12211, 2147583563u};
inline constexpr Congruential kSecond = {40692, 52774, 3791, 2147583399u};
inline constexpr uint32_t kLargestOutput = kFirst.modulus - 1;
inline constexpr int32_t kTableSize = 1024;
inline constexpr uint32_t kTableDivisor = 1 + kLargestOutput / kTableSize;

// Where registers take 64 bits, long runs go on from products of the table's entries with this
// unit.
inline constexpr bool kHasWideRegisters = sizeof(void*) >= sizeof(uint64_t);
inline constexpr uint64_t kOutputUnit = ~uint64_t{0} / kLargestOutput;

// The state of the first generator is the caller's; this is the rest. Both tables hold the same.
struct LongPeriodState {
    int32_t idum2 = 123456789;
    int32_t iv[kTableSize] = {};
    int32_t iy = 0;
    uint64_t scaled[kHasWideRegisters ? kTableSize : 1] = {};

    void SetEntry(size_t j, int32_t state) {
        iv[j] = state;
        if constexpr (kHasWideRegisters) scaled[j] = static_cast<uint32_t>(state) * kOutputUnit;
    }
};
extern LongPeriodState longPeriod;

inline float ToDeviate(int32_t output) {
    const float deviate = static_cast<float>(output * 4.656396227037057e-10);
    return deviate > 1.0F ? 1.0F : deviate;
}

// One draw, which restarts the generator for a state that is not positive.
float NextDeviate(int32_t& state);

// The factor (2^shift + e) / divisor. Quotients of numbers below 2^31 by multiplication with it are
// exact as long as 2^31 * e < 2^shift, and e is at most the divisor.
template <uint32_t Divisor, int Shift>
constexpr uint64_t Reciprocal() {
    constexpr uint64_t kFactor = (uint64_t{1} << Shift) / Divisor + 1;
    static_assert((uint64_t{Divisor} << 31) < uint64_t{1} << Shift && kFactor >> 32 == 0);
    return kFactor;
}

template <uint32_t Divisor, int Shift>
uint32_t DividePositive(uint32_t number) {
    return static_cast<uint32_t>(number * Reciprocal<Divisor, Shift>() >> Shift);
}

inline constexpr int kQuotientShift = 47;

// A generator's step for a state that is not negative. The sign chooses by a mask: as a branch it
// would be guessed wrong every so often.
template <const Congruential& Generator>
int32_t StepPositive(int32_t state) {
    constexpr auto kMultiplier = static_cast<uint32_t>(Generator.multiplier);
    const auto number = static_cast<uint32_t>(state);
    const uint32_t k = DividePositive<Generator.quotient, kQuotientShift>(number);
    const uint32_t result = kMultiplier * number - k * Generator.FactoredModulus();
    const auto mask = static_cast<uint32_t>(static_cast<int32_t>(result) >> 31);
    return static_cast<int32_t>(result + (Generator.modulus & mask));
}

// Draws one after the other, with the states in registers while none is negative, which one in some
// 10,000 is: then the latency of their steps is all that is waited for, and what the caller does
// with the numbers takes no time of its own.
class UniformRun {
  public:
    explicit UniformRun(int32_t& state) : state_(state) { Load(); }
    UniformRun(const UniformRun&) = delete;
    UniformRun& operator=(const UniformRun&) = delete;
    ~UniformRun() { Store(); }

    float Next() {
        if (first_ <= 0 || (second_ | output_) < 0) [[unlikely]] {
            Store();
            const float deviate = NextDeviate(state_);
            Load();
            return deviate;
        }
        first_ = StepPositive<kFirst>(first_);
        second_ = StepPositive<kSecond>(second_);
        const uint32_t index = DividePositive<kTableDivisor, 53>(static_cast<uint32_t>(output_));
        const int32_t entry = longPeriod.iv[index];
        const int32_t difference = WrappingSubtract(entry, second_);
        const int32_t lowered = WrappingSubtract(second_, static_cast<int32_t>(kLargestOutput));
        const int32_t raised = WrappingSubtract(entry, lowered);
        longPeriod.SetEntry(index, first_);
        output_ = difference < 1 ? raised : difference;
        return ToDeviate(output_);
    }

  private:
    void Load() {
        first_ = state_;
        second_ = longPeriod.idum2;
        output_ = longPeriod.iy;
    }
    void Store() {
        state_ = first_;
        longPeriod.idum2 = second_;
        longPeriod.iy = output_;
    }

    int32_t& state_;
    int32_t first_;
    int32_t second_;
    int32_t output_;
};

}  // namespace corvantis
