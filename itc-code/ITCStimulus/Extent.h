// Whether a record's waveform stays within a buffer of a known size.
#pragma once

#include <cstdint>

namespace corvantis {

// True also for a type that has no waveform: its calculation writes nothing.
bool StaysWithin(uint32_t type, const void* params, int64_t bufferPoints);

}  // namespace corvantis
