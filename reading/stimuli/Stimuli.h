// What the library's table of stimulus types says of the records of an epoch.
#pragma once

#include <cstdint>
#include <string_view>

#include "ITCFileIO/StimulusTypes.h"
#include "epochs/EpochLayout.h"

namespace corvantis::reading {

inline const StimulusType& RowOf(int32_t type) { return TypeRow(static_cast<uint32_t>(type)); }
inline std::string_view TypeName(int32_t type) { return RowOf(type).name.Get(); }

// Of any type but the sum, which has a form of its own.
bool IsSimpleType(int32_t type);
// Whether the library computes waveforms of the type from what the file holds of a record.
bool IsComputedFromFile(int32_t type);
// Whether a record's lengths are all of the epoch's points and no more; so do types without
// lengths.
bool FillsEpoch(const Stimulus& stimulus, int32_t points);
// Whether the library computes the record in so many points. Others could ask for any number of
// draws.
bool StaysWithin(const Stimulus& stimulus, int32_t points);
// The deviates that its noise draws.
Draws DrawsOf(const Stimulus& stimulus, int8_t version);

}  // namespace corvantis::reading
