// The library's random generators written a second time, in 64-bit arithmetic, and ways to bring
// the library's own generators, whose state outlives every test, to a known state.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <utility>

#include "Corvantis.h"

namespace corvantis_test {

// The value that a signed 32-bit word takes when it overflows.
inline int64_t Wrapped(int64_t value) {
    constexpr int64_t kRange = int64_t{1} << 32;
    const int64_t low = ((value % kRange) + kRange) % kRange;
    return low < kRange / 2 ? low : low - kRange;
}

// The uniform generator; a fresh object is in the state of a library just loaded.
class ReferenceRan2 {
  public:
    float Draw(int64_t& word) {
        if (word <= 0) Restart(word);
        word = FirstStep(word);
        second = Step(second, 40692, 2147483399, 52774, 2147583399);
        const int64_t magnitude = last < 0 ? last + (int64_t{1} << 32) : last;
        int64_t& entry = table.at(static_cast<size_t>(magnitude / 2097250 % 2048));
        last = Wrapped(entry - second);
        entry = word;
        if (last < 1) last = Wrapped(last + 2147583562);
        return static_cast<float>(static_cast<double>(last) * (1.0 / 2147583563.0));
    }

    int64_t restarts = 0;

  private:
    // Schrage's two products are one exact product less a multiple of the modulus they stand for,
    // which is another number than the one added to a negative remainder.
    static int64_t Step(int64_t word, int64_t multiplier, int64_t modulus, int64_t quotient,
                        int64_t addend) {
        const int64_t remainder = multiplier * word - word / quotient * modulus;
        return remainder < 0 ? Wrapped(remainder + addend) : remainder;
    }
    static int64_t FirstStep(int64_t word) {
        return Step(word, 40014, 2147483563, 53668, 2147583563);
    }
    void Restart(int64_t& word) {
        ++restarts;
        word = word == 0 || word == INT32_MIN ? 1 : -word;
        second = word;
        for (int skipped = 0; skipped < 33; ++skipped) word = FirstStep(word);
        for (size_t filled = table.size(); filled > 0; --filled)
            table[filled - 1] = word = FirstStep(word);
        last = table.front();
    }

    std::array<int64_t, 1024> table{};
    int64_t second = 123456789;
    int64_t last = 0;
};

// The polar method on any source of uniform numbers in -1 to 1.
class ReferenceNormal {
  public:
    template <class Uniform>
    float Draw(Uniform uniform) {
        if (spare) return *std::exchange(spare, std::nullopt);
        for (;;) {
            const float x1 = uniform();
            const float x2 = uniform();
            const float square = x1 * x1 + x2 * x2;
            if (square >= 1 || square == 0) continue;
            const double length = std::sqrt(-2.0 * std::log(double{square}) / double{square});
            spare = static_cast<float>(length) * x1;
            return static_cast<float>(length) * x2;
        }
    }
    float Draw(ReferenceRan2& generator, int64_t& word) {
        return Draw([&] { return static_cast<float>(2.0 * generator.Draw(word) - 1.0); });
    }
    float DrawOnRand() {
        return Draw([] { return static_cast<float>(2.0 * std::rand() / 2147483647.0 - 1.0); });
    }

  private:
    std::optional<float> spare;
};

// A held deviate leaves the state word as it is, a new pair restarts from it.
inline void DropSpareDeviate() {
    int32_t word = -1;
    ITCNormalDeviate(&word);
    if (word != -1) ITCNormalDeviate(&word);
}

inline void DropSpareDeviateOnRand() {
    std::srand(1);
    const int first = std::rand();
    std::srand(1);
    V4ITCNormalDeviate();
    if (std::rand() != first) V4ITCNormalDeviate();
}

}  // namespace corvantis_test
