// Steps of stimuli, spikes, and what a response does during a step.
#include <algorithm>
#include <vector>

#include "ITCUtilities/Memory.h"
#include "interface/Boundary.h"
#include "steps/Family.h"
#include "steps/Response.h"
#include "steps/Steps.h"
#include "units/Scale.h"

namespace corvantis::reading {
namespace {

constexpr int64_t kRun = 65536;  // values on their way

// An entry of an epoch, by the exported functions, which check what they are asked for.
struct EntryOf {
    const CorvantisRecording* recording;
    int64_t epoch;
    int32_t entry;
    CorvantisProblem* problem;
};

// take(value) of each point of the response.
template <class Take>
int32_t ForEachValue(const EntryOf& from, int64_t first, int64_t count, Take take) {
    const OwnedBlock<double> run = AllocateArray<double>(kRun);
    const Reporter reporter = ReporterOf(from.recording, from.problem);
    if (run == nullptr) return reporter.Report(CORVANTIS_OUT_OF_MEMORY, -1, "out of memory");
    int64_t done = 0;
    do {  // once even without points, for the checks
        const int64_t size = std::min(kRun, count - done);
        const int32_t result = CorvantisValues(from.recording, from.epoch, from.entry, first + done,
                                               size, run.get(), 1, from.problem);
        if (result != CORVANTIS_SUCCESS) return result;
        std::for_each_n(run.get(), size, take);
        done += size;
    } while (done < count);
    return CORVANTIS_SUCCESS;
}

// The threshold in the response's own unit, and whether that is a potential.
int32_t FindThreshold(const EntryOf& from, double millivolts, double& inUnit, bool& isPotential) {
    CorvantisScaleInfo scale;
    const int32_t result = CorvantisScale(from.recording, from.epoch, from.entry,
                                          CORVANTIS_RESPONSE, &scale, from.problem);
    if (result != CORVANTIS_SUCCESS) return result;
    isPotential = scale.quantity == CORVANTIS_POTENTIAL;
    // Exactly the threshold in millivolts, the usual unit.
    inUnit = scale.si == 1e-3 ? millivolts : millivolts * 1e-3 / scale.si;
    return CORVANTIS_SUCCESS;
}

int32_t CheckStep(const EntryOf& from, const CorvantisStep* step, const Reporter& reporter) {
    if (step == nullptr) return Missing(reporter);
    const bool isOrdered =
        step->before >= 0 && step->before < step->start && step->start < step->stop;
    if (isOrdered) return CORVANTIS_SUCCESS;
    return reporter.ReportEpoch(CORVANTIS_BAD_ARGUMENT, from.epoch, -1,
                                Say("has no step from point ", step->start, " to ", step->stop,
                                    " behind a baseline from ", step->before));
}

int32_t MeasureStep(const EntryOf& from, const CorvantisStep& step, double millivolts,
                    CorvantisStepResponse& response) {
    double threshold = 0.0;
    bool isPotential = false;
    int32_t result = FindThreshold(from, millivolts, threshold, isPotential);
    if (result != CORVANTIS_SUCCESS) return result;
    MeanOf baseline, steady;
    result = ForEachValue(from, step.before, step.start - step.before,
                          [&](double value) { baseline.Take(value); });
    if (result != CORVANTIS_SUCCESS) return result;
    const int64_t points = step.stop - step.start;
    // Half a part up: no length lies halfway between two.
    const int64_t last =
        std::max<int64_t>(1, (points + CORVANTIS_STEADY_PART / 2) / CORVANTIS_STEADY_PART);
    SpikeCount spikes(threshold), late(threshold);
    Farthest peak{baseline.Get()};
    int64_t left = points;
    result = ForEachValue(from, step.start, points, [&](double value) {
        spikes.Take(value);
        peak.Take(value);
        if (left-- > last) return;
        steady.Take(value);
        late.Take(value);
    });
    response = {baseline.Get(), peak.value, steady.Get(), isPotential ? spikes.Get() : -1,
                isPotential ? late.Get() : 0};
    return result;
}

using Samples = std::span<const int16_t>;

double LevelOf(const Scale& scale, int16_t count) {
    double level;
    Convert(scale, {&count, 1}, &level, 1);
    return level;
}

// A stimulus with its samples: into the course and the room for steps.
void DescribeCourse(const Contents& contents, const EpochReading& reading, size_t entry,
                    Samples counts, CorvantisCourse& course, std::span<CorvantisStep> room) {
    const ITCEpochHeader& header = reading.content.header;
    const ITCFileHeader& file = contents.Moment().header;
    const Scale scale = StimulusScale(file, header, entry);
    const Scale response = ResponseScale(file, header, entry);
    const Stimulus& stimulus = reading.content.stimuli[entry];
    const std::vector<StepPoints> steps = FindSteps(counts, stimulus);
    std::vector<double> levels;
    levels.reserve(steps.size());
    for (const StepPoints& step : steps) {
        levels.push_back(LevelOf(scale, counts[static_cast<size_t>(step.start)]));
    }
    for (size_t k = 0; k < std::min(room.size(), steps.size()); ++k) {
        room[k] = {steps[k].before, steps[k].start, steps[k].stop, levels[k]};
    }
    const Reach reach = ReachOf(counts);
    const Setting setting = {header.samplingInterval, response.unit, scale.unit};
    const double holding = LevelOf(scale, counts.front());
    const int64_t family = steps.empty() ? FamilyOfRecord(stimulus, header.epochPoints, setting)
                                         : FamilyOfSteps(steps, levels, holding, setting);
    course = {holding,         reach.start, reach.stop, family, static_cast<int32_t>(steps.size()),
              LongestOf(steps)};
}

struct Room {
    CorvantisCourse* course;
    CorvantisStep* steps;
    int32_t capacity;
    CorvantisDoubt* doubt;
};

int32_t FindCourse(const EntryOf& from, const Contents& contents, const EpochReading& reading,
                   const Room& room, const Reporter& reporter) {
    const bool hasRoom = room.course != nullptr &&
                         (room.capacity == 0 || (room.capacity > 0 && room.steps != nullptr));
    if (!hasRoom) return Missing(reporter);
    const int32_t points = reading.place.points;
    if (points < 1 || from.entry < 0) {
        return reporter.ReportEpoch(
            CORVANTIS_BAD_ARGUMENT, from.epoch, -1,
            Say("has no course of ", points, " points of entry ", from.entry));
    }
    const OwnedBlock<int16_t> counts = AllocateArray<int16_t>(points);
    if (counts == nullptr) return reporter.Report(CORVANTIS_OUT_OF_MEMORY, -1, "out of memory");
    CorvantisDoubt doubt;
    const int32_t result = CorvantisStimulus(from.recording, from.epoch, from.entry, 0, points,
                                             counts.get(), 0, &doubt, from.problem);
    if (result != CORVANTIS_SUCCESS) return result;
    DescribeCourse(contents, reading, static_cast<size_t>(from.entry),
                   {counts.get(), static_cast<size_t>(points)}, *room.course,
                   {room.steps, static_cast<size_t>(room.capacity)});
    if (doubt.reason == CORVANTIS_FOLLOWED_CELL) room.course->family = 0;
    if (room.doubt != nullptr) *room.doubt = doubt;
    return CORVANTIS_SUCCESS;
}

}  // namespace
}  // namespace corvantis::reading

