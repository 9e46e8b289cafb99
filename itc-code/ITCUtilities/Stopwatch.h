// The stopwatch's elapsed time, computed from given instants.
#pragma once

#include <sys/time.h>

#include <cstdint>

namespace corvantis {

// Milliseconds from y to x in 32-bit arithmetic, which wraps beyond 2147 s; y is rebalanced in
// place.
int32_t ElapsedMilliseconds(const timeval& x, timeval& y);

}  // namespace corvantis
