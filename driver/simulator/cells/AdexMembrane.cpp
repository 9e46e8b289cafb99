// The flow of the exponential current, spikes and resets.
#include "simulator/cells/AdexMembrane.h"

#include <algorithm>
#include <cmath>

namespace itc18 {
namespace {

// ln(1 - x); the series leaves 1e-16 of it.
double LogarithmLess(double x) {
    if (x > 1e-3) return std::log1p(-x);
    return -x * (1 + x * (1.0 / 2 + x * (1.0 / 3 + x * (1.0 / 4 + x * (1.0 / 5)))));
}

}  // namespace

void AdexMembrane::Settle(RandomStream* /*stream*/) {
    adaptation = parameters.coupling * (potential - parameters.leakPotential);
    spiked = false;
}

void AdexMembrane::AdvanceGates(double milliseconds, RandomStream* /*noise*/, bool held) {
    if (!held) FollowExponential(milliseconds);
}

double AdexMembrane::AdaptationAfter(double milliseconds) const {
    const double target = parameters.coupling * (potential - parameters.leakPotential);
    return target + (adaptation - target) * LeftAfter(milliseconds * adaptationRate);
}

Load AdexMembrane::LoadOver(double milliseconds) const {
    return {parameters.leak,
            parameters.leak * parameters.leakPotential - AdaptationAfter(milliseconds / 2)};
}

void AdexMembrane::MoveTo(double moved, double milliseconds) {
    adaptation = AdaptationAfter(milliseconds / 2);
    potential = moved;
    adaptation = AdaptationAfter(milliseconds / 2);
}

// With y = e^-((V - threshold) / sharpness) the current alone is y' = -leak / capacitance. The peak
// is reached if y is at most `atPeak` at the end; all is taken by the present y. From a reset the
// next spike is farther than a step.
void AdexMembrane::FollowExponential(double milliseconds) {
    const double grown = std::exp((potential - parameters.threshold) / parameters.sharpness);
    const double lost = rate * milliseconds * grown;
    if (1 - lost > atPeak * grown) {
        potential -= parameters.sharpness * LogarithmLess(lost);
        return;
    }
    const double until = std::max((1 / grown - atPeak) / rate, 0.0);
    potential = parameters.reset;
    adaptation += parameters.jump;
    spiked = true;
    FollowExponential(milliseconds - until);
}

bool AdexMembrane::TakeSpike() {
    const bool taken = spiked;
    spiked = false;
    return taken;
}

double AdexMembrane::Outward() const {
    const double limited = std::min(potential, kPeak);
    const double steps = (limited - parameters.threshold) / parameters.sharpness;
    return parameters.leak * (potential - parameters.leakPotential) -
           parameters.leak * parameters.sharpness * std::exp(steps) + adaptation;
}

}  // namespace itc18
