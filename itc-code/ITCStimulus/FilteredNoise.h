// The two generations of filtered noise; the current file's version decides which one is meant.
#pragma once

#include <cstdint>

#include "Corvantis.h"

namespace corvantis {

// A moving average of white noise, as files up to version 4 were recorded with.
int32_t CreateSmoothedNoise(uint16_t* buffer, const ITCNoiseParameters& record);
// White noise shaped in the frequency domain, as newer files are recorded with.
int32_t CreateSpectralNoise(uint16_t* buffer, const ITCNoiseParameters& record);

}  // namespace corvantis
