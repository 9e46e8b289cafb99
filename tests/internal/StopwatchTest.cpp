// Elapsed milliseconds between given instants, and the stopwatch on the wall clock.
#include "ITCUtilities/Stopwatch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>

#include "Corvantis.h"

namespace {

// Seconds and microseconds.
struct Case {
    timeval later, earlier;
    int32_t expected;
    timeval moved = {};  // whole seconds between the two parts of the earlier instant
};

TEST(Stopwatch, ElapsedMilliseconds) {
    for (const Case& each : {
             Case{{11, 5}, {10, 999990}, 0}, Case{{11, 1000}, {10, 999990}, 1},
             Case{{5, 999999}, {5, 0}, 999}, Case{{12, 0}, {10, 500}, 1999},
             Case{{10, 0}, {10, 1500}, -1},  // the clock was set back: toward zero
             Case{{2157, 483647}, {10, 0}, 2147483},
             Case{{2157, 483648}, {10, 0}, -2147483},  // 2^31 microseconds are -2^31
             Case{{2000000000, 0}, {0, 0}, 1233977},   // 2 * 10^15 modulo 2^32 microseconds
         }) {
        timeval start = each.earlier;
        for (const char* reading : {"first", "second"})
            EXPECT_EQ(corvantis::ElapsedMilliseconds(each.later, start), each.expected) << reading;
    }
}

TEST(Stopwatch, SubtractedTimeValues) {
    for (const Case& each : {
             Case{{11, 5}, {10, 999990}, 0, {11, -10}},
             Case{{4, 900000}, {5, 100000}, 1, {5, 100000}},
             Case{{3, 0}, {3, 1}, 1, {4, -999999}},
             Case{{1, 1000000}, {0, 0}, 0, {0, 0}},  // a second, and not above it
             Case{{10, 0}, {2, 3000000}, 0, {6, -1000000}},
         }) {
        timeval y = each.earlier, difference = {};
        EXPECT_EQ(timeval_subtract(&difference, &each.later, &y), each.expected);
        EXPECT_TRUE(y.tv_sec == each.moved.tv_sec && y.tv_usec == each.moved.tv_usec);
        EXPECT_EQ(difference.tv_sec, each.later.tv_sec - y.tv_sec);
        EXPECT_EQ(difference.tv_usec, each.later.tv_usec - y.tv_usec);
    }
}

// Within the time that the calls take, seen from around them, in milliseconds rounded up.
TEST(Stopwatch, WaitsAsLongAsItSaysAndStartsTheStopwatchAnew) {
    using Clock = std::chrono::system_clock;
    for (const int32_t wait : {8, 1, 0, -3}) {
        const auto before = Clock::now();
        ASSERT_EQ(ITCStartMsecTimer(), 0);
        const auto waited = static_cast<int32_t>(ITCWaitMsec(wait));
        const int32_t read = ITCReadMsecTimer();
        const auto middle = Clock::now();
        EXPECT_TRUE(wait <= waited && waited <= read);
        EXPECT_LE(std::chrono::milliseconds(read - 1), middle - before);
        const auto none = static_cast<int32_t>(ITCWaitMsec(0));
        EXPECT_TRUE(0 <= none && std::chrono::milliseconds(none - 1) <= Clock::now() - middle);
    }
}

}  // namespace
