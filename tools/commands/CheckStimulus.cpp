// Comparing three computations of every entry's stimulus.
#include "commands/CheckStimulus.h"

#include <fmt/core.h>

#include "stimuli/NoiseHistory.h"
#include "stimuli/Rebuild.h"
#include "stimuli/Stimuli.h"

namespace corvantis::tool {
namespace {

constexpr char kExpected[] = "the waveform that was played";

// What went wrong, or nothing.
std::string Compare(const std::vector<int16_t>& first, const std::vector<int16_t>& second,
                    const std::vector<int16_t>& fresh, int32_t points, bool fits) {
    if (first.size() != static_cast<size_t>(points) || !fits) {
        return "its lengths do not fit the epoch";
    }
    if (second != first) return "another waveform the second time";
    if (fresh != first) return "another waveform in a fresh process";
    return {};
}

std::string Explain(std::string result, const std::string& reason) {
    if (result.empty()) return reason;
    return reason.empty() ? result : fmt::format("{}: {}", result, reason);
}

class StimulusCheck {
  public:
    StimulusCheck(const DataFile& file, const std::vector<EpochPlace>& epochs)
        : file_(file), history_(file, epochs) {}

    void CheckEpoch(size_t index, const EpochPlace& place) {
        const EpochContent content = ReadEpochAt(file_, place.start).content;
        const int64_t number = place.number;
        const std::string doubt = history_.Doubt(index);
        if (!doubt.empty()) {
            findings_.push_back(
                {place.start, fmt::format("epoch {}, stimulus", number), doubt, kExpected});
        }
        const auto twice = RebuildStimulus(file_, place, content, 2);
        const auto fresh = RebuildStimulus(file_, place, content);
        for (size_t entry = 0; entry < content.stimuli.size(); ++entry) {
            const Stimulus& stimulus = content.stimuli[entry];
            const std::string reason = WhyNotRebuilt(file_.Header(), stimulus);
            const std::string result =
                HasWaveform(stimulus) ? Compare(twice[0].entries[entry], twice[1].entries[entry],
                                                fresh[0].entries[entry], place.points,
                                                FillsEpoch(stimulus, place.points))
                                      : "no waveform";
            const std::string found = Explain(result, reason);
            if (found.empty()) continue;
            findings_.push_back({place.start,
                                 fmt::format("epoch {}, entry {}, {} stimulus", number, entry,
                                             TypeName(stimulus.type)),
                                 found, kExpected});
        }
    }

    Findings Take() { return std::move(findings_); }

  private:
    const DataFile& file_;
    NoiseHistory history_;
    Findings findings_;
};

}  // namespace

Findings CheckStimuli(const DataFile& file, const std::vector<EpochPlace>& epochs,
                      const Terminal& terminal) {
    Progress progress(terminal, "recomputing stimuli", static_cast<int64_t>(epochs.size()));
    StimulusCheck check(file, epochs);
    for (size_t index = 0; index < epochs.size(); ++index) {
        progress.Reach(static_cast<int64_t>(index));
        check.CheckEpoch(index, epochs[index]);
    }
    return check.Take();
}

}  // namespace corvantis::tool
