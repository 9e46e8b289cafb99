// The long-period uniform generator: single draws, and long runs of them.
#pragma once

#include <cstdint>
#include <span>

namespace corvantis {

// What is left between two draws. Each noise brings a state word of the first generator along; the
// rest goes on from one noise to the next, whoever draws.
struct LongPeriodState {
    static constexpr int32_t kTableSize = 1024;
    int32_t idum2 = 123456789;  // of the second generator
    int32_t iv[kTableSize] = {};
    int32_t iy = 0;  // the last output
};

// One deviate, above 0 and at most 1; a word of 0 or below restarts the generator from it.
float DrawUniformDeviate(LongPeriodState& state, int32_t& word);
// As many as there is room for, as by single draws.
void DrawUniformDeviates(LongPeriodState& state, int32_t& word, std::span<float> deviates);

}  // namespace corvantis
