// `corvantis check --stimulus`: whether recorded stimuli can be computed again, and alike.
#pragma once

#include <vector>

#include "commands/Findings.h"
#include "files/Container.h"
#include "files/DataFile.h"
#include "output/Terminal.h"

namespace corvantis::tool {

// Computes each epoch's stimulus twice in one process and once in a fresh one, and tells which
// begin with what an earlier epoch left behind.
Findings CheckStimuli(const DataFile& file, const std::vector<EpochPlace>& epochs,
                      const Terminal& terminal);

}  // namespace corvantis::tool
