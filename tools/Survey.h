// The walk over the whole container as it really lies in the file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Container.h"
#include "DataFile.h"
#include "Terminal.h"

namespace corvantis {

// Bytes that belong to no complete epoch.
struct Stretch {
    int64_t begin = 0;
    int64_t end = 0;
    Mismatch mismatch;
};

// An epoch at the end of the file that is not, or not provably, complete.
struct UnfinishedEpoch {
    EpochPlace place;
    int32_t wholePoints = 0;  // that can be had from it
    Mismatch mismatch;
};

struct Survey {
    std::vector<EpochPlace> epochs;  // all complete ones, in file order
    std::vector<Stretch> strays;
    std::optional<UnfinishedEpoch> unfinished;
    // Where the walk ended, and where the table is or would be.
    int64_t tablePosition = 0;
    // A whole table is there, even if with wrong values, so the last save got at least that far.
    bool tableIsWhole = false;
    int64_t tableEntries = 0;
};

Survey SurveyFile(const DataFile& file, const Terminal& terminal);

// Whether a table of at least so many positions begins there.
bool IsTable(const DataFile& file, int64_t position, int64_t entries);

// The table that the library writes for these epochs: beyond their real starts after types that
// count bytes without having any.
std::vector<uint32_t> RecordedPositions(const std::vector<EpochPlace>& epochs);

}  // namespace corvantis
