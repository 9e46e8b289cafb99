// Elapsed milliseconds between given instants, and the stopwatch on the wall clock.
#include "ITCUtilities/Stopwatch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>

#include "Corvantis.h"

namespace {

// In seconds and microseconds; subtracting moves whole seconds between the two of the earlier time.
struct Case {
    timeval later, earlier;
    int32_t milliseconds;
    timeval moved;
};
// The clock was set back by 1.5 ms: toward zero. A second is not above a second. 2^31
// microseconds are -2^31, 2 * 10^15 are taken modulo 2^32.
const Case kCases[] = {
    {{11, 1000}, {10, 999990}, 1, {11, -10}},     {{5, 999999}, {5, 0}, 999, {5, 0}},
    {{10, 0}, {10, 1500}, -1, {11, -998500}},     {{1, 1000000}, {0, 0}, 2000, {0, 0}},
    {{10, 0}, {2, 3000000}, 5000, {6, -1000000}}, {{2157, 483648}, {10, 0}, -2147483, {10, 0}},
    {{2000000000, 0}, {0, 0}, 1233977, {0, 0}}};

TEST(Stopwatch, ElapsedMillisecondsAndSubtractedTimeValues) {
    for (const Case& each : kCases) {
        timeval start = each.earlier, y = each.earlier, difference = {};
        EXPECT_EQ(corvantis::ElapsedMilliseconds(each.later, start), each.milliseconds);
        EXPECT_EQ(timeval_subtract(&difference, &each.later, &y),
                  each.later.tv_sec < each.moved.tv_sec);
        EXPECT_TRUE(y.tv_sec == each.moved.tv_sec && y.tv_usec == each.moved.tv_usec);
        EXPECT_EQ(difference.tv_sec, each.later.tv_sec - each.moved.tv_sec);
        EXPECT_EQ(difference.tv_usec, each.later.tv_usec - each.moved.tv_usec);
    }
}

// Within the time that the calls take, seen from around them, in milliseconds rounded up.
TEST(Stopwatch, WaitsAsLongAsItSays) {
    using Clock = std::chrono::system_clock;
    for (const int32_t wait : {8, 1, 0, -3}) {
        const auto before = Clock::now();
        ASSERT_EQ(ITCStartMsecTimer(), 0);
        const auto waited = static_cast<int32_t>(ITCWaitMsec(wait));
        const int32_t read = ITCReadMsecTimer();
        EXPECT_TRUE(wait <= waited && waited <= read);
        EXPECT_LE(std::chrono::milliseconds(read - 1), Clock::now() - before);
    }
}

}  // namespace
