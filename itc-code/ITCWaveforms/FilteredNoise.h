// The two generations of filtered noise; the file's version decides which one is meant.
#pragma once

#include <cstdint>

#include "Corvantis.h"
#include "ITCUtilities/Random/NoiseGenerators.h"

namespace corvantis {

// A moving average of white noise, as files up to version 4 were recorded with.
int32_t CreateSmoothedNoise(uint16_t* buffer, const ITCNoiseParameters& record,
                            NoiseGenerators& generators);
// White noise shaped in the frequency domain, as newer files are recorded with.
int32_t CreateSpectralNoise(uint16_t* buffer, const ITCNoiseParameters& record,
                            int32_t samplingInterval, NoiseGenerators& generators);

inline constexpr int32_t kMostSpectralPoints = (1 << 30) - 1;
// The deviates that the newer method draws for so many points above 0.
int32_t TransformLength(int32_t points);

}  // namespace corvantis
