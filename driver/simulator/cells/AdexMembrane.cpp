// The flow of the exponential current, spikes and resets.
#include "simulator/cells/AdexMembrane.h"

#include <algorithm>
#include <cmath>

namespace itc18 {

void AdexMembrane::Settle(RandomStream* /*stream*/) {
    adaptation = parameters.coupling * (potential - parameters.leakPotential);
    spiked = false;
}

void AdexMembrane::AdvanceGates(double milliseconds, RandomStream* /*noise*/, bool held) {
    const double target = parameters.coupling * (potential - parameters.leakPotential);
    adaptation =
        target + (adaptation - target) * std::exp(-milliseconds / parameters.adaptationTime);
    if (!held) FollowExponential(milliseconds);
}

// With y = e^(-(V - threshold) / sharpness) the current alone is y' = -leak / capacitance.
void AdexMembrane::FollowExponential(double milliseconds) {
    if (potential >= kPeak) Spike();
    const double rate = parameters.leak / parameters.capacitance;
    const double now = (potential - parameters.threshold) / parameters.sharpness;
    const double atPeak = (kPeak - parameters.threshold) / parameters.sharpness;
    const double until = (std::exp(-now) - std::exp(-atPeak)) / rate;
    if (until > milliseconds) {
        potential -= parameters.sharpness * std::log1p(-rate * milliseconds * std::exp(now));
    } else {
        Spike();
    }
}

void AdexMembrane::Spike() {
    potential = parameters.reset;
    adaptation += parameters.jump;
    spiked = true;
}

bool AdexMembrane::TakeSpike() {
    const bool taken = spiked;
    spiked = false;
    return taken;
}

Load AdexMembrane::LoadOver(double /*milliseconds*/) const {
    return {parameters.leak, parameters.leak * parameters.leakPotential - adaptation};
}

double AdexMembrane::Outward() const {
    const double limited = std::min(potential, kPeak);
    const double steps = (limited - parameters.threshold) / parameters.sharpness;
    return parameters.leak * (potential - parameters.leakPotential) -
           parameters.leak * parameters.sharpness * std::exp(steps) + adaptation;
}

}  // namespace itc18
