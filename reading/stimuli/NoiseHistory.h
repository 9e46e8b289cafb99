// What the noise of a recording's epochs continues: which random numbers each of them drew, and
// what earlier ones left behind.
//
// Uniform numbers go on from noise to noise unless a seed restarts them. Normal deviates are made
// in pairs: the second one begins the next noise, whatever its seed. The older generator restarts
// with every seed, but its pairs too leave a deviate. It is supposed that the recording began with
// fresh generators and that each epoch was computed once, in the order of the file.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "ITCUtilities/Mutex.h"
#include "ITCUtilities/Random/NoiseGenerators.h"
#include "epochs/EpochLayout.h"

namespace corvantis::reading {

// How far the file determines what an epoch's noise goes on behind, and from which epoch on the
// noise has to be drawn again to know it.
struct Origin {
    CorvantisDoubtReason reason = CORVANTIS_NO_DOUBT;
    int64_t epoch = -1;  // that the reason comes from
    size_t anchor = 0;   // place in the history
};

// Of one kind of pairs.
struct SpareOrigin {
    bool isHeld = false;
    bool isParityKnown = true;  // else isHeld says nothing
    Origin origin;              // of the deviate, or of not knowing
};

struct NoiseOrigins {
    Origin uniform = {CORVANTIS_BEGAN_BEFORE_FILE, -1, 0};
    SpareOrigin normal;
    SpareOrigin old;
};

// What one record draws, or why that is not known.
struct NoiseStep {
    Draws draws;
    size_t entry = 0;
};

struct NoiseEpoch {
    int64_t number = 0;
    std::vector<NoiseStep> steps;
    bool isKnown = true;  // else it may have drawn more, or not these
    NoiseOrigins before;
};

// What an epoch with these records draws, in the order in which they are computed.
NoiseEpoch NoiseOf(int64_t number, const EpochContent& content, int8_t version);

class NoiseHistory {
  public:
    // Of all epochs of a file that draw, or may have drawn, in their order.
    explicit NoiseHistory(std::vector<NoiseEpoch> epochs);

    // The highest doubt about an epoch's noise, in the entries asked for.
    CorvantisDoubt DoubtOf(int64_t number, int32_t entry) const;
    // Brings generators to where the epoch's noise begins.
    void BringTo(int64_t number, NoiseGenerators& generators) const;
    // That all of an epoch's noise has been computed, and left the generators like this.
    void Note(int64_t number, const NoiseGenerators& generators) const;

  private:
    struct Needs {
        bool uniform = false;
        bool normal = false;
        bool old = false;
    };
    std::optional<size_t> Find(int64_t number) const;
    Needs NeedsOf(size_t index) const;
    size_t AnchorOf(size_t index, const Needs& needs) const;
    bool Recall(size_t index, const Needs& needs, NoiseGenerators& generators) const;
    void Keep(size_t index, size_t anchor, const NoiseGenerators& generators) const;

    std::vector<NoiseEpoch> epochs_;
    // The deviate that is held before each epoch, 0 where it is not known yet.
    mutable std::vector<std::atomic<uint32_t>> spares_;
    mutable std::vector<std::atomic<uint32_t>> oldSpares_;
    mutable Mutex mutex_;
    mutable std::unordered_map<size_t, std::unique_ptr<LongPeriodState>> states_;
};

}  // namespace corvantis::reading
