// Steps are stretches of one level between stretches at the holding level. What a pulse without
// points before it steps from is not known, and a pulse of no height is a step that samples do not
// show.
#include "steps/Steps.h"

#include <algorithm>
#include <cstring>

namespace corvantis::reading {
namespace {

constexpr size_t kMostStretches = 65;  // of one level, in a stimulus that is made of steps

struct Stretch {
    int64_t start;
    int64_t stop;
};

// None of a stimulus that has more of them.
std::vector<Stretch> StretchesOf(std::span<const int16_t> counts) {
    std::vector<Stretch> stretches;
    const auto points = static_cast<int64_t>(counts.size());
    for (int64_t start = 0, i = 1; i <= points; ++i) {
        const auto at = static_cast<size_t>(i);
        if (i < points && counts[at] == counts[at - 1]) continue;
        if (stretches.size() == kMostStretches) return {};
        stretches.push_back({start, i});
        start = i;
    }
    return stretches;
}

std::vector<ITCPulseParameters> PulsesOf(const Stimulus& stimulus) {
    std::vector<ITCPulseParameters> pulses;
    const auto take = [&pulses](const Stimulus& each) {
        if (each.type != ITC_STIMULUS_PULSE || !each.isRead) return;
        std::memcpy(&pulses.emplace_back(), each.record.data(), sizeof(ITCPulseParameters));
    };
    take(stimulus);
    for (const Stimulus& component : stimulus.components) take(component);
    return pulses;
}

std::vector<Stretch> FlatPulses(std::span<const int16_t> counts,
                                std::span<const ITCPulseParameters> pulses) {
    std::vector<Stretch> flat;
    const auto end = static_cast<int64_t>(counts.size());
    for (const ITCPulseParameters& pulse : pulses) {
        const int64_t start = pulse.prePoints;
        const int64_t stop = std::min(start + pulse.points, end);
        if (start <= 0 || stop <= start) continue;
        const auto within =
            counts.subspan(static_cast<size_t>(start), static_cast<size_t>(stop - start));
        const bool isHeld = std::all_of(within.begin(), within.end(),
                                        [&](int16_t count) { return count == counts.front(); });
        if (isHeld) flat.push_back({start, stop});
    }
    return flat;
}

// Steps by the samples alone, and from where on the holding level was there before.
std::vector<StepPoints> StepsBetween(std::span<const Stretch> stretches,
                                     std::span<const int16_t> counts) {
    std::vector<StepPoints> steps;
    const auto isHeld = [&](size_t k) {
        return counts[static_cast<size_t>(stretches[k].start)] == counts.front();
    };
    for (size_t k = 1; k < stretches.size(); ++k) {
        const bool returns = k + 1 == stretches.size() || isHeld(k + 1);
        if (isHeld(k) || !isHeld(k - 1) || !returns) continue;
        steps.push_back({stretches[k - 1].start, stretches[k].start, stretches[k].stop});
    }
    return steps;
}

// From where on the stimulus has been at its first level until that point.
int64_t HeldFrom(std::span<const int16_t> counts, int64_t point) {
    while (point > 0 && counts[static_cast<size_t>(point - 1)] == counts.front()) --point;
    return point;
}

}  // namespace

Reach ReachOf(std::span<const int16_t> counts) {
    const auto isAway = [&](int16_t count) { return count != counts.front(); };
    const auto first = std::find_if(counts.begin(), counts.end(), isAway);
    if (first == counts.end()) return {0, static_cast<int64_t>(counts.size())};
    const auto last = std::find_if(counts.rbegin(), counts.rend(), isAway);
    return {first - counts.begin(), last.base() - counts.begin()};
}

std::vector<StepPoints> FindSteps(std::span<const int16_t> counts, const Stimulus& stimulus) {
    const std::vector<ITCPulseParameters> pulses = PulsesOf(stimulus);
    const auto isFromUnknown = [](const ITCPulseParameters& pulse) {
        return pulse.prePoints == 0 && pulse.points > 0 && pulse.amplitude != 0;
    };
    if (std::any_of(pulses.begin(), pulses.end(), isFromUnknown)) return {};
    std::vector<StepPoints> steps = StepsBetween(StretchesOf(counts), counts);
    for (const Stretch& each : FlatPulses(counts, pulses)) {
        steps.push_back({HeldFrom(counts, each.start), each.start, each.stop});
    }
    std::sort(steps.begin(), steps.end(), [](const StepPoints& a, const StepPoints& b) {
        return a.start != b.start ? a.start < b.start : a.stop < b.stop;
    });
    steps.erase(std::unique(steps.begin(), steps.end()), steps.end());
    return steps;
}

int32_t LongestOf(std::span<const StepPoints> steps) {
    const auto longest =
        std::max_element(steps.begin(), steps.end(), [](const StepPoints& a, const StepPoints& b) {
            return a.stop - a.start < b.stop - b.start;
        });
    return longest == steps.end() ? -1 : static_cast<int32_t>(longest - steps.begin());
}

}  // namespace corvantis::reading
