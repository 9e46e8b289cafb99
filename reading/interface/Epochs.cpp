// Headers, places, parameters and scales of epochs.
#include <cstring>

#include "ITCFileIO/SequenceWords.h"
#include "interface/Boundary.h"
#include "interface/EpochInfo.h"
#include "stimuli/Stimuli.h"
#include "stimuli/StimulusJson.h"
#include "stimuli/StimulusWords.h"
#include "units/Scale.h"

namespace corvantis::reading {
namespace {

constexpr int32_t kOwnRecord = -1;

const Stimulus* Choose(const EpochContent& content, int32_t entry, int32_t component) {
    if (entry < 0 || static_cast<size_t>(entry) >= content.stimuli.size()) return nullptr;
    const Stimulus& stimulus = content.stimuli[static_cast<size_t>(entry)];
    if (component == kOwnRecord) return &stimulus;
    if (component < 0 || static_cast<size_t>(component) >= stimulus.components.size()) {
        return nullptr;
    }
    return &stimulus.components[static_cast<size_t>(component)];
}

struct Room {
    char* text;
    int64_t capacity;
    int64_t* length;
};

// say(stimulus, scale, sampling interval)
template <class Saying>
int32_t SayOfStimulus(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                      int32_t component, const Room& room, CorvantisProblem* problem, Saying say) {
    return WithEpoch(
        recording, epoch, Depth::kRecords, problem,
        [&](const Contents& contents, const FileView&, const EpochReading& reading,
            const Reporter& reporter) -> int32_t {
            const Stimulus* stimulus = Choose(reading.content, entry, component);
            if (room.length == nullptr || stimulus == nullptr) {
                return reporter.ReportEpoch(
                    CORVANTIS_BAD_ARGUMENT, epoch, -1,
                    Say("has no entry ", entry, " with component ", component));
            }
            const ITCEpochHeader& header = reading.content.header;
            const Scale scale =
                StimulusScale(contents.Moment().header, header, static_cast<size_t>(entry));
            const std::string said = say(*stimulus, scale, header.samplingInterval);
            *room.length = static_cast<int64_t>(said.size());
            if (room.text == nullptr || *room.length >= room.capacity) {
                return reporter.ReportEpoch(CORVANTIS_BAD_ARGUMENT, epoch, -1,
                                            Say("needs room for ", *room.length + 1, " bytes"));
            }
            std::memcpy(room.text, said.c_str(), said.size() + 1);
            return CORVANTIS_SUCCESS;
        });
}

}  // namespace

CorvantisEpochInfo InfoOf(const EpochReading& reading) {
    const EpochPlace& place = reading.place;
    const ITCEpochHeader& header = reading.content.header;
    CorvantisEpochInfo info = {place.start,
                               place.samples,
                               place.end,
                               place.points,
                               place.entries,
                               header.samplingInterval,
                               {},
                               {},
                               {},
                               place.entries > 0 ? header.samplingInterval / place.entries : 0,
                               DigestOf(header)};
    for (int32_t entry = 0; entry < CORVANTIS_ENTRIES; ++entry) {
        const bool isThere = entry < place.entries;
        const uint32_t word = header.channelSequence[entry];
        info.stimulusTypes[entry] = isThere ? header.stimType[entry] : 0;
        info.inputs[entry] = isThere ? InputOf(word) : -1;
        info.outputs[entry] = isThere ? OutputOf(word) : -1;
    }
    return info;
}

}  // namespace corvantis::reading

using namespace corvantis::reading;

int32_t CorvantisFileHeader(const CorvantisRecording* recording, void* record) {
    if (recording == nullptr || record == nullptr) return CORVANTIS_BAD_ARGUMENT;
    std::memcpy(record, &recording->contents->Moment().header, sizeof(ITCFileHeader));
    return CORVANTIS_SUCCESS;
}

int32_t CorvantisEpochHeader(const CorvantisRecording* recording, int64_t epoch, void* record,
                             CorvantisProblem* problem) {
    return WithEpoch(recording, epoch, Depth::kHeader, problem,
                     [&](const Contents&, const FileView&, const EpochReading& reading,
                         const Reporter& reporter) -> int32_t {
                         if (record == nullptr) return Missing(reporter);
                         std::memcpy(record, &reading.content.header, sizeof(ITCEpochHeader));
                         return CORVANTIS_SUCCESS;
                     });
}

