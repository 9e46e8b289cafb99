// The recurrence of the twiddle factors from eight of its places at once, each a lane of a vector.
#pragma once

#include <cstddef>
#include <cstring>

#include "ITCUtilities/KeptTwiddles.h"

namespace corvantis {

inline constexpr size_t kLanes = 8;
// Factors of each lane that are calculated ahead of their use.
inline constexpr size_t kChunk = 64;

using Lanes __attribute__((vector_size(8 * kLanes))) = double;

// The next twiddle factors of each lane, which are as many parts of one recurrence side by side.
struct Chunk {
    double real[kLanes][kChunk];
    double imaginary[kLanes][kChunk];
    Factors Of(size_t lane) const { return {real[lane], imaginary[lane]}; }
};

// Makes lane i of row k of lane k of row i.
inline void Transpose(Lanes (&rows)[kLanes]) {
    for (size_t i = 0; i < 4; ++i) {
        const Lanes a = rows[i];
        const Lanes b = rows[i + 4];
        rows[i] = __builtin_shufflevector(a, b, 0, 1, 2, 3, 8, 9, 10, 11);
        rows[i + 4] = __builtin_shufflevector(a, b, 4, 5, 6, 7, 12, 13, 14, 15);
    }
    for (const size_t i : {size_t{0}, size_t{1}, size_t{4}, size_t{5}}) {
        const Lanes a = rows[i];
        const Lanes b = rows[i + 2];
        rows[i] = __builtin_shufflevector(a, b, 0, 1, 8, 9, 4, 5, 12, 13);
        rows[i + 2] = __builtin_shufflevector(a, b, 2, 3, 10, 11, 6, 7, 14, 15);
    }
    for (size_t i = 0; i < kLanes; i += 2) {
        const Lanes a = rows[i];
        const Lanes b = rows[i + 1];
        rows[i] = __builtin_shufflevector(a, b, 0, 8, 2, 10, 4, 12, 6, 14);
        rows[i + 1] = __builtin_shufflevector(a, b, 1, 9, 3, 11, 5, 13, 7, 15);
    }
}

struct LaneTwiddles {
    LaneTwiddles(const StageStarts& starts, size_t first, size_t distance)
        : stepReal(starts.stepReal), stepImaginary(starts.stepImaginary) {
        for (size_t lane = 0; lane < kLanes; ++lane) {
            real[lane] = starts.real[first + distance * lane];
            imaginary[lane] = starts.imaginary[first + distance * lane];
        }
    }
    // The next eight of each lane.
    inline void Take(Chunk& chunk, size_t i) {
        Lanes reals[kLanes];
        Lanes imaginaries[kLanes];
        for (size_t k = 0; k < kLanes; ++k) {
            reals[k] = real;
            imaginaries[k] = imaginary;
            real = real + (real * stepReal - imaginary * stepImaginary);
            imaginary = imaginary + (imaginary * stepReal + reals[k] * stepImaginary);
        }
        Transpose(reals);
        Transpose(imaginaries);
        for (size_t lane = 0; lane < kLanes; ++lane) {
            std::memcpy(chunk.real[lane] + i, &reals[lane], sizeof(Lanes));
            std::memcpy(chunk.imaginary[lane] + i, &imaginaries[lane], sizeof(Lanes));
        }
    }
    Lanes real;
    Lanes imaginary;
    double stepReal;
    double stepImaginary;
};

}  // namespace corvantis
