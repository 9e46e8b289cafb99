// A model's gates over one step as functions of the potential, tabulated.
//
// Where the potential stands still for a step, a gate goes to A(V) + D(V) * gate, with A the steady
// fraction times 1 - D and D the part of a deviation that is left. Both are smooth; between
// multiples of 1/8 mV they are the cubics through four of their values. The narrowest rate law
// turns within 4 mV, which makes the cubics' error some 1e-9.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "simulator/cells/Kinetics.h"

namespace itc18 {

template <class Model>
class RateTable {
  public:
    using Gates = std::array<double, Model::kGates>;

    explicit RateTable(double milliseconds) : duration(milliseconds), intervals(kIntervals) {
        for (size_t i = 0; i < kIntervals; ++i)
            intervals[i] = CubicsFrom(kLeast + static_cast<double>(i) / kPerMillivolt);
    }

    double Duration() const { return duration; }

    // False, and the gates as before, where the table does not reach.
    bool Advance(Gates& gates, double potential) const {
        Values value;
        if (!Interpolate<Model::kGates * 2>(potential, value)) return false;
        for (size_t gate = 0; gate < Model::kGates; ++gate)
            gates[gate] = value[gate] + value[Model::kGates + gate] * gates[gate];
        return true;
    }

    double InstantFactor(double potential) const {
        Values value;
        return Interpolate<kValues, kValues - 1>(potential, value)
                   ? value[kValues - 1]
                   : Model::InstantFactor(potential);
    }

  private:
    static constexpr double kLeast = -128;  // [mV]
    static constexpr size_t kIntervals = 1536, kPerMillivolt = 8;
    static constexpr bool kHasFactor = requires { Model::InstantFactor(0.0); };
    static constexpr size_t kValues = 2 * Model::kGates + (kHasFactor ? 1 : 0);
    using Values = std::array<double, kValues>;
    using Cubics = std::array<Values, 4>;  // by power

    template <size_t kEnd, size_t kBegin = 0>
    bool Interpolate(double potential, Values& value) const {
        const double place = (potential - kLeast) * kPerMillivolt;
        if (!(place >= 0 && place < kIntervals)) return false;
        const auto interval = static_cast<int32_t>(place);
        const double x = place - static_cast<double>(interval), square = x * x;
        const Cubics& of = intervals[static_cast<size_t>(interval)];
        for (size_t i = kBegin; i < kEnd; ++i)
            value[i] = (of[0][i] + of[1][i] * x) + (of[2][i] + of[3][i] * x) * square;
        return true;
    }

    Values ValuesAt(double potential) const {
        const auto laws = Model::Laws(potential);
        Values values{};
        for (size_t gate = 0; gate < Model::kGates; ++gate) {
            const double left = std::exp(-laws[gate].rate * duration);
            values[gate] = laws[gate].steady * (1 - left);
            values[Model::kGates + gate] = left;
        }
        if constexpr (kHasFactor) values[kValues - 1] = Model::InstantFactor(potential);
        return values;
    }

    // Through the values at 0, 1/3, 2/3 and 1 of the interval, by Newton's differences.
    Cubics CubicsFrom(double potential) const {
        std::array<Values, 4> at;
        for (size_t third = 0; third < 4; ++third)
            at[third] = ValuesAt(potential + static_cast<double>(third) / (3 * kPerMillivolt));
        Cubics cubics{};
        for (size_t i = 0; i < kValues; ++i) {
            const double first = at[1][i] - at[0][i];
            const double second = (at[2][i] - 2 * at[1][i] + at[0][i]) / 2;
            const double third = (at[3][i] - 3 * at[2][i] + 3 * at[1][i] - at[0][i]) / 6;
            cubics[0][i] = at[0][i];
            cubics[1][i] = 3 * (first - second + 2 * third);
            cubics[2][i] = 9 * (second - 3 * third);
            cubics[3][i] = 27 * third;
        }
        return cubics;
    }

    double duration;  // [ms]
    std::vector<Cubics> intervals;
};

}  // namespace itc18
