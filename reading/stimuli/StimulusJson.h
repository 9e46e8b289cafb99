// The parameters of a stimulus as JSON.
#pragma once

#include <string>

#include "epochs/EpochLayout.h"
#include "units/Scale.h"

namespace corvantis::reading {

// `scale` is that of its entry's stimulus, in whose units levels are said too.
std::string StimulusJson(const Stimulus& stimulus, const Scale& scale);

}  // namespace corvantis::reading
