// Waveforms and sums into fresh buffers, as they were computed for playing.
#include "stimuli/Computation.h"

#include "ITCFileIO/StimulusTypes.h"
#include "ITCWaveforms/Sum.h"
#include "stimuli/NoiseHistory.h"
#include "stimuli/NoiseOrigins.h"
#include "stimuli/Stimuli.h"
#include "text/Words.h"

namespace corvantis::reading {
namespace {

std::string WhyNot(const Stimulus& stimulus, int32_t points) {
    if (!IsStimulusType(static_cast<uint32_t>(stimulus.type))) {
        return Say("stimulus type ", stimulus.type, " is not known");
    }
    if (!stimulus.isRead) return "its parameters lie behind some of a type that is not known";
    if (stimulus.type == ITC_STIMULUS_SUMMED) {
        for (const Stimulus& component : stimulus.components) {
            const std::string why = WhyNot(component, points);
            if (!why.empty()) return Say("component ", TypeName(component.type), ": ", why);
        }
        return {};
    }
    const StimulusType& row = RowOf(stimulus.type);
    if (!IsComputedFromFile(stimulus.type)) return row.caveat.Get();
    if (!StaysWithin(stimulus, points)) return "its lengths do not fit the epoch";
    if (!row.isComputable(stimulus.record.data())) return "its interval has no length";
    return {};
}

EpochSettings SettingsOf(const EpochContent& content, int8_t version) {
    return {content.header.samplingInterval, content.header.epochPoints, version};
}

int32_t Calculate(const Stimulus& stimulus, uint16_t* buffer, const EpochSettings& settings,
                  NoiseGenerators& generators) {
    const bool fits = StaysWithin(stimulus, settings.epochPoints);
    return CalculateWaveform(static_cast<uint32_t>(stimulus.type), buffer,
                             fits ? stimulus.record.data() : nullptr, settings, generators);
}

}  // namespace

std::string WhyNotComputed(const EpochContent& content, size_t entry) {
    const Stimulus& stimulus = content.stimuli[entry];
    std::string why = WhyNot(stimulus, content.header.epochPoints);
    if (why.empty()) return why;
    if (!IsStimulusType(static_cast<uint32_t>(stimulus.type)))
        return Say("entry ", entry, ": ", why);
    const std::string_view name = TypeName(stimulus.type);
    const std::string_view article = name.starts_with('a') ? "an " : "a ";
    return Say("entry ", entry, " is ", article, name, " stimulus: ", why);
}

OwnedBlock<uint16_t> ComputeEntry(const EpochContent& content, size_t entry, int8_t version,
                                  NoiseGenerators& generators) {
    const Stimulus& stimulus = content.stimuli[entry];
    const EpochSettings settings = SettingsOf(content, version);
    const int64_t points = settings.epochPoints;
    OwnedBlock<uint16_t> output = AllocateZeroed<uint16_t>(points);
    if (output == nullptr) return nullptr;
    if (stimulus.type != ITC_STIMULUS_SUMMED) {
        const int32_t result = Calculate(stimulus, output.get(), settings, generators);
        return result == ITC_SUCCESS ? std::move(output) : nullptr;
    }
    const OwnedBlock<uint16_t> scratch = AllocateZeroed<uint16_t>(points);
    if (scratch == nullptr) return nullptr;
    const auto calculate = [&](int32_t k, uint16_t* buffer) {
        return Calculate(stimulus.components[static_cast<size_t>(k)], buffer, settings, generators);
    };
    const int32_t result =
        SumComponents({output.get(), static_cast<size_t>(points)}, scratch.get(),
                      static_cast<int32_t>(stimulus.components.size()), calculate);
    return result == ITC_SUCCESS ? std::move(output) : nullptr;
}

OwnedBlock<uint16_t> ComputeComponent(const EpochContent& content, size_t entry, size_t component,
                                      int8_t version, NoiseGenerators& generators) {
    const EpochSettings settings = SettingsOf(content, version);
    // As within a sum, one buffer for all of them.
    OwnedBlock<uint16_t> scratch = AllocateZeroed<uint16_t>(settings.epochPoints);
    for (size_t k = 0; k <= component && scratch != nullptr; ++k) {
        const Stimulus& stimulus = content.stimuli[entry].components[k];
        if (Calculate(stimulus, scratch.get(), settings, generators) != ITC_SUCCESS) return nullptr;
    }
    return scratch;
}

void PassOver(const EpochContent& content, size_t entry, int8_t version,
              NoiseGenerators& generators) {
    for (const NoiseStep& step : NoiseOf(0, content, version).steps) {
        if (step.entry == entry) Draw(step.draws, generators);
    }
}

}  // namespace corvantis::reading
