// The crustacean walking leg axon, which fires as slowly as one likes for its transient potassium
// current, and the same membrane without that current.
//
// J. A. Connor, D. Walter and R. McKown, "Neural repetitive firing: modifications of the
// Hodgkin-Huxley axon suggested by experimental results from crustacean axons", Biophys. J.
// 18:81-102 (1977).
#pragma once

#include <array>
#include <cmath>

#include "simulator/cells/Kinetics.h"

namespace itc18 {

struct ConnorStevensWithoutA {
    static constexpr double kArea = 2000;
    static constexpr double kCapacitance = 1;
    static constexpr double kLeakConductance = 0.3, kLeakPotential = -70;
    static constexpr size_t kGates = 3;  // m, h, n
    static constexpr std::array<Current, 2> kCurrents{
        {{120, 55, 0, 3, 1}, {20, -72, 2, 4, kNoGate}}};
    static constexpr bool kRises = false;

    static std::array<GateLaw, kGates> Laws(double v) {
        return {
            LawOfRates(3.8 * LinoidRatio((v + 29.7) / 10), 15.2 * std::exp(-0.0556 * (v + 54.7))),
            LawOfRates(0.266 * std::exp(-0.05 * (v + 48)), 3.8 / (1 + std::exp(-0.1 * (v + 18)))),
            LawOfRates(0.2 * LinoidRatio((v + 45.7) / 10), 0.25 * std::exp(-0.0125 * (v + 55.7)))};
    }
};

struct ConnorStevens {
    static constexpr double kArea = ConnorStevensWithoutA::kArea;
    static constexpr double kCapacitance = ConnorStevensWithoutA::kCapacitance;
    static constexpr double kLeakConductance = 0.3, kLeakPotential = -17;
    static constexpr size_t kGates = 5;  // m, h, n, a, b
    static constexpr std::array<Current, 3> kCurrents{ConnorStevensWithoutA::kCurrents[0],
                                                      ConnorStevensWithoutA::kCurrents[1],
                                                      {47.7, -75, 3, 3, 4}};
    static constexpr bool kRises = false;

    static std::array<GateLaw, kGates> Laws(double v) {
        const auto shared = ConnorStevensWithoutA::Laws(v);
        const double a =
            0.0761 * std::exp(0.0314 * (v + 94.22)) / (1 + std::exp(0.0346 * (v + 1.17)));
        const double b = 1 / (1 + std::exp(0.0688 * (v + 53.3)));
        return {shared[0],
                shared[1],
                shared[2],
                {std::cbrt(a), 1 / (0.3632 + 1.158 / (1 + std::exp(0.0497 * (v + 55.96))))},
                {b * b * b * b, 1 / (1.24 + 2.678 / (1 + std::exp(0.0624 * (v + 50))))}};
    }
};

}  // namespace itc18
