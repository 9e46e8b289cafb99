// Whether the file determines a stimulus.
#pragma once

#include "recording/Recording.h"

namespace corvantis::reading {

// What the epoch's noise continues: of one without noise nothing, for which the file's other epochs
// are not looked at. Null if their bytes do not come.
const NoiseHistory* HistoryOf(const Contents& contents, const EpochReading& reading,
                              const Reporter& reporter);

// The highest doubt about an entry or all; the reading has its records.
CorvantisDoubt DoubtOf(const EpochReading& reading, const NoiseHistory& history, int32_t entry);

}  // namespace corvantis::reading
