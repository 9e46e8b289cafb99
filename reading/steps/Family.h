// By what epochs are known that belong to one family of stimuli.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "epochs/EpochLayout.h"
#include "steps/Steps.h"

namespace corvantis::reading {

// What all epochs of a family have in common, whatever their stimuli.
struct Setting {
    int32_t interval;
    std::string_view responseUnit;
    std::string_view stimulusUnit;
};

// Numbers from 1 to 2^53 - 1, which every program can hold: of steps with the levels of each,
// whatever the level of the longest one, and of a record, whatever its amplitudes.
int64_t FamilyOfSteps(std::span<const StepPoints> steps, std::span<const double> levels,
                      double holding, const Setting& setting);
int64_t FamilyOfRecord(const Stimulus& stimulus, int32_t points, const Setting& setting);

}  // namespace corvantis::reading
