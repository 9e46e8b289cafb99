// The model neuron's rate functions, steady state and integration.
#include "simulator/ModelNeuron.h"

#include <cmath>
#include <cstdint>

namespace itc18 {
namespace {

struct Rates {
    double opening, closing;  // [1/ms]
};

// x / (1 - exp(-x)), continued through its removable singularity at 0.
double LinoidRatio(double x) { return std::abs(x) < 1e-9 ? 1.0 + x / 2 : -x / std::expm1(-x); }

Rates SodiumActivation(double v) {
    return {LinoidRatio((v + 40) / 10), 4 * std::exp(-(v + 65) / 18)};
}

Rates SodiumInactivation(double v) {
    return {0.07 * std::exp(-(v + 65) / 20), 1 / (1 + std::exp(-(v + 35) / 10))};
}

Rates PotassiumActivation(double v) {
    return {0.1 * LinoidRatio((v + 55) / 10), 0.125 * std::exp(-(v + 65) / 80)};
}

double SteadyFraction(Rates rates) { return rates.opening / (rates.opening + rates.closing); }

void SetGatesSteady(ModelNeuron& neuron) {
    neuron.m = SteadyFraction(SodiumActivation(neuron.potential));
    neuron.h = SteadyFraction(SodiumInactivation(neuron.potential));
    neuron.n = SteadyFraction(PotassiumActivation(neuron.potential));
}

struct Conductances {
    double sodium, potassium;  // [mS/cm²]

    explicit Conductances(const ModelNeuron& neuron)
        : sodium(kSodiumConductance * neuron.m * neuron.m * neuron.m * neuron.h),
          potassium(kPotassiumConductance * neuron.n * neuron.n * neuron.n * neuron.n) {}

    double Total() const { return sodium + potassium + kLeakConductance; }
    double Driving() const {
        return sodium * kSodiumPotential + potassium * kPotassiumPotential +
               kLeakConductance * kLeakPotential;
    }
};

// [pA] over [µm²] is 100 µA/cm².
double CurrentDensity(double current) { return 100 * current / kMembraneArea; }

// A linear relaxation with frozen coefficients is solved exactly, so no step is ever too long for
// the gates' fast rates at strong hyperpolarisation, where an explicit scheme would explode.
void Relax(double& value, double target, double rate, double milliseconds) {
    value = target + (value - target) * std::exp(-rate * milliseconds);
}

void RelaxGate(double& gate, Rates rates, double milliseconds) {
    Relax(gate, SteadyFraction(rates), rates.opening + rates.closing, milliseconds);
}

void AdvanceGates(ModelNeuron& neuron, double milliseconds) {
    RelaxGate(neuron.m, SodiumActivation(neuron.potential), milliseconds);
    RelaxGate(neuron.h, SodiumInactivation(neuron.potential), milliseconds);
    RelaxGate(neuron.n, PotassiumActivation(neuron.potential), milliseconds);
}

void AdvancePotential(ModelNeuron& neuron, double density, double milliseconds) {
    const Conductances conductances(neuron);
    const double total = conductances.Total();
    Relax(neuron.potential, (conductances.Driving() + density) / total, total / kCapacitance,
          milliseconds);
}

}  // namespace

// The steady membrane current rises with the potential throughout, which allows halving intervals.
ModelNeuron SteadyState(double current) {
    const double density = CurrentDensity(current);
    double low = -1000;
    double high = 200;
    ModelNeuron neuron{};
    for (int halving = 0; halving < 64; ++halving) {
        neuron.potential = (low + high) / 2;
        SetGatesSteady(neuron);
        const Conductances conductances(neuron);
        const double outward = conductances.Total() * neuron.potential - conductances.Driving();
        (outward < density ? low : high) = neuron.potential;
    }
    return neuron;
}

// Gates and potential alternate, the gates half a step ahead; between two steps the second half of
// one and the first half of the next see the same potential and are taken as one.
void Advance(ModelNeuron& neuron, double current, double duration, double longestStep) {
    const int64_t steps = static_cast<int64_t>(std::ceil(duration / longestStep));
    const double step = duration / static_cast<double>(steps) / 1000;
    const double density = CurrentDensity(current);
    AdvanceGates(neuron, step / 2);
    for (int64_t done = 1; done < steps; ++done) {
        AdvancePotential(neuron, density, step);
        AdvanceGates(neuron, step);
    }
    AdvancePotential(neuron, density, step);
    AdvanceGates(neuron, step / 2);
}

}  // namespace itc18
