// One epoch as it lies in a file: where its parts begin, found from its own bytes alone.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Corvantis.h"
#include "ITCFileIO/StimulusTypes.h"
#include "bytes/FileView.h"

namespace corvantis::reading {

struct EpochPlace {
    // In the table of positions, whatever became of the epochs before it.
    int64_t number = 0;
    int64_t start = 0;
    int64_t samples = 0;
    int64_t end = 0;
    // What the table of positions counts beyond the bytes that are there, for types without any.
    int64_t overcounted = 0;
    int32_t points = 0;
    int32_t entries = 0;
};

// A stimulus record of any type but the sum; of a sum its components.
struct Stimulus {
    int32_t type = 0;
    bool isRead = false;  // not behind a record of unknown length
    alignas(std::max_align_t) std::array<std::byte, kLargestRecord> record = {};
    std::vector<Stimulus> components;
    int64_t conductances = 0;  // where the two arrays of a dynamic clamp begin; 0 without
};

struct EpochContent {
    ITCEpochHeader header = {};
    std::vector<Stimulus> stimuli;  // one an entry
};

struct Mismatch {
    std::string found;
    std::string expected;
};

enum class Condition {
    kWhole,
    kNoEntries,    // whole, or a lost block of zeros: only what accounts for it can tell
    kUnknownType,  // its end is not known from its own bytes
    kCut,          // the file ends before the epoch does
    kImpossible    // no epoch, or a damaged one
};

struct EpochReading {
    Condition condition = Condition::kWhole;
    // Samples and end are 0 where they cannot be known.
    EpochPlace place;
    Mismatch mismatch;  // unless whole
    EpochContent content;
};

// Without its stimulus records, where those are not asked for.
enum class Depth { kHeader, kRecords };

EpochReading ReadEpochAt(const FileView& file, int64_t start, Depth depth = Depth::kHeader);

// An epoch of unknown type is whole if it ends there: its samples are the last of its bytes. False
// if they have no room, or for any other epoch.
bool EndsAt(EpochReading& reading, int64_t end);

}  // namespace corvantis::reading
