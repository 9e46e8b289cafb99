// What the noise of a file's epochs continues, as far as the file tells.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Container.h"
#include "DataFile.h"

namespace corvantis {

// Noise of files up to this version came from the recording machine's own generator.
inline constexpr int8_t kLastVersionWithPlatformNoise = 4;

// The state word that a seed becomes; 0 or below restarts the generator.
inline int32_t StateWord(int32_t seed) {
    return static_cast<int32_t>(0U - static_cast<uint32_t>(seed));
}

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
    std::string doubt;
};

// The noise of a file's epochs, computed once each and in their order.
class NoiseHistory {
  public:
    NoiseHistory(const DataFile& file, std::span<const EpochPlace> epochs);
    // No more draws than it takes to know where the epoch's noise begins.
    NoiseStart Before(size_t number) const;
    // On what the epoch's noise depends beyond its record; empty if on nothing.
    std::string Doubt(size_t number) const;

  private:
    struct Epoch {
        std::vector<Draws> draws;
        bool isSpareHeld = false;         // before it
        std::optional<size_t> uncertain;  // an epoch whose share in that spare is not known
    };
    std::vector<Epoch> epochs_;
};

}  // namespace corvantis
