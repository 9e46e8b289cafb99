// Playing one epoch through a player: its stimulus goes out, its response comes back, and whatever
// goes wrong on the way becomes an end with a sentence.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "player/OpenPlayer.h"

namespace corvantis::rig {

enum class EpochEnd {
    Complete,   // every sample was played and acquired
    Stopped,    // by who was asked
    Overflow,   // as in PlayerResult
    Underrun,   //
    Lost,       //
    TimedOut,   // the interface moves nothing any more
    Malformed,  // the sample counts do not fit the epoch; nothing was asked of the player
    Failed      // anything else that the player refused
};

struct EpochResult {
    EpochEnd end = EpochEnd::Complete;
    std::string message;  // a sentence unless complete; also where only the stop went wrong
    size_t acquired = 0;  // samples of the response, from its beginning on
    bool lost = false;    // the player can only be closed now
};

struct EpochHooks {
    // Called when samples have come, with the whole response so far. May be empty.
    std::function<void(std::span<const uint16_t> acquired)> progress;
    // Asked between any two movements. May be empty.
    std::function<bool()> stopAsked;
};

// How an epoch knows of time, and how much of it there is.
struct EpochTime {
    // Without movement for so long, and late by as much, an epoch has timed out [s]. One that
    // waits for its trigger is not late.
    double margin = 5;
    double pause = 1e-3;                // between two looks at an interface that moved nothing [s]
    std::function<double()> now;        // [s] from anywhere; empty: the monotonic clock
    std::function<void(double)> sleep;  // for so many seconds; empty: the system's
};

// Plays an epoch on an open player, whose device holds the epoch's sequence and interval.
//   stimulus  points x entries samples, as Player.h has them
//   response  room for as many
// The player is stopped in any case, also where a hook throws, but not if it is lost.
EpochResult PlayEpoch(OpenPlayer& player, const PlayerEpoch& epoch,
                      std::span<const uint16_t> stimulus, std::span<uint16_t> response,
                      const EpochHooks& hooks = {}, const EpochTime& time = {});

}  // namespace corvantis::rig
