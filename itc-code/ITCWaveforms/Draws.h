// The random numbers that a record's noise draws: what later noise goes on behind.
#pragma once

#include <cstdint>

#include "Corvantis.h"

namespace corvantis {

enum class Deviates { kNone, kUniform, kNormal, kOldNormal };

// Behind a restart, or a continuation, with the record's seed; without deviates not even that.
struct Draws {
    Deviates deviates = Deviates::kNone;
    int32_t seed = 0;
    int64_t count = 0;
};

Draws DrawsOf(const ITCNoiseParameters& record, int8_t version);
Draws DrawsOf(const ITCSegmentedNoiseParameters& record);
Draws DrawsOf(const ITCBinaryNoiseParameters& record);

// Noise of files up to this version has its numbers from the older generator.
inline constexpr int8_t kLastVersionWithOldNoise = 4;

}  // namespace corvantis
