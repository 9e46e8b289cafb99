// A line an entry: when, how long, which stimulus, how far it reaches.
#include "programs/PlanTable.h"

#include <fmt/format.h>
#include <algorithm>

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

}  // namespace

PlanTotals SurveyPlan(const Protocol& protocol, const std::vector<Occurrence>& epochs, size_t first,
                      const tool::Terminal* table) {
    PlanTotals totals;
    LevelSurvey survey;
    if (table != nullptr) PrintHeading(*table);
    for (size_t k = first; k < epochs.size(); ++k) {
        const PlannedEpoch epoch = PlanEpoch(protocol, epochs[k]);
        const std::vector<Levels> levels = survey.Next(epoch);
        totals.microseconds += epoch.pause;
        if (table != nullptr) PrintEpoch(*table, epoch, k, totals.microseconds, levels);
        int64_t wrapped = 0;
        for (const Levels& entry : levels) wrapped += entry.wrapped;
        if (wrapped > 0 && totals.wrappedEpochs++ == 0) totals.firstWrapped = k;
        totals.wrapped += wrapped;
        totals.samples = std::max(totals.samples, epoch.Samples());
        totals.microseconds += epoch.Microseconds();
    }
    return totals;
}

}  // namespace corvantis::rig
