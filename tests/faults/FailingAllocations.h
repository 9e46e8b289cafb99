// Takes the place of the library's allocation pair in this program: counts the blocks and bytes
// that are alive and lets one allocation fail.
#pragma once

#include <cstdint>

namespace corvantis_test {

// Let the allocation with this number, counted from 1 from now on, fail; 0 lets all succeed.
void FailAllocation(int64_t number);
// Whether the allocation that was to fail has been asked for.
bool AllocationFailed();
int64_t LiveBlocks();
// The largest number of bytes that were alive at once since the peak was started, from those alive
// then on.
void StartPeak();
int64_t PeakBytes();

}  // namespace corvantis_test
