// How far stimuli reach, and where they leave the range of the converter.
//
// A sample beyond 16 bits is not clipped: its low bits are played, which is a jump to the other end
// of the range.
#pragma once

#include <cstdint>
#include <vector>

#include "ITCUtilities/Random/GnuRandom.h"
#include "plan/PlannedEpoch.h"

namespace corvantis::rig {

struct Levels {
    int64_t least = 0, most = 0;  // before anything wraps [DAC codes]
    int64_t wrapped = 0;          // samples beyond the range
};

// Computes epochs one after the other, as recording will: noise goes on from epoch to epoch.
class LevelSurvey {
  public:
    // Of each entry. Throws a Failure without memory.
    std::vector<Levels> Next(const PlannedEpoch& epoch);

  private:
    GnuRandom old_;  // of older files alone, never drawn from
    NoiseGenerators generators_{old_};
};

}  // namespace corvantis::rig
