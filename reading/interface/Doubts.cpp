// Doubts of a noise's history, and of what followed the cell.
#include "interface/Doubts.h"

#include "interface/Target.h"
#include "stimuli/Stimuli.h"
#include "text/Words.h"

namespace corvantis::reading {

const NoiseHistory* HistoryOf(const Contents& contents, const EpochReading& reading,
                              const Reporter& reporter) {
    static const NoiseHistory none({});
    const int8_t version = contents.Moment().header.version;
    const NoiseEpoch noise = NoiseOf(reading.place.number, reading.content, version);
    return noise.steps.empty() ? &none : contents.History(reporter);
}

CorvantisDoubt DoubtOf(const EpochReading& reading, const NoiseHistory& history, int32_t entry) {
    const std::vector<Stimulus>& stimuli = reading.content.stimuli;
    CorvantisDoubt doubt = history.DoubtOf(reading.place.number, entry);
    const Entries chosen = Chosen(entry, static_cast<int32_t>(stimuli.size()));
    for (int32_t k = chosen.first; k < chosen.first + chosen.count; ++k) {
        const int32_t type = stimuli[static_cast<size_t>(k)].type;
        if (type != ITC_STIMULUS_DYNAMIC_CLAMP) continue;
        doubt = {CORVANTIS_FOLLOWED_CELL, -1, {}};
        StoreText(RowOf(type).caveat.Get(), doubt.text);
    }
    return doubt;
}

}  // namespace corvantis::reading
