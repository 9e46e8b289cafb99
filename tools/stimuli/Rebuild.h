// Computing an epoch's stimulus again, as the library does, in a process of its own.
//
// The noise generators keep state from one waveform to the next. In a process of its own every
// epoch gets the start that it is given, and a damaged file cannot harm the caller.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "files/Container.h"
#include "files/DataFile.h"

namespace corvantis::tool {

struct RebuiltStimulus {
    // One waveform an entry; empty if it cannot be computed.
    std::array<std::vector<int16_t>, ITC_CHANNELS> entries;
};

// The stimulus as a process computes it, whose generators stand where this one's do, the first and,
// if asked, the following times.
std::vector<RebuiltStimulus> RebuildStimulus(const DataFile& file, const EpochPlace& place,
                                             const EpochContent& content, size_t times = 1);

// Why an entry's waveform is not, or not surely, the one that was played; empty if nothing is known
// to be against it.
std::string WhyNotRebuilt(const ITCFileHeader& file, const Stimulus& stimulus);

// Whether a waveform can be computed at all.
bool HasWaveform(const Stimulus& stimulus);

}  // namespace corvantis::tool
