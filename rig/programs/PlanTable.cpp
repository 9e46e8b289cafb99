// A line an entry: when, how long, which stimulus, how far it reaches.
#include "programs/PlanTable.h"

#include <fmt/format.h>

#include <algorithm>

#include "plan/Levels.h"
#include "plan/StoredFields.h"
#include "stimuli/Stimuli.h"
#include "stimuli/StimulusWords.h"
#include "text/Text.h"

namespace corvantis::rig {
namespace {

std::string LevelText(int64_t code, const reading::Scale& scale) {
    return fmt::format("{:.6g}", reading::InUnits(static_cast<double>(code), scale));
}

void PrintHeading(const tool::Terminal& table) {
    table.Print("{:>5} {:>10} {:>9} {:>8} {:>10} {:>10} {:<6} {}\n", "epoch", "begins [s]",
                "last [ms]", "interval", "least", "most", "unit", "stimulus");
}

void PrintEntry(const tool::Terminal& table, const PlannedEpoch& epoch, size_t entry,
                const Levels& levels, const std::string& before) {
    const reading::Scale scale = StimulusScaleOf(epoch, entry);
    table.Print("{:<35} {:>10} {:>10} {:<6} {}\n", before, LevelText(levels.least, scale),
                LevelText(levels.most, scale), scale.unit,
                reading::StimulusWords(epoch.content.stimuli[entry], scale,
                                       epoch.content.header.samplingInterval));
    if (levels.wrapped > 0) {
        table.Print("{:>35} {} points beyond the converter's range: they would wrap\n", "",
                    levels.wrapped);
    }
}

void PrintEpoch(const tool::Terminal& table, const PlannedEpoch& epoch, size_t number,
                int64_t begins, const std::vector<Levels>& levels) {
    const std::string before = fmt::format(
        "{:>5} {:>10.3f} {:>9.6g} {:>5} \xC2\xB5s", number, 1e-6 * static_cast<double>(begins),
        1e-3 * static_cast<double>(epoch.Microseconds()), epoch.content.header.samplingInterval);
    for (size_t entry = 0; entry < levels.size(); ++entry) {
        PrintEntry(table, epoch, entry, levels[entry], entry == 0 ? before : std::string());
    }
    const std::string comment = reading::DisplayText(epoch.content.header.epochComment);
    if (!comment.empty()) table.Print("{:>35} {}\n", "", comment);
}

void AddWrapped(PlanTotals& totals, size_t number, const std::vector<Levels>& levels) {
    int64_t wrapped = 0;
    for (const Levels& entry : levels) wrapped += entry.wrapped;
    if (wrapped > 0 && totals.wrappedEpochs++ == 0) totals.firstWrapped = number;
    totals.wrapped += wrapped;
}

bool GoesOn(const reading::Stimulus& stimulus) {
    const int32_t seed = reading::RowOf(stimulus.type).places.Get().seed;
    return (seed >= 0 && WholeAt(stimulus.record.data(), seed) < 0) ||
           std::any_of(stimulus.components.begin(), stimulus.components.end(), GoesOn);
}

bool HasNoiseThatGoesOn(const PlannedEpoch& epoch) {
    const std::vector<reading::Stimulus>& stimuli = epoch.content.stimuli;
    return std::any_of(stimuli.begin(), stimuli.end(), GoesOn);
}

}  // namespace

PlanTotals SurveyPlan(const RecordingPlan& plan, const tool::Terminal* table) {
    PlanTotals totals;
    LevelSurvey survey;
    if (table != nullptr) PrintHeading(*table);
    for (size_t k = plan.drawnFrom; k < plan.epochs.size(); ++k) {
        const PlannedEpoch epoch = PlanEpoch(plan.protocol, plan.epochs[k]);
        const std::vector<Levels> levels = survey.Next(epoch);
        totals.samples = std::max(totals.samples, epoch.Samples());
        if (k < plan.first) continue;
        totals.microseconds += epoch.pause;
        if (table != nullptr) PrintEpoch(*table, epoch, k, totals.microseconds, levels);
        AddWrapped(totals, k, levels);
        totals.hasNoiseThatGoesOn = totals.hasNoiseThatGoesOn || HasNoiseThatGoesOn(epoch);
        totals.microseconds += epoch.Microseconds();
    }
    return totals;
}

}  // namespace corvantis::rig
