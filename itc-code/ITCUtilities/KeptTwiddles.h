// Twiddle factors that stay from one Fourier transform to the next: waiting for their recurrence
// would else be a third of a transform's time.
#pragma once

#include <cstddef>
#include <cstdint>

namespace corvantis {

// Points of a block within which the stages' factors are kept one by one.
inline constexpr size_t kTransformBlock = 2048;

struct Factors {
    const double* real;
    const double* imaginary;
};

// The stage that combines transforms of `half` points has its factors from entry `half` on; the
// first entry is nobody's, and the long stages lie on whole cache lines for it.
struct BlockTwiddles {
    explicit BlockTwiddles(int32_t isign);
    Factors Of(size_t half) const { return {real + half, imaginary + half}; }
    alignas(64) double real[kTransformBlock];
    alignas(64) double imaginary[kTransformBlock];
};

// Places in the recurrence of a stage beyond a block, at equal distances, from which it can go on.
struct StageStarts {
    static constexpr size_t kCount = 16;
    StageStarts() = default;
    StageStarts(int32_t isign, size_t half);
    double real[kCount];
    double imaginary[kCount];
    double stepReal;
    double stepImaginary;
};

// Calculated at the first call for their direction and length.
const BlockTwiddles& KeptBlockTwiddles(bool forward);
const StageStarts& KeptStageStarts(bool forward, size_t half);

}  // namespace corvantis
