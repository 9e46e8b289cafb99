// Computing an epoch's stimulus again, as the library does, in a process of its own.
//
// The noise generators keep state from one waveform to the next. In a process of its own every
// epoch gets a start that the file alone determines, and a damaged file cannot harm the caller.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Container.h"
#include "DataFile.h"

namespace corvantis {

struct RebuiltStimulus {
    // One waveform an entry; empty if it cannot be computed.
    std::array<std::vector<int16_t>, ITC_CHANNELS> entries;
};

// The random numbers that one record's noise draws.
struct Draws {
    bool areNormal = false;  // else uniform
    int32_t seed = 0;
    int64_t count = 0;
};

// What an epoch's noise continues. Normal deviates are made in pairs: the second one begins the
// next noise, whatever its seed.
struct NoiseStart {
    bool isSpareHeld = false;  // before these draws
    std::vector<Draws> draws;
    std::string doubt;  // on what the noise depends beyond its record; empty if on nothing
};

// The noise of a file's epochs, computed once each and in their order.
class NoiseHistory {
  public:
    NoiseHistory(const DataFile& file, std::span<const EpochPlace> epochs);
    // No more draws than it takes to know where the epoch's noise begins.
    NoiseStart Before(size_t number) const;

  private:
    struct Epoch {
        std::vector<Draws> draws;
        bool isSpareHeld = false;         // before it
        std::optional<size_t> uncertain;  // an epoch whose share in that spare is not known
    };
    bool Continues(const Epoch& epoch) const;
    std::string Doubt(size_t number) const;

    std::vector<Epoch> epochs_;
};

// The stimulus as a fresh process computes it from there the first and, if asked, the following
// times.
std::vector<RebuiltStimulus> RebuildStimulus(const DataFile& file, const EpochPlace& place,
                                             const EpochContent& content, size_t times = 1,
                                             const NoiseStart& start = {});

// Why an entry's waveform is not, or not surely, the one that was played; empty if nothing is known
// to be against it.
std::string WhyNotRebuilt(const ITCFileHeader& file, const Stimulus& stimulus);

// Whether a waveform can be computed at all.
bool HasWaveform(const Stimulus& stimulus);

// Whether a record defines all of an epoch's points and no more; so do types without lengths.
bool FillsEpoch(const Stimulus& stimulus, int32_t points);

}  // namespace corvantis
