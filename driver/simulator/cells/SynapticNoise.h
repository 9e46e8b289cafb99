// The conductances of many synapses, each kind a noise of its own mean, deviation and correlation.
//
// A. Destexhe, M. Rudolph, J.-M. Fellous and T. J. Sejnowski, "Fluctuating synaptic conductances
// recreate in vivo-like activity in neocortical neurons", Neuroscience 107:13-24 (2001). The update
// is exact over any step: D. T. Gillespie, "Exact numerical simulation of the Ornstein-Uhlenbeck
// process and its integral", Phys. Rev. E 54:2084-2091 (1996).
#pragma once

#include <algorithm>
#include <cmath>

#include "simulator/cells/PreparationSettings.h"
#include "simulator/cells/RandomStream.h"

namespace itc18 {

struct SynapseSettings {
    double mean, deviation;  // [nS]
    double time;             // [ms]
    double reversal;         // [mV]
};

inline SynapseSettings Excitatory(const PreparationSettings& settings) {
    return {settings.excitatoryConductance, settings.excitatoryDeviation, settings.excitatoryTime,
            settings.excitatoryReversal};
}

inline SynapseSettings Inhibitory(const PreparationSettings& settings) {
    return {settings.inhibitoryConductance, settings.inhibitoryDeviation, settings.inhibitoryTime,
            settings.inhibitoryReversal};
}

// Whether any of these synapses is ever open.
inline bool MayOpen(const PreparationSettings& settings) {
    return settings.excitatoryConductance > 0 || settings.excitatoryDeviation > 0 ||
           settings.inhibitoryConductance > 0 || settings.inhibitoryDeviation > 0;
}

class SynapticNoise {
  public:
    explicit SynapticNoise(const SynapseSettings& given) : settings(given) {}

    double Reversal() const { return settings.reversal; }
    double Mean() const { return settings.mean; }

    // A conductance is never negative [nS].
    double Conductance() const { return std::max(settings.mean + deviation, 0.0); }

    void Settle(RandomStream& stream) {
        if (settings.deviation > 0) deviation = settings.deviation * stream.Normal();
    }

    void Advance(RandomStream& stream, double milliseconds) {
        if (settings.deviation == 0) return;
        if (milliseconds != duration) Prepare(milliseconds);
        deviation = deviation * left + fresh * stream.Normal();
    }

    // The noise of other settings, in proportion to its deviation.
    void GoOnFrom(const SynapticNoise& former) {
        if (former.settings.deviation > 0)
            deviation = former.deviation * settings.deviation / former.settings.deviation;
    }

  private:
    void Prepare(double milliseconds) {
        duration = milliseconds;
        left = std::exp(-milliseconds / settings.time);
        fresh = settings.deviation * std::sqrt(-std::expm1(-2 * milliseconds / settings.time));
    }

    SynapseSettings settings;
    double deviation = 0;        // from the mean [nS]
    double duration = 0;         // of the step that the next two are for [ms]
    double left = 0, fresh = 0;  // of a deviation, and the deviation of what is added [nS]
};

}  // namespace itc18
