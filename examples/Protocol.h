// What the demo plays: the epochs of its experiment, in order.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// The amplifier of the simulated interface: its command sensitivity and its gain.
constexpr double kPicoamperesPerVolt = 400.0;
constexpr double kVoltsPerMillivolt = 0.01;

// Rest, stimulus and rest again; every stimulus of an epoch has the epoch's timing.
struct Timing {
    int32_t interval;              // one pass of the sequence [µs]
    double before, during, after;  // [ms]

    int32_t Points(double milliseconds) const;
    int32_t EpochPoints() const { return Points(before) + Points(during) + Points(after); }
};

struct EpochPlan {
    std::string comment;
    const char*
        channels;  // of the sequence: entry by entry the input, and the output of its number
    Timing timing;
    std::function<void()> build;  // hands the stimulus records to the library
};

std::vector<EpochPlan> DemoProtocol();
