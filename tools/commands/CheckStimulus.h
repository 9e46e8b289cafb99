// `corvantis check --stimulus`: whether recorded stimuli can be computed again, and alike.
#pragma once

#include "commands/Findings.h"

namespace corvantis::tool {

// Computes each stimulus twice, the second time in the opposite order through a recording opened
// anew, and tells what differs, cannot be computed or is in doubt.
Findings CheckStimuli(const DataFile& file, const Terminal& terminal);

}  // namespace corvantis::tool
