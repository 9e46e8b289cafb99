// The published values, and the comparisons with them.
//
// Hodgkin and Huxley, J. Physiol. 117:500-544 (1952), at 6.3 °C: the inside rests 65 mV negative in
// today's convention; a shock of 6 nC/cm² stays below threshold and one of 7 nC/cm² fires; the end
// of a hyperpolarisation excites (anode break); no spike passes the sodium potential.
// Rinzel and Miller, Math. Biosci. 49:27-59 (1980): repetitive firing from 6.26 µA/cm² on, 125 pA
// here. A smaller step above threshold fires the resting membrane once.
// Firing rates: the equations of 1952 in their own variables and constants, integrated apart from
// this system by a fourth-order Runge-Kutta scheme in steps of 10 µs.
#include "Physiology.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>

#include "Spikes.h"

namespace {

constexpr double kRest = -65;            // [mV]
constexpr double kRestTolerance = 0.5;   // [mV]
constexpr double kLowestOvershoot = 30;  // [mV]
constexpr double kSodiumPotential = 50;  // [mV]
constexpr double kCurrentTolerance = 1;  // [pA]
constexpr double kRateTolerance = 1;     // [Hz]

constexpr const char* kPaper = "Hodgkin and Huxley 1952";
constexpr const char* kOnsetOfFiring = "below 125 pA, Rinzel and Miller 1980";
constexpr const char* kIntegration = "the equations of 1952, by Runge-Kutta";

// Currents are for 2000 µm² of membrane: 20 pA are 1 µA/cm². A shock lasts 40 µs.
struct PublishedResponse {
    const char* subject;
    double current;              // [pA]
    size_t spikes, laterSpikes;  // the first is not compared where there is a rate
    double rate;                 // [Hz]
    const char* source;
};

constexpr PublishedResponse kPublished[] = {
    {"shock of 6 nC/cm2", 3000, 0, 0, 0, kPaper},
    {"shock of 7 nC/cm2", 3500, 0, 1, 0, kPaper},
    {"end of -100 pA", -100, 0, 1, 0, kPaper},
    {"step of 25 pA", 25, 0, 0, 0, kIntegration},
    {"step of 50 pA", 50, 1, 0, 0, kOnsetOfFiring},
    {"step of 100 pA", 100, 1, 0, 0, kOnsetOfFiring},
    {"step of 150 pA", 150, 0, 0, 60.6, kIntegration},
    {"step of 200 pA", 200, 0, 0, 68.3, kIntegration},
    {"step of 300 pA", 300, 0, 0, 78.6, kIntegration},
    {"step of 400 pA", 400, 0, 0, 86.4, kIntegration},
};

std::string Value(double value, const char* unit) {
    char text[64];
    std::snprintf(text, sizeof text, "%.1f %s", value, unit);
    return text;
}

std::string SpikeCount(size_t count) {
    return std::to_string(count) + (count == 1 ? " spike" : " spikes");
}

double Rate(std::span<const size_t> spikes, const Epoch& epoch) {
    if (spikes.size() < 2) return 0;
    const double between = static_cast<double>(spikes.back() - spikes.front());
    return 1000 * static_cast<double>(spikes.size() - 1) / epoch.Milliseconds(between);
}

Finding CompareRest(std::span<const PulseResponse> responses) {
    const auto distance = [](const PulseResponse& r) { return std::abs(r.rest - kRest); };
    const double rest = std::ranges::max(responses, {}, distance).rest;
    return {"resting potential", Value(rest, "mV"), Value(kRest, "mV"), kPaper,
            std::abs(rest - kRest) <= kRestTolerance};
}

Finding ComparePeak(std::span<const PulseResponse> responses) {
    const double peak = std::ranges::max(responses, {}, &PulseResponse::peak).peak;
    return {"highest peak", Value(peak, "mV"), "30 to 50 mV", "below the sodium potential",
            peak > kLowestOvershoot && peak < kSodiumPotential};
}

Finding CompareResponse(const PublishedResponse& published,
                        std::span<const PulseResponse> responses) {
    Finding finding{published.subject, "not recorded", "a response", published.source, false};
    const auto response = std::ranges::find_if(responses, [&](const PulseResponse& candidate) {
        return std::abs(candidate.current - published.current) < kCurrentTolerance;
    });
    if (response == responses.end()) return finding;
    if (published.rate > 0) {
        finding.found = Value(response->rate, "Hz");
        finding.expected = Value(published.rate, "Hz");
        finding.asExpected = std::abs(response->rate - published.rate) <= kRateTolerance;
    } else {
        finding.found = SpikeCount(response->spikes + response->laterSpikes);
        finding.expected = SpikeCount(published.spikes + published.laterSpikes);
        finding.asExpected = response->spikes == published.spikes;
    }
    finding.asExpected = finding.asExpected && response->laterSpikes == published.laterSpikes;
    return finding;
}

}  // namespace

PulseResponse MeasurePulse(const Epoch& epoch, std::span<const double> potential) {
    const Component& pulse = epoch.entries.front().stimulus.front();
    const size_t start = static_cast<size_t>(pulse.prePoints);
    const size_t end = start + static_cast<size_t>(pulse.points);
    const std::vector<size_t> all = FindSpikes(potential);
    const auto first = std::ranges::lower_bound(all, start);
    const auto last = std::ranges::lower_bound(all, end);
    const auto before = potential.first(start);
    return {.current = pulse.amplitude * epoch.entries.front().stimulusScale.unitsPerCount,
            .rest = std::reduce(before.begin(), before.end()) / static_cast<double>(start),
            .peak = std::ranges::max(potential),
            .spikes = static_cast<size_t>(last - first),
            .laterSpikes = static_cast<size_t>(all.end() - last),
            .rate = Rate({first, last}, epoch)};
}

std::vector<Finding> CompareWithLiterature(std::span<const PulseResponse> responses) {
    if (responses.empty()) return {{"pulses of current", "none", "some", "", false}};
    std::vector<Finding> findings = {CompareRest(responses), ComparePeak(responses)};
    for (const PublishedResponse& published : kPublished)
        findings.push_back(CompareResponse(published, responses));
    return findings;
}
