// Asking the reading library about one epoch.
#include "files/EpochRecords.h"

#include <algorithm>
#include <utility>

#include "files/Failure.h"
#include "stimuli/Computation.h"
#include "stimuli/Stimuli.h"

namespace corvantis::tool {
namespace {

using reading::EpochContent;
using reading::Survey;

// The first number behind that one of which something else is known.
int64_t EndOfGap(const Survey& survey, int64_t number, int64_t count) {
    int64_t end = std::min(count, NextNumber(survey, number));
    const auto numberOf = [&](size_t stray) { return survey.strays[stray].number.value_or(-1); };
    const auto damaged =
        std::upper_bound(survey.damaged.begin(), survey.damaged.end(), number,
                         [&](int64_t wanted, size_t stray) { return wanted < numberOf(stray); });
    if (damaged != survey.damaged.end()) end = std::min(end, numberOf(*damaged));
    return number < survey.numbers ? std::min(end, survey.numbers) : end;
}

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
    // Nobody listens yet: what is wrong with a damaged epoch takes its time to say.
    const int32_t result = CorvantisEpoch(file.Recording(), number, &epoch.info, nullptr);
    if (result == CORVANTIS_DAMAGED) return std::nullopt;
    if (result != CORVANTIS_SUCCESS) {
        Require(CorvantisEpoch(file.Recording(), number, &epoch.info, &problem), problem);
    }
    Require(CorvantisEpochHeader(file.Recording(), number, epoch.header.data(), &problem), problem);
    return epoch;
}

LostEpochs LostFrom(const DataFile& file, int64_t number) {
    const Survey& survey = file.Walk().survey;
    const int64_t offset = PlaceOf(survey, number);
    const int64_t last = offset < 0 ? EndOfGap(survey, number, file.Info().epochs) - 1 : number;
    return {number, last, offset, WhyMissing(survey, number)};
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

std::string StimulusJsonOf(const DataFile& file, int64_t epoch, int32_t entry) {
    int64_t length = 0;
    CorvantisProblem problem = {};
    CorvantisStimulusJson(file.Recording(), epoch, entry, nullptr, 0, &length, &problem);
    std::string text(static_cast<size_t>(length), '\0');
    Require(CorvantisStimulusJson(file.Recording(), epoch, entry, text.data(), length + 1, &length,
                                  &problem),
            problem);
    return text;
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
