// A stimulus of a protocol as the record that the library computes from.
#pragma once

#include <optional>
#include <vector>

#include "epochs/EpochLayout.h"
#include "plan/StoredFields.h"

namespace corvantis::rig {

// What a stimulus needs to know of its entry and epoch.
struct StimulusSetting {
    const Names& names;
    const reading::Scale& scale;
    int32_t interval = 0;    // [µs]
    int32_t holding = 0;     // `mean` unless one is given [DAC codes]
    bool holdsMean = false;  // of a play for leak subtraction: whatever is given
    int32_t divisor = 1;     // of amplitudes
};

// Lengths that were not given are 0 until they are filled. Throws a Failure.
reading::Stimulus PlanStimulus(const Node& node, const StimulusSetting& setting);

// How long it is by the lengths that it has.
int64_t LengthOf(const reading::Stimulus& stimulus);

// Gives the points of the epoch that are left to the run that the protocol leaves open: `points` or
// else `tailPoints`.
void FillLengths(const Node& node, reading::Stimulus& stimulus, int32_t epochPoints);

}  // namespace corvantis::rig
