// The membrane of the squid giant axon.
//
// A. L. Hodgkin and A. F. Huxley, "A quantitative description of membrane current and its
// application to conduction and excitation in nerve", J. Physiol. 117:500-544 (1952), at 6.3 °C.
// Sign convention: the modern one. The potential is inside minus outside and rests near -65 mV
// (theirs counted displacements from rest, downwards for depolarisation), inward ionic current is
// negative, and a positive injected current depolarises.
#pragma once

#include <array>
#include <cmath>

#include "simulator/cells/Kinetics.h"

namespace itc18 {

struct SquidAxon {
    static constexpr double kArea = 2000;      // [µm²], a sphere of 25 µm: 1 µA/cm² is 20 pA
    static constexpr double kCapacitance = 1;  // [µF/cm²]
    static constexpr double kLeakConductance = 0.3, kLeakPotential = -54.4;
    static constexpr size_t kGates = 3;  // m, h, n
    static constexpr std::array<Current, 2> kCurrents{
        {{120, 50, 0, 3, 1}, {36, -77, 2, 4, kNoGate}}};
    // At rest the membrane current rises with the potential throughout: one steady state.
    static constexpr bool kRises = true;

    static std::array<GateLaw, kGates> Laws(double v) {
        return {LawOfRates(LinoidRatio((v + 40) / 10), 4 * std::exp(-(v + 65) / 18)),
                LawOfRates(0.07 * std::exp(-(v + 65) / 20), 1 / (1 + std::exp(-(v + 35) / 10))),
                LawOfRates(0.1 * LinoidRatio((v + 55) / 10), 0.125 * std::exp(-(v + 65) / 80))};
    }
};

}  // namespace itc18
