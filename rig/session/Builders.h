// Handing planned stimuli to the library.
#pragma once

#include "epochs/EpochLayout.h"

namespace corvantis::rig {

// An ITCResult: of the builder, or of the first adder that failed.
int32_t BuildStimulus(int32_t entry, const reading::Stimulus& stimulus, uint16_t latency);

}  // namespace corvantis::rig
