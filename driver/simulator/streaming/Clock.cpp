// The system's monotonic clock, and the one moved by hand.
#include "simulator/streaming/Clock.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace itc18 {
namespace {

using Microseconds = std::chrono::microseconds;

int64_t SystemTime() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<Microseconds>(now).count();
}

}  // namespace

int64_t ClockNow() { return timeByHand ? *timeByHand : SystemTime(); }

void SleepUntil(int64_t time) {
    if (timeByHand)
        timeByHand = std::max(*timeByHand, time);
    else
        std::this_thread::sleep_for(Microseconds(time - SystemTime()));
}

void AdvanceClock(int64_t microseconds) { timeByHand = ClockNow() + microseconds; }

}  // namespace itc18