using namespace corvantis::reading;

int32_t CorvantisSteps(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                       CorvantisCourse* course, CorvantisStep* steps, int32_t capacity,
                       CorvantisDoubt* doubt, CorvantisProblem* problem) {
    return WithEpoch(recording, epoch, Depth::kRecords, problem,
                     [&](const Contents& contents, const FileView&, const EpochReading& reading,
                         const Reporter& reporter) {
                         return FindCourse({recording, epoch, entry, problem}, contents, reading,
                                           {course, steps, capacity, doubt}, reporter);
                     });
}

int32_t CorvantisMeasureStep(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                             const CorvantisStep* step, double threshold,
                             CorvantisStepResponse* response, CorvantisProblem* problem) {
    const EntryOf from = {recording, epoch, entry, problem};
    return WithContents(recording, problem, [&](const Contents&, const Reporter& reporter) {
        if (response == nullptr) return Missing(reporter);
        const int32_t result = CheckStep(from, step, reporter);
        return result == CORVANTIS_SUCCESS ? MeasureStep(from, *step, threshold, *response)
                                           : result;
    });
}

int32_t CorvantisSpikes(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                        int64_t first, int64_t count, double threshold, int64_t* spikes,
                        CorvantisProblem* problem) {
    const EntryOf from = {recording, epoch, entry, problem};
    return WithContents(recording, problem, [&](const Contents&, const Reporter& reporter) {
        if (spikes == nullptr) return Missing(reporter);
        double own = 0.0;
        bool isPotential = false;
        int32_t result = FindThreshold(from, threshold, own, isPotential);
        if (result != CORVANTIS_SUCCESS) return result;
        *spikes = -1;
        if (!isPotential) return result;
        SpikeCount found(own);
        result = ForEachValue(from, first, count, [&](double value) { found.Take(value); });
        *spikes = found.Get();
        return result;
    });
}
