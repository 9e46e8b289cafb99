// Regular and fast spiking cells of the cerebral cortex.
//
// M. Pospischil, M. Toledo-Rodriguez, C. Monier, Z. Piwkowska, T. Bal, Y. Frégnac, H. Markram and
// A. Destexhe, "Minimal Hodgkin-Huxley type models for different classes of cortical and thalamic
// neurons", Biol. Cybern. 99:427-441 (2008). Sizes and conductances are those of the programs that
// the authors made public, not of the paper's table of fitted cells; 36 °C. u is the potential
// above -55 mV.
#pragma once

#include <array>
#include <cmath>
#include <numbers>

#include "simulator/cells/Kinetics.h"

namespace itc18 {

struct PospischilRates {
    static GateLaw SodiumActivation(double u) {
        return LawOfRates(0.32 * 4 * LinoidRatio((u - 13) / 4),
                          0.28 * 5 * LinoidRatio(-(u - 40) / 5));
    }
    static GateLaw SodiumInactivation(double u) {
        return LawOfRates(0.128 * std::exp((17 - u) / 18), 4 / (1 + std::exp((40 - u) / 5)));
    }
    static GateLaw PotassiumActivation(double u) {
        return LawOfRates(0.032 * 5 * LinoidRatio((u - 15) / 5), 0.5 * std::exp((10 - u) / 40));
    }
    // The slow current that adapts the regular spiking cell; `slowest` [ms].
    static GateLaw SlowActivation(double v, double slowest) {
        return {1 / (1 + std::exp(-(v + 35) / 10)),
                (3.3 * std::exp((v + 35) / 20) + std::exp(-(v + 35) / 20)) / slowest};
    }
};

struct RegularSpiking {
    static constexpr double kArea = std::numbers::pi * 96 * 96;  // [µm²], a cylinder's wall
    static constexpr double kCapacitance = 1;
    static constexpr double kLeakConductance = 0.1, kLeakPotential = -70;
    static constexpr size_t kGates = 4;  // m, h, n, p
    static constexpr std::array<Current, 3> kCurrents{
        {{50, 50, 0, 3, 1}, {5, -100, 2, 4, kNoGate}, {0.07, -100, 3, 1, kNoGate}}};
    static constexpr bool kRises = false;

    static std::array<GateLaw, kGates> Laws(double v) {
        using Rates = PospischilRates;
        return {Rates::SodiumActivation(v + 55), Rates::SodiumInactivation(v + 55),
                Rates::PotassiumActivation(v + 55), Rates::SlowActivation(v, 1000)};
    }
};

struct FastSpiking {
    static constexpr double kArea = std::numbers::pi * 67 * 67;
    static constexpr double kCapacitance = 1;
    static constexpr double kLeakConductance = 0.15, kLeakPotential = -70;
    static constexpr size_t kGates = 3;  // m, h, n
    static constexpr std::array<Current, 2> kCurrents{
        {{50, 50, 0, 3, 1}, {10, -100, 2, 4, kNoGate}}};
    static constexpr bool kRises = false;

    static std::array<GateLaw, kGates> Laws(double v) {
        using Rates = PospischilRates;
        return {Rates::SodiumActivation(v + 55), Rates::SodiumInactivation(v + 55),
                Rates::PotassiumActivation(v + 55)};
    }
};

}  // namespace itc18
