// The membrane of any model whose conductances are products of gates, and how it passes time.
//
// Gates and potential alternate, the gates half a step ahead. A linear relaxation with frozen
// coefficients is solved exactly, so no step is ever too long for the gates' fast rates at strong
// hyperpolarisation, where an explicit scheme would explode. The scheme is of second order.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <utility>

#include "simulator/cells/ChannelNoise.h"
#include "simulator/cells/Kinetics.h"
#include "simulator/cells/Membrane.h"
#include "simulator/cells/RateTable.h"

namespace itc18 {

template <class Model>
class GatedMembrane {
  public:
    static constexpr bool kRises = Model::kRises;
    static constexpr bool kRestsAnywhere = true;
    static constexpr double kLowest = kLowestSearched, kHighest = kHighestSearched;

    double potential = Model::kLeakPotential;  // [mV]

    explicit GatedMembrane(const MembraneSettings& settings)
        : area(Model::kArea * settings.size), tabulated(settings.tabulated) {
        if (settings.channelConductance > 0) AddChannels(settings.channelConductance);
    }

    double Area() const { return area; }
    static constexpr double Capacitance() { return Model::kCapacitance; }

    // Single channels are drawn of the stream; without one it is the law of many that is looked at.
    void Settle(RandomStream* stream) {
        const auto laws = LawsAt(potential);
        for (size_t gate = 0; gate < kGates; ++gate) gates[gate] = laws[gate].steady;
        slope = 0;
        drawn = noisy && stream != nullptr;
        if (!drawn) return;
        for (size_t i = 0; i < kCurrents; ++i)
            channels[i].Settle(*stream, GateOr(Model::kCurrents[i].activation, 1),
                               GateOr(Model::kCurrents[i].inactivation, 1));
    }

    void AdvanceGates(double milliseconds, RandomStream* noise, bool /*held*/) {
        if (drawn)
            AdvanceChannels(milliseconds, *noise);
        else if (!tabulated || !AdvanceByTable(milliseconds))
            AdvanceByLaws(milliseconds);
    }

    // The conductances in the middle of a coming step of the potential.
    Load LoadOver(double milliseconds) const {
        return LoadAt(potential + slope * milliseconds / 2);
    }

    double Outward() const {  // [µA/cm²]
        const Load load = LoadAt(potential);
        return load.conductance * potential - load.drive;
    }

    // What is left of a deviation, e^-x.
    double LeftAfter(double x) const {
        return tabulated && x < 0.125 ? ExponentialSeries(-x) : std::exp(-x);
    }

    void MoveTo(double moved, double milliseconds) {
        slope = (moved - potential) / milliseconds;
        potential = moved;
    }

    void JumpTo(double moved) {
        slope = 0;
        potential = moved;
    }

    static constexpr bool TakeSpike() { return false; }

  private:
    static constexpr size_t kGates = Model::kGates, kCurrents = Model::kCurrents.size();
    using Gates = std::array<double, kGates>;
    using Laws = std::array<GateLaw, kGates>;

    // Beyond, where no membrane ever is, the laws are those at the limit, which no formula
    // overflows.
    static Laws LawsAt(double v) { return Model::Laws(std::clamp(v, -1000.0, 1000.0)); }

    double GateOr(size_t gate, double otherwise) const {
        return gate == kNoGate ? otherwise : gates[gate];
    }

    double ConductanceOf(size_t index) const {
        const Current& current = Model::kCurrents[index];
        if (drawn) return current.conductance * channels[index].OpenFraction();
        double conductance = current.conductance;
        for (int particle = 0; particle < current.particles; ++particle)
            conductance *= gates[current.activation];
        return current.inactivation == kNoGate ? conductance
                                               : conductance * gates[current.inactivation];
    }

    Load LoadAt([[maybe_unused]] double v) const {
        Load load{0, 0};
        for (size_t i = 0; i < kCurrents; ++i) {
            double conductance = ConductanceOf(i);
            if constexpr (requires { Model::InstantFactor(v); })
                if (i == 0) conductance *= InstantFactorAt(std::clamp(v, -1000.0, 1000.0));
            load.conductance += conductance;
            load.drive += conductance * Model::kCurrents[i].reversal;
        }
        load.conductance += Model::kLeakConductance;
        load.drive += Model::kLeakConductance * Model::kLeakPotential;
        return load;
    }

    double InstantFactorAt(double v) const {
        return tables[0] ? tables[0]->InstantFactor(v) : Model::InstantFactor(v);
    }

    // What the gates do over a step at a potential is kept: the second half of one step and the
    // first half of the next are at the same one.
    void AdvanceByLaws(double milliseconds) {
        if (potential != kept.potential || milliseconds != kept.duration) {
            kept = {potential, milliseconds, LawsAt(potential), {}};
            for (size_t gate = 0; gate < kGates; ++gate)
                kept.left[gate] = std::exp(-kept.laws[gate].rate * milliseconds);
        }
        for (size_t gate = 0; gate < kGates; ++gate)
            gates[gate] =
                kept.laws[gate].steady + (gates[gate] - kept.laws[gate].steady) * kept.left[gate];
    }

    bool AdvanceByTable(double milliseconds) {
        if (!tables[0] || tables[0]->Duration() != milliseconds) TakeTable(milliseconds);
        return tables[0]->Advance(gates, potential);
    }

    // Whole steps and half ones take turns.
    void TakeTable(double milliseconds) {
        std::swap(tables[0], tables[1]);
        if (!tables[0] || tables[0]->Duration() != milliseconds)
            tables[0] = std::make_shared<const RateTable<Model>>(milliseconds);
    }

    void AddChannels(double conductance) {  // of one channel [pS]
        noisy = true;
        for (size_t i = 0; i < kCurrents; ++i) {
            const Current& current = Model::kCurrents[i];
            // mS/cm² are 10 pS/µm².
            const double count = std::round(current.conductance * 10 * area / conductance);
            channels[i] = ChannelNoise(static_cast<int64_t>(std::clamp(count, 1.0, kMostChannels)),
                                       current.particles, current.inactivation != kNoGate);
        }
    }

    void AdvanceChannels(double milliseconds, RandomStream& noise) {
        const Laws laws = LawsAt(potential);
        const auto step = [&](size_t gate) -> ParticleStep {
            if (gate == kNoGate) return {1, 1};
            const double steady = laws[gate].steady;
            const double left = std::exp(-laws[gate].rate * milliseconds);
            return {steady + (1 - steady) * left, steady * (1 - left)};
        };
        for (size_t i = 0; i < kCurrents; ++i)
            channels[i].Advance(noise, step(Model::kCurrents[i].activation),
                                step(Model::kCurrents[i].inactivation));
    }

    // More of a kind are as good as countless, and would take for ever.
    static constexpr double kMostChannels = 1e7;

    struct Kept {
        double potential = 0, duration = 0;  // [mV], [ms]; 0 ms: nothing kept
        Laws laws{};
        Gates left{};
    };

    double area;       // [µm²]
    double slope = 0;  // of the potential over its last step [mV/ms]
    Gates gates{};
    Kept kept;
    bool tabulated;
    std::array<std::shared_ptr<const RateTable<Model>>, 2> tables;
    bool noisy = false;  // of single channels,
    bool drawn = false;  // whose states are known
    std::array<ChannelNoise, kCurrents> channels;
};

}  // namespace itc18
