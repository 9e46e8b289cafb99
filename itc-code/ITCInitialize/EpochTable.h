// The table of epoch positions and how many entries it really has, which its pointer does not tell.
#pragma once

#include <cstdint>
#include <optional>

namespace corvantis {

inline constexpr uint32_t kFirstEpochPosition = 580;

// A fresh table of `entries`, all 0; false when memory is out, and the table is then empty.
bool AllocateEpochTable(int64_t entries);
// Make room for one entry more than `epochs`; new entries repeat the last one. False, and
// unchanged, when memory is out.
bool GrowEpochTable(int64_t epochs);
void ReleaseEpochTable();
// The recorded start of the epoch behind `epochs` others, if the table reaches to it.
std::optional<uint32_t> NextEpochPosition(int64_t epochs);
int64_t EpochTableEntries();

}  // namespace corvantis
