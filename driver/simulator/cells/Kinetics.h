// What the models of gated conductances are told in: gates, the currents through them, rate laws.
#pragma once

#include <cmath>
#include <cstddef>

namespace itc18 {

// A gate at a potential that stands still: it goes to its steady open fraction at this rate [1/ms].
struct GateLaw {
    double steady, rate;
};

constexpr GateLaw LawOfRates(double opening, double closing) {  // [1/ms]
    return {opening / (opening + closing), opening + closing};
}

// x / (1 - exp(-x)), continued through its removable singularity at 0.
inline double LinoidRatio(double x) {
    return std::abs(x) < 1e-9 ? 1.0 + x / 2 : -x / std::expm1(-x);
}

// e^x up to its ninth power, for |x| <= 1/8 within roundings.
constexpr double ExponentialSeries(double x) {
    const double square = x * x, fourth = square * square;
    const double low = (1 + x) + square * (1.0 / 2 + x * (1.0 / 6));
    const double high = (1.0 / 24 + x * (1.0 / 120)) + square * (1.0 / 720 + x * (1.0 / 5040));
    return low + fourth * (high + fourth * (1.0 / 40320 + x * (1.0 / 362880)));
}

constexpr size_t kNoGate = static_cast<size_t>(-1);

// conductance * activation^particles * inactivation * (potential - reversal)
struct Current {
    double conductance;  // all channels open [mS/cm²]
    double reversal;     // [mV]
    size_t activation;   // which of the model's gates
    int particles;       // 0 to 4; 0: no activation gate
    size_t inactivation = kNoGate;
};

}  // namespace itc18
