// Runs of values copied with the bytes of each value in reverse order.
#pragma once

#include <cstddef>
#include <cstdint>

namespace corvantis {

// `count` values of 2 or 4 bytes, at any address; the runs do not overlap.
void CopyReversing2(uint8_t* to, const uint8_t* from, size_t count);
// In their place.
void Reverse2(uint8_t* bytes, size_t count);
void Reverse4(uint8_t* bytes, size_t count);
void CopyReversing4(uint8_t* to, const uint8_t* from, size_t count);

}  // namespace corvantis
