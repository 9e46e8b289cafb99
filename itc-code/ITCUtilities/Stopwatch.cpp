// The millisecond stopwatch and the busy wait on the wall clock.
#include "ITCUtilities/Stopwatch.h"

#include "Corvantis.h"
#include "ITCUtilities/WrappingArithmetic.h"

namespace corvantis {
namespace {

constexpr int32_t kMicrosecondsPerSecond = 1000000;

timeval microTicksStart;
timeval microTicks;

// Move whole seconds between y's two parts until the microseconds can be subtracted from x's.
void Rebalance(const timeval& x, timeval& y) {
    if (x.tv_usec < y.tv_usec) {
        const auto seconds = (y.tv_usec - x.tv_usec) / kMicrosecondsPerSecond + 1;
        y.tv_usec -= kMicrosecondsPerSecond * seconds;
        y.tv_sec += seconds;
    }
    if (x.tv_usec - y.tv_usec > kMicrosecondsPerSecond) {
        const auto seconds = (x.tv_usec - y.tv_usec) / kMicrosecondsPerSecond;
        y.tv_usec += kMicrosecondsPerSecond * seconds;
        y.tv_sec -= seconds;
    }
}

int32_t ReadStopwatch() {
    gettimeofday(&microTicks, nullptr);
    return ElapsedMilliseconds(microTicks, microTicksStart);
}

}  // namespace

int32_t ElapsedMilliseconds(const timeval& x, timeval& y) {
    Rebalance(x, y);
    const int32_t seconds = WrapToInt32(static_cast<uint64_t>(x.tv_sec - y.tv_sec));
    const int32_t microseconds = WrapToInt32(static_cast<uint64_t>(x.tv_usec - y.tv_usec));
    const int32_t whole = WrappingMultiply(seconds, kMicrosecondsPerSecond);
    return WrappingAdd(microseconds, whole) / 1000;
}

}  // namespace corvantis

int32_t ITCStartMsecTimer() { return gettimeofday(&corvantis::microTicksStart, nullptr); }

int32_t ITCReadMsecTimer() { return corvantis::ReadStopwatch(); }

uint32_t ITCWaitMsec(int32_t msec) {
    ITCStartMsecTimer();
    int32_t elapsed;
    do {
        elapsed = corvantis::ReadStopwatch();
    } while (elapsed < msec);
    return static_cast<uint32_t>(elapsed);
}

int32_t timeval_subtract(struct timeval* result, const struct timeval* x, struct timeval* y) {
    corvantis::Rebalance(*x, *y);
    result->tv_sec = x->tv_sec - y->tv_sec;
    result->tv_usec = x->tv_usec - y->tv_usec;
    return x->tv_sec < y->tv_sec ? 1 : 0;
}