int32_t CorvantisEpoch(const CorvantisRecording* recording, int64_t epoch, CorvantisEpochInfo* info,
                       CorvantisProblem* problem) {
    return WithEpoch(recording, epoch, Depth::kHeader, problem,
                     [&](const Contents&, const FileView&, const EpochReading& reading,
                         const Reporter& reporter) -> int32_t {
                         if (info == nullptr) return Missing(reporter);
                         *info = InfoOf(reading);
                         return CORVANTIS_SUCCESS;
                     });
}

int32_t CorvantisParameters(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                            int32_t component, CorvantisStimulusRecord* record,
                            CorvantisProblem* problem) {
    return WithEpoch(recording, epoch, Depth::kRecords, problem,
                     [&](const Contents&, const FileView&, const EpochReading& reading,
                         const Reporter& reporter) -> int32_t {
                         const Stimulus* stimulus = Choose(reading.content, entry, component);
                         if (record == nullptr || stimulus == nullptr) {
                             return reporter.ReportEpoch(
                                 CORVANTIS_BAD_ARGUMENT, epoch, -1,
                                 Say("has no entry ", entry, " with component ", component));
                         }
                         *record = {};
                         record->type = stimulus->type;
                         record->components = static_cast<int32_t>(stimulus->components.size());
                         record->isThere =
                             stimulus->isRead && RowOf(stimulus->type).record->fileSize > 0 ? 1 : 0;
                         std::memcpy(record->record, stimulus->record.data(),
                                     sizeof record->record);
                         return CORVANTIS_SUCCESS;
                     });
}

int32_t CorvantisStimulusJson(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                              char* text, int64_t capacity, int64_t* length,
                              CorvantisProblem* problem) {
    return SayOfStimulus(recording, epoch, entry, kOwnRecord, {text, capacity, length}, problem,
                         [](const Stimulus& stimulus, const Scale& scale, int32_t) {
                             return StimulusJson(stimulus, scale);
                         });
}

int32_t CorvantisStimulusWords(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                               char* text, int64_t capacity, int64_t* length,
                               CorvantisProblem* problem) {
    return SayOfStimulus(recording, epoch, entry, kOwnRecord, {text, capacity, length}, problem,
                         StimulusWords);
}

int32_t CorvantisComponentWords(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                                int32_t component, char* text, int64_t capacity, int64_t* length,
                                CorvantisProblem* problem) {
    return SayOfStimulus(recording, epoch, entry, component, {text, capacity, length}, problem,
                         StimulusWords);
}

int32_t CorvantisScale(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                       int32_t direction, CorvantisScaleInfo* scale, CorvantisProblem* problem) {
    return WithEpoch(
        recording, epoch, Depth::kHeader, problem,
        [&](const Contents& contents, const FileView&, const EpochReading& reading,
            const Reporter& reporter) -> int32_t {
            const bool isThere = entry >= 0 && entry < reading.place.entries;
            const bool isKnown =
                direction >= CORVANTIS_RESPONSE && direction <= CORVANTIS_CONDUCTANCE;
            if (scale == nullptr || !isThere || !isKnown) {
                return reporter.ReportEpoch(CORVANTIS_BAD_ARGUMENT, epoch, -1,
                                            Say("has no scale ", direction, " of entry ", entry));
            }
            const Scale from = ScaleOf(contents.Moment().header, reading.content.header,
                                       static_cast<size_t>(entry), direction);
            *scale = {
                from.countsPerVolt,    from.gain,      from.factor, from.isWord ? 1 : 0, {}, {},
                from.meaning.quantity, from.meaning.si};
            StoreText(from.unit, scale->unit);
            StoreText(from.formula, scale->formula);
            return CORVANTIS_SUCCESS;
        });
}

const char* CorvantisAxisName(int32_t direction, const char* unit) {
    return AxisNameOf(direction, unit == nullptr ? "" : unit);
}
