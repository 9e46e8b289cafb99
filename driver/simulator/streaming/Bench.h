// What is connected to an interface, from one epoch to the next: the preparation, the levels that
// its outputs hold, the samples in its buffers, and the epoch under way.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "simulator/Wiring.h"
#include "simulator/cells/Preparation.h"
#include "simulator/streaming/Fifo.h"
#include "simulator/streaming/InterfaceSettings.h"

namespace itc18 {

// An epoch under way. A tick is the time of one sequence entry, in which one written sample goes
// into the pipeline and one acquired sample comes out.
struct Stream {
    PlayerEpoch epoch;                 // its conductances are the caller's; not its sequence
    std::vector<uint32_t> sequence;    // words
    int64_t interval;                  // of a tick [µs]
    int64_t delay;                     // [ticks], after which the first sample is played
    int64_t total;                     // [ticks]
    bool waits;                        // for its trigger
    int64_t begin;                     // when it began, or began to wait, and later by stalls [µs]
    int64_t ticks = 0;                 // that have passed
    std::optional<int64_t> stalled{};  // since when nothing moves [µs]
    int32_t failure = Player_Success;  // for which it has ended
    Fifo pipeline;
};

struct Bench {
    Bench(const InterfaceSettings& connected, const PreparationSettings& prepared)
        : settings(connected),
          preparationSettings(prepared),
          preparation(prepared),
          output(static_cast<size_t>(connected.outputBuffer)),
          input(static_cast<size_t>(connected.inputBuffer)),
          chance(static_cast<uint64_t>(connected.seed)) {}

    InterfaceSettings settings;
    PreparationSettings preparationSettings;
    Preparation preparation;
    OutputLevels levels{};
    Fifo output, input;
    uint64_t chance;          // the state of the generator that draws what a call moves
    int64_t played = 0;       // time of all epochs [µs]
    bool hasStalled = false;  // the stall is over
    bool lost = false;
    std::optional<Stream> stream;
};

// Begins an epoch whose settings have been checked.
void Begin(Bench& bench, const ITC18Simulator_State& device, const PlayerEpoch& epoch);

// Lets the epoch go as far as the clock, the buffers and the faults have it.
void Proceed(Bench& bench);

// The trigger has come.
void Trigger(Bench& bench);

// Ends the epoch and drops the samples of both buffers.
void End(Bench& bench);

// Lets time pass, with the outputs as they are.
void Rest(Bench& bench, int64_t microseconds);

}  // namespace itc18
