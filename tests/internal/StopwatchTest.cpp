// Elapsed milliseconds between given instants, and the stopwatch on the wall clock.
#include "ITCUtilities/Stopwatch.h"

#include <gtest/gtest.h>
#include <sys/time.h>

#include <chrono>
#include <cstdint>
#include <string>

#include "Corvantis.h"

namespace {

struct Instant {
    int64_t seconds, microseconds;
};
bool operator==(const Instant& a, const Instant& b) {
    return a.seconds == b.seconds && a.microseconds == b.microseconds;
}

timeval Value(const Instant& instant) {
    return {static_cast<time_t>(instant.seconds), static_cast<suseconds_t>(instant.microseconds)};
}
Instant From(const timeval& value) { return {value.tv_sec, value.tv_usec}; }
void PrintTo(const Instant& instant, std::ostream* stream) {
    *stream << instant.seconds << " s " << instant.microseconds;
}

struct ElapsedCase {
    Instant later, start;
    int32_t milliseconds;
};

TEST(Stopwatch, ElapsedMilliseconds) {
    const ElapsedCase cases[] = {
        {{11, 5}, {10, 999990}, 0},
        {{11, 1000}, {10, 999990}, 1},
        {{7, 3}, {7, 3}, 0},
        {{5, 999999}, {5, 0}, 999},
        {{12, 0}, {10, 500}, 1999},
        {{10, 0}, {10, 1500}, -1},  // the clock was set back: toward zero
        {{2157, 483647}, {10, 0}, 2147483},
        {{2157, 483648}, {10, 0}, -2147483},  // 2^31 microseconds are -2^31
        {{3010, 0}, {10, 0}, -1294967},       // 3000000000 - 2^32 microseconds
        {{4304, 967296}, {10, 0}, 0},         // 2^32 microseconds
        {{2000000000, 0}, {0, 0}, 1233977},   // 2 * 10^15 modulo 2^32 microseconds
    };
    for (const ElapsedCase& each : cases) {
        timeval start = Value(each.start);
        EXPECT_EQ(corvantis::ElapsedMilliseconds(Value(each.later), start), each.milliseconds)
            << each.later.seconds;
        EXPECT_EQ(int64_t{start.tv_sec} * 1000000 + start.tv_usec,
                  each.start.seconds * 1000000 + each.start.microseconds);
        EXPECT_EQ(corvantis::ElapsedMilliseconds(Value(each.later), start), each.milliseconds)
            << "read a second time";
    }
}

TEST(Stopwatch, SecondsBeyond32BitsWrapToo) {
    if (sizeof(time_t) < 8) GTEST_SKIP() << "time_t has 32 bits";
    timeval start = Value({1, 999});
    EXPECT_EQ(corvantis::ElapsedMilliseconds(Value({(int64_t{1} << 33) + 3, 2999}), start), 2002);
}

struct SubtractionCase {
    Instant x, y, difference, yAfterwards;
    int32_t negative;
};

TEST(Stopwatch, SubtractedTimeValues) {
    const SubtractionCase cases[] = {
        {{11, 5}, {10, 999990}, {0, 15}, {11, -10}, 0},
        {{5, 0}, {3, 0}, {2, 0}, {3, 0}, 0},
        {{4, 900000}, {5, 100000}, {-1, 800000}, {5, 100000}, 1},
        {{3, 0}, {3, 1}, {-1, 999999}, {4, -999999}, 1},
        {{5, 2500000}, {1, 0}, {6, 500000}, {-1, 2000000}, 0},
        {{1, 1000000}, {0, 0}, {1, 1000000}, {0, 0}, 0},  // a whole second, and not above it
        {{10, 0}, {2, 3000000}, {4, 1000000}, {6, -1000000}, 0},
    };
    for (const SubtractionCase& each : cases) {
        const timeval x = Value(each.x);
        timeval y = Value(each.y), difference = {};
        EXPECT_EQ(timeval_subtract(&difference, &x, &y), each.negative);
        EXPECT_EQ(From(difference), each.difference);
        EXPECT_EQ(From(y), each.yAfterwards);
    }
}

// The time that a call takes, seen from around it, in whole milliseconds rounded up.
template <class Call>
int64_t TimeAround(Call call) {
    const auto before = std::chrono::system_clock::now();
    call();
    const auto taken = std::chrono::system_clock::now() - before;
    return std::chrono::duration_cast<std::chrono::milliseconds>(taken).count() + 1;
}

TEST(Stopwatch, WaitsAsLongAsItSays) {
    for (const int32_t msec : {5, 1, 0, -3}) {
        uint32_t waited = 0;
        const int64_t around = TimeAround([&] { waited = ITCWaitMsec(msec); });
        EXPECT_GE(int64_t{waited}, msec);
        EXPECT_LE(int64_t{waited}, around);
    }
}

TEST(Stopwatch, WaitingStartsTheStopwatchAnew) {
    int32_t sinceStart = -1, sinceWait = -1;
    const int64_t around = TimeAround([&] {
        EXPECT_EQ(ITCStartMsecTimer(), 0);
        ITCWaitMsec(8);
        sinceStart = ITCReadMsecTimer();
    });
    EXPECT_GE(sinceStart, 8);
    EXPECT_LE(sinceStart, around);
    const int64_t afterwards = TimeAround([&] {
        ITCWaitMsec(0);
        sinceWait = ITCReadMsecTimer();
    });
    EXPECT_GE(sinceWait, 0);
    EXPECT_LE(sinceWait, afterwards);
}

}  // namespace
