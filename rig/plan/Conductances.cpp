// Constant conductances, those that are listed, and trains of synaptic events.
//
// An event is peak * (exp(-t / decay) - exp(-t / rise)), scaled to reach its peak (Roth and van
// Rossum 2009, in: Computational Modeling Methods for Neuroscientists, MIT Press); without a rise
// it begins at its peak. Random times are those of a Poisson process.
#include "plan/Conductances.h"

#include <fmt/format.h>

#include <cmath>
#include <random>

#include "ITCFileIO/RecordLayouts.h"
#include "protocol/FieldRules.h"

namespace corvantis::rig {
namespace {

struct Timing {
    const Names& names;
    int32_t interval;  // [µs]
    size_t points;
};

double AmountIn(const Node& node, const Timing& timing, const char* unit) {
    return AmountOf(node, timing.names, {unit, nullptr, timing.interval});
}

struct Event {
    double peak;         // [nS]
    double rise, decay;  // [points]
    double scale;
};

Event EventOf(const Node& node, const Timing& timing) {
    const Node peak = node["peak"], rise = node["rise"], decay = node["decay"];
    if (!peak || !decay) node.Fail("takes peak and decay of its events");
    Event event = {AmountIn(peak, timing, "nS"), rise ? AmountIn(rise, timing, kSamples) : 0,
                   AmountIn(decay, timing, kSamples), 1};
    if (!(event.decay > 0)) decay.Fail("is to be above 0");
    if (!(event.rise >= 0 && event.rise < event.decay)) {
        (rise ? rise : node).Fail("is to be shorter than the decay");
    }
    if (event.rise > 0) {
        const double ratio = event.rise / event.decay;
        const double time = std::log(1 / ratio) * event.rise / (1 - ratio);
        event.scale = 1 / (std::exp(-time / event.decay) - std::exp(-time / event.rise));
    }
    return event;
}

void AddEvent(std::vector<double>& conductance, const Event& event, double time) {
    constexpr double kGone = 40;  // decays
    const double begin = std::max(0.0, std::ceil(time));
    if (begin >= static_cast<double>(conductance.size())) return;
    for (auto point = static_cast<size_t>(begin); point < conductance.size(); ++point) {
        const double since = static_cast<double>(point) - time;
        if (since > kGone * event.decay) return;
        const double early = event.rise > 0 ? std::exp(-since / event.rise) : 0;
        conductance[point] += event.peak * event.scale * (std::exp(-since / event.decay) - early);
    }
}

std::vector<double> GivenTimes(const Node& list, const Timing& timing) {
    std::vector<double> times = list.value->numbers;
    for (size_t k = 0; k < list.value->items.size(); ++k) {
        times.push_back(AmountIn(list.Item(k), timing, kSamples));
    }
    return times;
}

std::vector<double> RandomTimes(const Node& node, const Timing& timing) {
    const Node rate = node["rate"], seed = node["seed"];
    if (!rate) node.Fail("takes the times of its events, or their rate");
    if (!seed) node.Fail("has random times, and so a seed");
    const double perPoint = AmountIn(rate, timing, "Hz") * 1e-6 * timing.interval;
    if (!(perPoint > 0 && perPoint <= 1)) rate.Fail("is to be above 0, and one a point at most");
    std::mt19937 generator(static_cast<uint32_t>(seed.value->number));
    std::vector<double> times;
    for (double time = 0; time < static_cast<double>(timing.points);) {
        const double uniform = (static_cast<double>(generator()) + 1.0) /
                               (static_cast<double>(std::mt19937::max()) + 1.0);
        time -= std::log(uniform) / perPoint;
        times.push_back(time);
    }
    return times;
}

std::vector<double> Events(const Node& node, const Timing& timing) {
    const Event event = EventOf(node, timing);
    const Node times = node["times"];
    std::vector<double> conductance(timing.points);
    for (const double time : times ? GivenTimes(times, timing) : RandomTimes(node, timing)) {
        AddEvent(conductance, event, time);
    }
    return conductance;
}

std::vector<double> Values(const Node& node, const Timing& timing) {
    if (!node) return std::vector<double>(timing.points);
    if (node.GetKind() == Kind::kObject) return Events(node, timing);
    if (node.GetKind() != Kind::kList) {
        return std::vector<double>(timing.points, AmountIn(node, timing, "nS"));
    }
    if (node.value->numbers.size() != timing.points) {
        node.Fail(fmt::format("has {} values, and the epoch {} points", node.value->numbers.size(),
                              timing.points));
    }
    return node.value->numbers;
}

std::vector<float> Conductance(const Node& node, const Timing& timing) {
    const std::vector<double> values = Values(node, timing);
    return {values.begin(), values.end()};
}

}  // namespace

void PlanConductances(const Node& stimuli, const Names& names, PlannedEpoch& epoch) {
    const Timing timing = {names, epoch.content.header.samplingInterval,
                           static_cast<size_t>(epoch.content.header.epochPoints)};
    for (size_t k = 0; k < epoch.content.stimuli.size(); ++k) {
        if (epoch.content.stimuli[k].type != ITC_STIMULUS_DYNAMIC_CLAMP) continue;
        const Node node = stimuli.Item(k);
        std::vector<float> excitatory = Conductance(node["excitatory"], timing);
        std::vector<float> inhibitory = Conductance(node["inhibitory"], timing);
        if (epoch.IsDynamicClamp() &&
            (excitatory != epoch.excitatory || inhibitory != epoch.inhibitory)) {
            node.Fail(
                "has other conductances than the dynamic clamp before it; all share one pair");
        }
        epoch.excitatory = std::move(excitatory);
        epoch.inhibitory = std::move(inhibitory);
    }
}

}  // namespace corvantis::rig
