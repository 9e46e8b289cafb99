// The cell: whichever membrane the settings name, and where its potential stands still.
#pragma once

#include <algorithm>
#include <cmath>
#include <variant>

#include "simulator/cells/AdexMembrane.h"
#include "simulator/cells/ConnorStevens.h"
#include "simulator/cells/GatedMembrane.h"
#include "simulator/cells/PassiveMembrane.h"
#include "simulator/cells/Pospischil.h"
#include "simulator/cells/PreparationSettings.h"
#include "simulator/cells/SquidAxon.h"
#include "simulator/cells/WangBuzsaki.h"

namespace itc18 {

using Cell =
    std::variant<GatedMembrane<SquidAxon>, PassiveMembrane, GatedMembrane<RegularSpiking>,
                 GatedMembrane<FastSpiking>, GatedMembrane<ConnorStevens>,
                 GatedMembrane<ConnorStevensWithoutA>, GatedMembrane<WangBuzsaki>, AdexMembrane>;

Cell MakeCell(const PreparationSettings& settings);

inline double AreaOf(const Cell& cell) {
    return std::visit([](const auto& membrane) { return membrane.Area(); }, cell);
}

// Moves the membrane to a potential and gives the current outwards there [µA/cm²], with what stands
// beside the membrane.
template <class Membrane>
double OutwardAt(Membrane& membrane, const Load& outside, double potential) {
    membrane.JumpTo(potential);
    membrane.Settle(nullptr);
    return membrane.Outward() + outside.conductance * potential - outside.drive;
}

// Between two potentials the current outwards turns from below 0 to 0 or above. If it never does,
// both are where it comes nearest.
struct Turn {
    double low, high;  // [mV]
};

// The lowest turn, since a cell rests at the lowest.
template <class Membrane>
Turn FindTurn(Membrane& membrane, const Load& outside) {
    constexpr double kFarthest = 1e9;
    double low = Membrane::kLowest, high = Membrane::kHighest;
    while (OutwardAt(membrane, outside, low) > 0 && low > -kFarthest) low *= 2;
    double nearest = low, most = -HUGE_VAL;
    const int steps = Membrane::kRises ? 0 : static_cast<int>((high - Membrane::kLowest) * 4);
    for (int step = 0; step < steps; ++step) {
        const double v = Membrane::kLowest + step / 4.0;
        const double outward = OutwardAt(membrane, outside, v);
        if (outward >= 0) return {low, v};
        low = v;
        if (outward > most) nearest = v;
        most = std::max(most, outward);
    }
    if (!Membrane::kRestsAnywhere) return {nearest, nearest};
    while (OutwardAt(membrane, outside, high) < 0 && high < kFarthest) high *= 2;
    return {low, high};
}

template <class Membrane>
double SteadyPotential(Membrane& membrane, const Load& outside) {
    auto [low, high] = FindTurn(membrane, outside);
    for (int halving = 0; halving < 64; ++halving) {
        const double middle = (low + high) / 2;
        (OutwardAt(membrane, outside, middle) < 0 ? low : high) = middle;
    }
    return membrane.potential;
}

}  // namespace itc18
