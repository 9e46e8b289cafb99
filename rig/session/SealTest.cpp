// Charge and steady state instead of a fit: quick enough for ten answers a second.
#include "session/SealTest.h"

#include <fmt/format.h>

#include <cmath>
#include <numeric>

namespace corvantis::rig {
namespace {

double MeanOf(std::span<const double> values) {
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

}  // namespace

std::optional<SealValues> MeasureSeal(std::span<const double> current, double before, double step,
                                      double interval) {
    if (current.size() < 8 || step == 0) return std::nullopt;
    const double steady = MeanOf(current.last(current.size() / 4)) - before;
    if (!(steady / step > 0)) return std::nullopt;
    SealValues values;
    values.resistance = 1e3 * step / steady;
    // The transient: its charge is (V / A - V / (A + R)) tau, its first moment that times tau.
    double charge = 0, moment = 0;
    for (size_t k = 0; k < current.size(); ++k) {
        const double above = current[k] - before - steady;
        charge += above * interval;
        moment += above * (static_cast<double>(k) + 0.5) * interval * interval;
    }
    const double tau = moment / charge;
    if (!(charge / step > 0) || !(tau > interval)) return values;
    const double access = 1e3 * step / (charge / tau + steady);
    const double membrane = values.resistance - access;
    if (!(access > 0 && membrane > 0)) return values;
    values.access = access;
    values.capacitance = 1e3 * tau * (1 / access + 1 / membrane);
    return values;
}

std::string SealText(const SealValues& values) {
    std::string text = fmt::format("seal test: {:.4g} MOhm", values.resistance);
    if (values.capacitance) {
        text += fmt::format(", {:.3g} pF behind {:.3g} MOhm", *values.capacitance, *values.access);
    }
    return text;
}

}  // namespace corvantis::rig
