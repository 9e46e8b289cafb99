// The table of epoch positions and how many entries it really has, which its pointer does not tell.
#pragma once

#include <cstdint>
#include <optional>

#include "Corvantis.h"

namespace corvantis {

inline constexpr uint32_t kFirstEpochPosition = sizeof(ITCFileHeader);

// A fresh table of `entries`, all 0; false when memory is out, and the table is then empty.
bool AllocatePositionTable(int64_t entries);
// A fresh table of what the old one held, or of the first epoch's place; false, and the old table
// stays, when memory is out.
bool RenewPositionTable();
// The table of a new session: the first epoch's place alone.
void ResetPositionTable();
// Make room for one entry more than `epochs`; new entries get that position. False, and
// unchanged, when memory is out.
bool GrowPositionTable(int64_t epochs, uint32_t position);
void ReleasePositionTable();
// The recorded start of the epoch behind `epochs` others: the table's entry, `end`, where the file
// ends, if the table has none, or nothing if so many are missing that the count is to be doubted.
std::optional<uint32_t> NextEpochPosition(int64_t epochs, uint32_t end);
int64_t PositionTableEntries();

}  // namespace corvantis
