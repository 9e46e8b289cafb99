// Interleaving and splitting for 1 to 4 entries, which every sequence of the device has: loops with
// a fixed number of entries can be vectorised.
#pragma once

#include <cstdint>

namespace corvantis {

// At least one point; no array shares memory with the stream or another array.
void InterleaveFixed(uint16_t* interleaved, uint16_t* const* perEntry, int32_t entries,
                     int32_t points);
void SplitFixed(const uint16_t* interleaved, uint16_t* const* perEntry, int32_t entries,
                int32_t points);

}  // namespace corvantis
