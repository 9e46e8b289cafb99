// A membrane of constant conductance: a capacitance and a resistance beside it.
#pragma once

#include <cmath>

#include "simulator/cells/Membrane.h"
#include "simulator/cells/RandomStream.h"

namespace itc18 {

class PassiveMembrane {
  public:
    static constexpr bool kRises = true;
    static constexpr bool kRestsAnywhere = true;
    static constexpr double kLowest = kLowestSearched, kHighest = kHighestSearched;

    double potential;  // [mV]

    // [pF], [MOhm], [mV]
    PassiveMembrane(double capacitanceOfIt, double resistance, double resting, double size)
        : potential(resting),
          area(100 * size),
          capacitance(capacitanceOfIt),
          load{1000 / resistance, 1000 / resistance * resting} {}

    double Area() const { return area; }
    double Capacitance() const { return capacitance; }
    static void Settle(RandomStream* /*stream*/) {}
    static void AdvanceGates(double /*milliseconds*/, RandomStream* /*noise*/, bool /*held*/) {}
    Load LoadOver(double /*milliseconds*/) const { return load; }
    double Outward() const { return load.conductance * potential - load.drive; }
    static double LeftAfter(double x) { return std::exp(-x); }
    void MoveTo(double moved, double /*milliseconds*/) { potential = moved; }
    void JumpTo(double moved) { potential = moved; }
    static constexpr bool TakeSpike() { return false; }

  private:
    double area, capacitance;
    Load load;
};

}  // namespace itc18
