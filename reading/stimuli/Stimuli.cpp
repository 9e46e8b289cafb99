// Asking the rows of the table about a record.
#include "stimuli/Stimuli.h"

#include <cstring>

namespace corvantis::reading {
namespace {

int64_t ValueAt(const Stimulus& stimulus, int32_t place) {
    int32_t value = 0;
    std::memcpy(&value, stimulus.record.data() + place, sizeof value);
    return value;
}

}  // namespace

bool IsSimpleType(int32_t type) {
    return IsStimulusType(static_cast<uint32_t>(type)) && type != ITC_STIMULUS_SUMMED;
}

bool IsComputedFromFile(int32_t type) {
    return RowOf(type).waveform.Get() != nullptr && RowOf(type).record->fileSize > 0;
}

bool FillsEpoch(const Stimulus& stimulus, int32_t points) {
    const auto& places = RowOf(stimulus.type).places;
    const bool hasRuns = places->prePoints >= 0 && places->points >= 0 && places->tailPoints >= 0;
    if (!hasRuns || !IsComputedFromFile(stimulus.type)) return true;
    return ValueAt(stimulus, places->prePoints) + ValueAt(stimulus, places->points) +
               ValueAt(stimulus, places->tailPoints) ==
           points;
}

bool StaysWithin(const Stimulus& stimulus, int32_t points) {
    if (!IsComputedFromFile(stimulus.type)) return true;
    return RowOf(stimulus.type).staysWithin(stimulus.record.data(), points);
}

Draws DrawsOf(const Stimulus& stimulus, int8_t version) {
    return RowOf(stimulus.type).draws(stimulus.record.data(), version);
}

}  // namespace corvantis::reading
