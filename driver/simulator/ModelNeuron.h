// A single-compartment model neuron with the membrane of the squid giant axon.
//
// Kinetics: A. L. Hodgkin and A. F. Huxley, "A quantitative description of membrane current and its
// application to conduction and excitation in nerve", J. Physiol. 117:500-544 (1952), at 6.3 °C.
// Sign convention: the modern one. The potential is inside minus outside and rests near -65 mV
// (theirs counted displacements from rest, downwards for depolarisation), inward ionic current is
// negative, and a positive injected current depolarises.
#pragma once

namespace itc18 {

constexpr double kMembraneArea = 2000.0;  // [µm²], a sphere of 25 µm: 1 µA/cm² is 20 pA
constexpr double kCapacitance = 1.0;      // [µF/cm²], as the conductances per membrane area

constexpr double kSodiumConductance = 120.0;    // [mS/cm²]
constexpr double kPotassiumConductance = 36.0;  // [mS/cm²]
constexpr double kLeakConductance = 0.3;        // [mS/cm²]

constexpr double kSodiumPotential = 50.0;      // [mV]
constexpr double kPotassiumPotential = -77.0;  // [mV]
constexpr double kLeakPotential = -54.4;       // [mV]

// Longest integration step [µs]. The scheme is of second order: compared with a tenth of this step
// the first spike of a train moves by less than 0.1 µs and the firing rate by 20 parts in a
// million.
constexpr double kLongestStep = 5.0;

struct ModelNeuron {
    double potential;  // [mV]
    double m, h, n;    // open fractions of the sodium activation, inactivation and potassium gates
};

// The steady state at a constant injected current [pA], -4.2 to 4.2 nA. It exists and is unique
// for every current, but is unstable within the range of repetitive firing.
ModelNeuron SteadyState(double current);

// Lets `duration` [µs, above 0] pass at a constant injected current [pA], in equal steps.
void Advance(ModelNeuron& neuron, double current, double duration,
             double longestStep = kLongestStep);

}  // namespace itc18
