// The clock that real-time pacing goes by: the system's monotonic one, or one moved by hand.
#pragma once

#include <cstdint>
#include <optional>

namespace itc18 {

// What a clock moved by hand shows [µs]; nothing: it is the system's.
inline std::optional<int64_t> timeByHand;

// [µs] from anywhere; never goes back, but when the clock is changed.
int64_t ClockNow();

// Returns when the clock shows that time. A clock moved by hand is set to it.
void SleepUntil(int64_t time);

// From the first of these calls on, the clock is moved by hand.
void AdvanceClock(int64_t microseconds);

}  // namespace itc18
