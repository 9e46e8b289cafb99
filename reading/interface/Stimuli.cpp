// Recomputed stimuli, by ranges, into the caller's memory.
#include "stimuli/Stimuli.h"
#include "ITCUtilities/Random/GnuRandom.h"
#include "interface/Boundary.h"
#include "interface/Doubts.h"
#include "interface/Target.h"
#include "stimuli/Computation.h"
#include "units/Scale.h"

namespace corvantis::reading {
namespace {

int32_t CheckComputable(const EpochReading& reading, const Entries& chosen,
                        const Reporter& reporter) {
    for (int32_t k = 0; k < chosen.count; ++k) {
        const std::string why =
            WhyNotComputed(reading.content, static_cast<size_t>(int64_t{chosen.first} + k));
        if (why.empty()) continue;
        return reporter.ReportEpoch(CORVANTIS_NO_STIMULUS, reading.place.number,
                                    reading.place.start, why);
    }
    return CORVANTIS_SUCCESS;
}

// Computes the chosen entries in their order: store(entry's place among the chosen, samples).
template <class Store>
int32_t ComputeChosen(const Contents& contents, const EpochReading& reading,
                      const NoiseHistory& history, const Entries& chosen, Store store) {
    const int8_t version = contents.Moment().header.version;
    const int64_t number = reading.place.number;
    GnuRandom old;
    NoiseGenerators generators(old);
    history.BringTo(number, generators);
    for (int32_t entry = 0; entry < chosen.first + chosen.count; ++entry) {
        const auto k = static_cast<size_t>(entry);
        if (entry < chosen.first) {
            PassOver(reading.content, k, version, generators);
            continue;
        }
        const OwnedBlock<uint16_t> samples = ComputeEntry(reading.content, k, version, generators);
        if (samples == nullptr) return CORVANTIS_NO_STIMULUS;
        store(entry - chosen.first, reinterpret_cast<const int16_t*>(samples.get()));
    }
    if (chosen.first + chosen.count == reading.place.entries) history.Note(number, generators);
    return CORVANTIS_SUCCESS;
}

// Samples of one component of an entry that can be computed; null without memory.
OwnedBlock<uint16_t> ComputeOne(const Contents& contents, const EpochReading& reading,
                                const NoiseHistory& history, size_t entry, size_t component) {
    const int8_t version = contents.Moment().header.version;
    GnuRandom old;
    NoiseGenerators generators(old);
    history.BringTo(reading.place.number, generators);
    for (size_t k = 0; k < entry; ++k) PassOver(reading.content, k, version, generators);
    return ComputeComponent(reading.content, entry, component, version, generators);
}

int32_t GiveComponent(const Contents& contents, const EpochReading& reading, Target<double> target,
                      int32_t component, const Reporter& reporter) {
    int32_t result = CheckTarget(reading.place, target, reporter);
    if (result != CORVANTIS_SUCCESS) return result;
    const Entries chosen = Chosen(target.entry, reading.place.entries);
    const auto entry = static_cast<size_t>(chosen.first);
    const size_t components =
        chosen.count == 1 ? reading.content.stimuli[entry].components.size() : 0;
    if (component < 0 || static_cast<size_t>(component) >= components) {
        return reporter.ReportEpoch(
            CORVANTIS_BAD_ARGUMENT, reading.place.number, -1,
            Say("has no component ", component, " of entry ", target.entry));
    }
    result = CheckComputable(reading, chosen, reporter);
    if (result != CORVANTIS_SUCCESS || target.count == 0) return result;
    const NoiseHistory* history = HistoryOf(contents, reading, reporter);
    if (history == nullptr) return CORVANTIS_FILE_ERROR;
    const auto samples =
        ComputeOne(contents, reading, *history, entry, static_cast<size_t>(component));
    if (samples == nullptr) return reporter.Report(CORVANTIS_OUT_OF_MEMORY, -1, "out of memory");
    const Scale scale =
        ScaleOf(contents.Moment().header, reading.content.header, entry, CORVANTIS_STIMULUS);
    const auto* first = reinterpret_cast<const int16_t*>(samples.get()) + target.first;
    Convert(scale, {first, static_cast<size_t>(target.count)}, target.values, 1);
    return CORVANTIS_SUCCESS;
}

// store(place among the chosen entries, samples) as above
template <class Value, class Store>
int32_t GiveStimulus(const CorvantisRecording* recording, int64_t epoch, Target<Value> target,
                     CorvantisDoubt* doubt, CorvantisProblem* problem, Store store) {
    return WithEpoch(recording, epoch, Depth::kRecords, problem,
                     [&](const Contents& contents, const FileView&, const EpochReading& reading,
                         const Reporter& reporter) -> int32_t {
                         int32_t result = CheckTarget(reading.place, target, reporter);
                         if (result != CORVANTIS_SUCCESS) return result;
                         const NoiseHistory* history = HistoryOf(contents, reading, reporter);
                         if (history == nullptr) return CORVANTIS_FILE_ERROR;
                         if (doubt != nullptr) *doubt = DoubtOf(reading, *history, target.entry);
                         const Entries chosen = Chosen(target.entry, reading.place.entries);
                         result = CheckComputable(reading, chosen, reporter);
                         if (result != CORVANTIS_SUCCESS || target.count == 0) return result;
                         const auto storeChosen = [&](int32_t k, const int16_t* samples) {
                             store(contents, reading, target, k, samples + target.first);
                         };
                         result = ComputeChosen(contents, reading, *history, chosen, storeChosen);
                         if (result == CORVANTIS_SUCCESS) return result;
                         return reporter.ReportEpoch(
                             CORVANTIS_NO_STIMULUS, epoch, reading.place.start,
                             "its lengths do not fit the waveform, or memory");
                     });
}

}  // namespace
}  // namespace corvantis::reading

