// The epochs of the data file: between them they hold every stimulus type that has an encoding.
#pragma once

#include <cstdint>

#include "Report.h"

namespace exactness {

inline constexpr int32_t kEpochs = 4;

// Sets the current header and slots to the epoch of that number.
void SetUpEpoch(int32_t epoch);
// Generic and circle pulse are stored without a waveform.
constexpr bool IsComputable(int32_t epoch) { return epoch != 1; }
// The epoch's stimulus as the device would get it, interleaved.
Samples Outputs();

}  // namespace exactness
