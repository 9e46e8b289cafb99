// The adaptive exponential integrate-and-fire neuron, and the parameters that papers give for it.
//
// R. Brette and W. Gerstner, "Adaptive exponential integrate-and-fire model as an effective
// description of neuronal activity", J. Neurophysiol. 94:3637-3642 (2005); R. Naud, N. Marcille,
// C. Clopath and W. Gerstner, "Firing patterns in the adaptive exponential integrate-and-fire
// model", Biol. Cybern. 99:335-347 (2008).
//
// The exponential current alone has a solution in closed form, the moment of the spike included; it
// is taken in turn with the leak, and the leak with the adaptation. So no upstroke is too steep for
// a step.
#pragma once

#include <cmath>

#include "simulator/cells/Kinetics.h"
#include "simulator/cells/Membrane.h"
#include "simulator/cells/RandomStream.h"

namespace itc18 {

struct AdexParameters {
    double capacitance;     // [pF]
    double leak;            // [nS]
    double leakPotential;   // [mV]
    double threshold;       // where the exponential current's conductance is the leak's [mV]
    double sharpness;       // over which the exponential current grows e-fold [mV]
    double coupling;        // of the adaptation to the potential [nS]
    double adaptationTime;  // [ms]
    double jump;            // of the adaptation at a spike [pA]
    double reset;           // [mV]
};

inline constexpr AdexParameters kBretteGerstnerParameters{281, 30,  -70.6, -50.4, 2,
                                                          4,   144, 80.5,  -70.6};
inline constexpr AdexParameters kTonicParameters{200, 10, -70, -50, 2, 2, 30, 0, -58};
inline constexpr AdexParameters kAdaptationParameters{200, 12, -70, -50, 2, 2, 300, 60, -58};
inline constexpr AdexParameters kInitialBurstParameters{130, 18, -58, -50, 2, 4, 150, 120, -50};
inline constexpr AdexParameters kRegularBurstingParameters{200, 10, -58, -50, 2, 2, 120, 100, -46};
inline constexpr AdexParameters kDelayedAcceleratingParameters{200, 12,  -70, -50, 2,
                                                               -10, 300, 0,   -58};
inline constexpr AdexParameters kTransientParameters{100, 10, -65, -50, 2, 10, 90, 100, -47};

class AdexMembrane {
  public:
    static constexpr bool kRises = false;
    static constexpr bool kRestsAnywhere = false;
    static constexpr double kPeak = 20;  // a spike is where the potential reaches it [mV]
    static constexpr double kLowest = kLowestSearched, kHighest = kPeak;

    double potential;  // [mV]

    AdexMembrane(const AdexParameters& given, double size)
        : potential(given.leakPotential),
          parameters(given),
          area(100 * size),
          rate(given.leak / given.capacitance),
          adaptationRate(1 / given.adaptationTime),
          atPeak(std::exp((given.threshold - kPeak) / given.sharpness)) {}

    double Area() const { return area; }
    double Capacitance() const { return parameters.capacitance; }
    void Settle(RandomStream* stream);
    void AdvanceGates(double milliseconds, RandomStream* noise, bool held);
    Load LoadOver(double milliseconds) const;
    double Outward() const;
    static double LeftAfter(double x) { return x < 0.125 ? ExponentialSeries(-x) : std::exp(-x); }
    void MoveTo(double moved, double milliseconds);
    void JumpTo(double moved) { potential = moved; }
    bool TakeSpike();

  private:
    double AdaptationAfter(double milliseconds) const;
    void FollowExponential(double milliseconds);

    AdexParameters parameters;
    double area;
    double rate, adaptationRate;  // of the leak and of the adaptation [1/ms]
    double atPeak;                // e^-((kPeak - threshold) / sharpness)
    double adaptation = 0;        // [pA] of a membrane of the model's own size
    bool spiked = false;
};

}  // namespace itc18
