// A stimulus in words.
#pragma once

#include <cstdint>
#include <string>

#include "epochs/EpochLayout.h"
#include "units/Scale.h"

namespace corvantis::reading {

// Such as "pulse 100 pA on -40 pA, 500 ms after 100 ms". `scale` is that of its entry's stimulus,
// `interval` the epoch's sampling interval [µs].
std::string StimulusWords(const Stimulus& stimulus, const Scale& scale, int32_t interval);

}  // namespace corvantis::reading
