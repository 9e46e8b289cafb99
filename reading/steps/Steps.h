// The steps of a stimulus, found in its samples.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "epochs/EpochLayout.h"

namespace corvantis::reading {

// Points of a step, and from where on the stimulus was at the holding level before it.
struct StepPoints {
    int64_t before;
    int64_t start;
    int64_t stop;

    friend bool operator==(const StepPoints&, const StepPoints&) = default;
};

// Where a stimulus is at another level than its first: from there to there. Start is 0 and stop the
// end if it never is.
struct Reach {
    int64_t start;
    int64_t stop;
};
Reach ReachOf(std::span<const int16_t> counts);

// In the order of their first points; of the samples of a stimulus and its record.
std::vector<StepPoints> FindSteps(std::span<const int16_t> counts, const Stimulus& stimulus);

// Place of the longest, of equal ones the first; -1 without steps.
int32_t LongestOf(std::span<const StepPoints> steps);

}  // namespace corvantis::reading