using namespace corvantis::reading;

int32_t CorvantisStimulus(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                          int64_t first, int64_t count, int16_t* values, int64_t stride,
                          CorvantisDoubt* doubt, CorvantisProblem* problem) {
    const Target<int16_t> target = {entry, first, count, values, stride};
    return GiveStimulus(recording, epoch, target, doubt, problem,
                        [](const Contents&, const EpochReading&, const Target<int16_t>& to,
                           int32_t k, const int16_t* samples) {
                            int16_t* value = to.values + k;
                            for (int64_t i = 0; i < to.count; ++i)
                                value[i * to.stride] = samples[i];
                        });
}

int32_t CorvantisStimulusValues(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                                int64_t first, int64_t count, double* values, int64_t stride,
                                CorvantisDoubt* doubt, CorvantisProblem* problem) {
    const Target<double> target = {entry, first, count, values, stride};
    return GiveStimulus(
        recording, epoch, target, doubt, problem,
        [](const Contents& contents, const EpochReading& reading, const Target<double>& to,
           int32_t k, const int16_t* samples) {
            const int32_t entryOf = to.entry == CORVANTIS_ALL_ENTRIES ? k : to.entry;
            const Scale scale = ScaleOf(contents.Moment().header, reading.content.header,
                                        static_cast<size_t>(entryOf), CORVANTIS_STIMULUS);
            Convert(scale, {samples, static_cast<size_t>(to.count)}, to.values + k, to.stride);
        });
}

int32_t CorvantisComponentValues(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                                 int32_t component, int64_t first, int64_t count, double* values,
                                 CorvantisProblem* problem) {
    return WithEpoch(recording, epoch, Depth::kRecords, problem,
                     [&](const Contents& contents, const FileView&, const EpochReading& reading,
                         const Reporter& reporter) -> int32_t {
                         return GiveComponent(contents, reading, {entry, first, count, values, 0},
                                              component, reporter);
                     });
}
