// An interneuron of the hippocampus, whose sodium activation follows the potential at once.
//
// X.-J. Wang and G. Buzsáki, "Gamma oscillation by synaptic inhibition in a hippocampal
// interneuronal network model", J. Neurosci. 16:6402-6413 (1996).
#pragma once

#include <array>
#include <cmath>

#include "simulator/cells/Kinetics.h"

namespace itc18 {

struct WangBuzsaki {
    static constexpr double kArea = 2000;
    static constexpr double kCapacitance = 1;
    static constexpr double kLeakConductance = 0.1, kLeakPotential = -65;
    static constexpr size_t kGates = 2;  // h, n
    static constexpr std::array<Current, 2> kCurrents{
        {{35, 55, kNoGate, 0, 0}, {9, -90, 1, 4, kNoGate}}};
    static constexpr bool kRises = false;
    static constexpr double kQuickness = 5;  // of h and n

    static std::array<GateLaw, kGates> Laws(double v) {
        return {LawOfRates(kQuickness * 0.07 * std::exp(-(v + 58) / 20),
                           kQuickness / (1 + std::exp(-0.1 * (v + 28)))),
                LawOfRates(kQuickness * 0.1 * LinoidRatio((v + 34) / 10),
                           kQuickness * 0.125 * std::exp(-(v + 44) / 80))};
    }

    // What the first current has beside its gates: m at its steady state, to the third power.
    static double InstantFactor(double v) {
        const double m =
            LawOfRates(LinoidRatio((v + 35) / 10), 4 * std::exp(-(v + 60) / 18)).steady;
        return m * m * m;
    }
};

}  // namespace itc18
