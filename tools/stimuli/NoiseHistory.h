// What the noise of a file's epochs continues, as far as the file tells.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "files/Container.h"
#include "files/DataFile.h"

namespace corvantis::tool {

// The state word that a seed becomes; 0 or below restarts the generator.
inline int32_t StateWord(int32_t seed) {
    return static_cast<int32_t>(0U - static_cast<uint32_t>(seed));
}

// The noise of a file's epochs, computed once each and in their order. Normal deviates are made in
// pairs: the second one begins the next noise, whatever its seed.
class NoiseHistory {
  public:
    NoiseHistory(const DataFile& file, std::span<const EpochPlace> epochs);
    // Says which epochs will be asked for, in ascending order, so that what was before any noise
    // that they continue is left out.
    void Begin(std::span<const size_t> indices);
    // Brings this process's generators to where the epoch's noise begins: through the history
    // once, however many epochs are asked for.
    void BringGeneratorsTo(size_t index);
    // On what the epoch's noise depends beyond its record; empty if on nothing.
    std::string Doubt(size_t index) const;

  private:
    struct Epoch {
        int64_t number = 0;
        std::vector<Draws> draws;
        bool isSpareHeld = false;         // before it
        std::optional<size_t> uncertain;  // an epoch whose share in that spare is not known
        bool isParityKnown = true;        // else not even whether there is a spare
        size_t settled = 0;               // the last epoch before it that depends on none
    };
    size_t FirstNeeded(size_t index) const;
    bool IsBehindGap(const EpochPlace& place) const;

    std::vector<Epoch> epochs_;
    size_t reached_ = 0;  // the epoch that the generators stand before
};

}  // namespace corvantis::tool
