// What the last save of a file without a whole table has left behind.
//
// A save writes in this order: the new epoch, over the old table; a new table, one value longer,
// behind the epoch; the file header. Without a whole table the header is therefore still the one
// of the save before: its count and position lead to the old table, of which the new epoch has
// overwritten a part or all. Each byte is thus known to be new, or old, or cannot be told:
//
// - Whatever begins before the old table's place was saved before and is complete.
// - If the file is longer than the old table reached, everything up to its end is new.
// - Otherwise what still equals the old table may be old: its values follow from the epochs before
//   it. Only bytes in front of the last stretch of such values are known to be new.
// - The new table begins with the position 580, which no other place of an old table holds.
//
// The epoch is believed if all its bytes are known to be new and nothing but the beginning of a
// table follows, or if that beginning is there.
#pragma once

#include "files/Container.h"
#include "files/DataFile.h"
#include "survey/Survey.h"

namespace corvantis::tool {

// Completes a survey that has ended without a table. The reading is that of the place where it
// ended. The last epoch is taken away from the complete ones if it is not known to be complete.
void JudgeLastSave(const DataFile& file, EpochReading reading, Survey& survey);

}  // namespace corvantis::tool
