// The seal's resistance and what lies behind it, from the answer to a step of potential.
#pragma once

#include <optional>
#include <span>
#include <string>

namespace corvantis::rig {

// A cell of resistance R and capacitance C behind an access resistance A answers a step V with
// V / (A + R) + (V / A - V / (A + R)) exp(-t / tau), tau = C A R / (A + R).
struct SealValues {
    double resistance = 0;              // of all, V / (A + R) [MOhm]
    std::optional<double> capacitance;  // [pF]
    std::optional<double> access;       // [MOhm]
};

// Nothing where the current does not follow the step.
//   current   from the step's first point to its last [pA]
//   before    the current before it [pA]
//   step      [mV]
//   interval  [ms]
std::optional<SealValues> MeasureSeal(std::span<const double> current, double before, double step,
                                      double interval);

// Such as "seal: 512 MOhm, 3.1 pF".
std::string SealText(const SealValues& values);

}  // namespace corvantis::rig
