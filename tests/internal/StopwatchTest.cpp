// Elapsed milliseconds between given instants, and the stopwatch on the wall clock.
#include "ITCUtilities/Stopwatch.h"

#include <gtest/gtest.h>
#include <sys/time.h>

#include <chrono>
#include <cstdint>
#include <utility>

#include "Corvantis.h"

namespace {

using Instant = std::pair<int64_t, int64_t>;  // seconds and microseconds

timeval Value(const Instant& instant) {
    return {static_cast<time_t>(instant.first), static_cast<suseconds_t>(instant.second)};
}
Instant From(const timeval& value) { return {value.tv_sec, value.tv_usec}; }

TEST(Stopwatch, ElapsedMilliseconds) {
    struct Case {
        Instant later, start;
        int32_t milliseconds;
    };
    for (const Case& each : {
             Case{{11, 5}, {10, 999990}, 0}, Case{{11, 1000}, {10, 999990}, 1},
             Case{{5, 999999}, {5, 0}, 999}, Case{{12, 0}, {10, 500}, 1999},
             Case{{10, 0}, {10, 1500}, -1},  // the clock was set back: toward zero
             Case{{2157, 483647}, {10, 0}, 2147483},
             Case{{2157, 483648}, {10, 0}, -2147483},  // 2^31 microseconds are -2^31
             Case{{4304, 967296}, {10, 0}, 0},         // 2^32 microseconds
             Case{{2000000000, 0}, {0, 0}, 1233977},   // 2 * 10^15 modulo 2^32 microseconds
         }) {
        timeval start = Value(each.start);
        for (int reading = 0; reading < 2; ++reading) {
            EXPECT_EQ(corvantis::ElapsedMilliseconds(Value(each.later), start), each.milliseconds)
                << each.later.first << ", reading " << reading;
        }
        EXPECT_EQ(int64_t{start.tv_sec} * 1000000 + start.tv_usec,
                  each.start.first * 1000000 + each.start.second);
    }
}

TEST(Stopwatch, SubtractedTimeValues) {
    struct Case {
        Instant x, y, difference, yAfterwards;
        int32_t negative;
    };
    for (const Case& each : {
             Case{{11, 5}, {10, 999990}, {0, 15}, {11, -10}, 0},
             Case{{4, 900000}, {5, 100000}, {-1, 800000}, {5, 100000}, 1},
             Case{{3, 0}, {3, 1}, {-1, 999999}, {4, -999999}, 1},
             Case{{5, 2500000}, {1, 0}, {6, 500000}, {-1, 2000000}, 0},
             Case{{1, 1000000}, {0, 0}, {1, 1000000}, {0, 0}, 0},  // a second, and not above it
             Case{{10, 0}, {2, 3000000}, {4, 1000000}, {6, -1000000}, 0},
         }) {
        const timeval x = Value(each.x);
        timeval y = Value(each.y), difference = {};
        EXPECT_EQ(timeval_subtract(&difference, &x, &y), each.negative);
        EXPECT_EQ(From(difference), each.difference);
        EXPECT_EQ(From(y), each.yAfterwards);
    }
}

// Within the time that the calls take, seen from around them, in milliseconds rounded up.
TEST(Stopwatch, WaitsAsLongAsItSaysAndStartsTheStopwatchAnew) {
    for (const int32_t wait : {8, 1, 0, -3}) {
        const auto before = std::chrono::system_clock::now();
        EXPECT_EQ(ITCStartMsecTimer(), 0);
        const uint32_t waited = ITCWaitMsec(wait);
        const int32_t sinceStart = ITCReadMsecTimer();
        const auto middle = std::chrono::system_clock::now();
        ITCWaitMsec(0);
        const int32_t sinceWait = ITCReadMsecTimer();
        const auto end = std::chrono::system_clock::now();
        const auto ceiling = [](auto time) {
            return std::chrono::duration_cast<std::chrono::milliseconds>(time).count() + 1;
        };
        EXPECT_GE(int64_t{waited}, wait);
        EXPECT_GE(sinceStart, static_cast<int32_t>(waited));
        EXPECT_LE(sinceStart, ceiling(middle - before));
        EXPECT_GE(sinceWait, 0);
        EXPECT_LE(sinceWait, ceiling(end - middle));
    }
}

}  // namespace
