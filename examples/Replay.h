// Recomputes the recorded stimuli and compares them with what was played.
#pragma once

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include "Recording.h"

struct Replay {
    Epoch epoch;
    std::vector<uint16_t> stimulus;   // recomputed, interleaved
    std::vector<size_t> differences;  // per entry, the samples that differ from those played
    size_t firstDifference;           // index of the first of them

    size_t Differences() const { return std::reduce(differences.begin(), differences.end()); }
    bool Identical() const { return Differences() == 0; }
};

// Every epoch of the open recording against the plays that the side file kept.
std::vector<Replay> ReplayAll(const Recording& recording, const std::string& playedPath);
