// Computing components one by one, so that their sum can be told from what is left of it in 16
// bits.
#include "plan/Levels.h"

#include <algorithm>
#include <array>
#include <span>

#include "ITCFileIO/StimulusTypes.h"
#include "ITCWaveforms/Sum.h"
#include "files/Failure.h"
#include "plan/StoredFields.h"
#include "stimuli/Stimuli.h"

namespace corvantis::rig {
namespace {

// The middle of what a component reaches: its samples lie within half the range of it, unless its
// amplitude alone is beyond the range, or a normal deviate beyond all that are drawn.
int64_t MiddleOf(const reading::Stimulus& stimulus) {
    const FieldPlaces& places = reading::RowOf(stimulus.type).places.Get();
    if (places.mean < 0) return 0;
    const int64_t mean = WholeAt(stimulus.record.data(), places.mean);
    const bool isToBothSides = places.seed >= 0 || stimulus.type == ITC_STIMULUS_SINE;
    return isToBothSides ? mean : mean + WholeAt(stimulus.record.data(), places.amplitude) / 2;
}

bool IsBeyond(int64_t level) { return level < INT16_MIN || level > INT16_MAX; }

// An amplitude or a mean that no sample can tell.
bool IsHidden(const reading::Stimulus& stimulus) {
    const FieldPlaces& places = reading::RowOf(stimulus.type).places.Get();
    const std::array given = {places.amplitude, places.mean};
    return std::ranges::any_of(given, [&](int32_t place) {
        return place >= 0 && IsBeyond(WholeAt(stimulus.record.data(), place));
    });
}

struct Sum {
    std::vector<int64_t> levels;
    bool isHidden = false;

    void Add(const reading::Stimulus& stimulus, const uint16_t* samples) {
        const int64_t middle = MiddleOf(stimulus);
        isHidden = isHidden || IsHidden(stimulus);
        for (size_t k = 0; k < levels.size(); ++k) {
            levels[k] += middle + static_cast<int16_t>(static_cast<uint16_t>(
                                      samples[k] - static_cast<uint64_t>(middle)));
        }
    }
};

Levels LevelsOf(const Sum& sum) {
    const auto [least, most] = std::minmax_element(sum.levels.begin(), sum.levels.end());
    const auto wrapped = std::count_if(sum.levels.begin(), sum.levels.end(), IsBeyond);
    const auto all = static_cast<int64_t>(sum.levels.size());
    return {*least, *most, sum.isHidden ? all : int64_t{wrapped}};
}

}  // namespace

std::vector<Levels> LevelSurvey::Next(const PlannedEpoch& epoch) {
    const ITCEpochHeader& header = epoch.content.header;
    const EpochSettings settings = {header.samplingInterval, header.epochPoints, ITC_FILE_VERSION};
    std::vector<Levels> found;
    for (const reading::Stimulus& stimulus : epoch.content.stimuli) {
        const bool isSum = stimulus.type == ITC_STIMULUS_SUMMED;
        const std::span<const reading::Stimulus> parts =
            isSum ? std::span(stimulus.components) : std::span(&stimulus, 1);
        Sum sum;
        sum.levels.resize(static_cast<size_t>(header.epochPoints));
        std::vector<uint16_t> samples(sum.levels.size());
        for (const reading::Stimulus& part : parts) {
            const int32_t result =
                CalculateWaveform(static_cast<uint32_t>(part.type), samples.data(),
                                  part.record.data(), settings, generators_);
            if (result != ITC_SUCCESS) throw tool::Failure("out of memory");
            sum.Add(part, samples.data());
        }
        found.push_back(LevelsOf(sum));
    }
    return found;
}

}  // namespace corvantis::rig
