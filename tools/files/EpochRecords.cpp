// Asking the reading library about one epoch.
#include "files/EpochRecords.h"

#include <utility>

#include "files/Failure.h"
#include "stimuli/Computation.h"
#include "stimuli/Stimuli.h"

namespace corvantis::tool {
namespace {

using reading::EpochContent;

EpochContent ContentOf(const DataFile& file, int64_t epoch) {
    CorvantisProblem problem = {};
    reading::EpochReading reading;
    const reading::FileView view = file.Contents().View();
    Require(file.Contents().Find(view, epoch, reading::Depth::kRecords, reading,
                                 {file.Contents().Name(), &problem}),
            problem);
    return std::move(reading.content);
}

}  // namespace

std::optional<EpochRecords> ReadEpoch(const DataFile& file, int64_t number) {
    EpochRecords epoch;
    epoch.number = number;
    CorvantisProblem problem = {};
    const int32_t result = CorvantisEpoch(file.Recording(), number, &epoch.info, &problem);
    if (result == CORVANTIS_DAMAGED) return std::nullopt;
    Require(result, problem);
    Require(CorvantisEpochHeader(file.Recording(), number, epoch.header.data(), &problem), problem);
    return epoch;
}

EpochProblem WhyMissing(const DataFile& file, int64_t number) {
    const reading::Survey& survey = file.Walk().survey;
    return {reading::PlaceOf(survey, number), reading::WhyMissing(survey, number)};
}

CorvantisStimulusRecord ParametersOf(const DataFile& file, int64_t epoch, int32_t entry,
                                     int32_t component) {
    CorvantisStimulusRecord record = {};
    CorvantisProblem problem = {};
    Require(CorvantisParameters(file.Recording(), epoch, entry, component, &record, &problem),
            problem);
    return record;
}

CorvantisScaleInfo ScaleOf(const DataFile& file, int64_t epoch, int32_t entry, int32_t direction) {
    CorvantisScaleInfo scale = {};
    CorvantisProblem problem = {};
    Require(CorvantisScale(file.Recording(), epoch, entry, direction, &scale, &problem), problem);
    return scale;
}

StimulusState StimulusStateOf(const DataFile& file, int64_t epoch, int32_t entry) {
    StimulusState state;
    const EpochContent content = ContentOf(file, epoch);
    const auto k = static_cast<size_t>(entry);
    const std::string why = reading::WhyNotComputed(content, k);
    // Without the entry and its type, which every reader knows already.
    if (!why.empty()) state.problem = why.substr(why.find(": ") + 2);
    state.fillsEpoch = reading::FillsEpoch(content.stimuli[k], content.header.epochPoints);
    CorvantisProblem problem = {};
    const int32_t result =
        CorvantisStimulus(file.Recording(), epoch, entry, 0, 0, nullptr, 0, &state.doubt, &problem);
    if (result != CORVANTIS_NO_STIMULUS) Require(result, problem);
    return state;
}

std::string TypeName(int32_t type) {
    CorvantisTypeInfo info = {};
    CorvantisType(type, &info);
    return info.name;
}

}  // namespace corvantis::tool
