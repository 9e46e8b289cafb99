// A range of points that is asked for, and the caller's memory that it goes to.
#pragma once

#include <cstdint>

#include "recording/Problem.h"
#include "text/Words.h"

namespace corvantis::reading {

// What is asked for, and where it goes.
template <class Value>
struct Target {
    int32_t entry;
    int64_t first;
    int64_t count;
    Value* values;
    int64_t stride;
};

struct Entries {
    int32_t first;
    int32_t count;
};

inline Entries Chosen(int32_t entry, int32_t entries) {
    return entry == CORVANTIS_ALL_ENTRIES ? Entries{0, entries} : Entries{entry, 1};
}

// Sets a stride that was left open.
template <class Value>
int32_t CheckTarget(const EpochPlace& place, Target<Value>& target, const Reporter& reporter) {
    const bool isEntry = target.entry == CORVANTIS_ALL_ENTRIES ||
                         (target.entry >= 0 && target.entry < place.entries);
    const bool isRange =
        target.first >= 0 && target.count >= 0 && target.first <= place.points - target.count;
    const int64_t width = Chosen(target.entry, place.entries).count;
    if (target.stride == 0) target.stride = width;
    const bool hasRoom = target.count == 0 || (target.values != nullptr && target.stride >= width);
    if (isEntry && isRange && hasRoom) return CORVANTIS_SUCCESS;
    return reporter.ReportEpoch(
        CORVANTIS_BAD_ARGUMENT, place.number, -1,
        Say("has ", place.points, " points of ", place.entries, " entries; asked for points ",
            target.first, " and ", target.count, " on of entry ", target.entry));
}

}  // namespace corvantis::reading
