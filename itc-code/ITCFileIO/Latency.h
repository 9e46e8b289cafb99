// The dynamic-clamp latency of files that are older than its field.
#pragma once

#include <cstdint>

#include "Corvantis.h"

namespace corvantis {

// Puts it in place of what the file holds there, if files of the version have no such field.
void RestoreLatency(ITCEpochHeader& header, int32_t version);

}  // namespace corvantis
