// Twiddle factors that stay from one Fourier transform to the next: waiting for their recurrence
// would else be most of a transform's time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ITCUtilities/Fourier/PointRows.h"

namespace corvantis {

// Points of a block within which the stages' factors are kept one by one.
inline constexpr size_t kTransformBlock = 1024;
// Parts of a longer transform that one pass combines at most.
inline constexpr size_t kMostRows = 64;

// The stage that combines transforms of `half` points has its factors from entry `half` on, eight
// to a row; the first entry is nobody's.
struct BlockTwiddles {
    explicit BlockTwiddles(int32_t isign);
    FactorRow rows[kTransformBlock / kLanes];
};

// Places in the recurrence of a stage beyond a block, at equal distances, from which it can go on.
struct StageStarts {
    static constexpr size_t kCount = kMostRows / 2;
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
