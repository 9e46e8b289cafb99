// What would be played, as a table for people.
#pragma once

#include "output/Terminal.h"
#include "session/Recorder.h"

namespace corvantis::rig {

// What all epochs together need and take.
struct PlanTotals {
    int64_t samples = 0;       // of the longest epoch
    int64_t microseconds = 0;  // with pauses
    int64_t wrapped = 0;       // samples beyond the converter's range
    int64_t wrappedEpochs = 0;
    size_t firstWrapped = 0;
    bool hasNoiseThatGoesOn = false;
};

// Plans every epoch and computes its stimulus; prints a line for each if there is a table to print.
// Of those before the first, noise and length alone count. Throws a Failure.
PlanTotals SurveyPlan(const RecordingPlan& plan, const tool::Terminal* table);

}  // namespace corvantis::rig
