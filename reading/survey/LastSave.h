// What the last save of a file without a whole table has left behind.
//
// A save writes in this order: the new epoch, over the old table; a new table, one value longer,
// behind the epoch; the file header. A save that fails cuts the file back to its size before and
// puts the old table back. Without a whole table the header is therefore still the one of the save
// before: its count and position lead to where the old table was, and everything in front of that
// place was saved before and is complete.
//
// The new epoch is believed if the file is longer than the old table reached, so that everything up
// to its end is new, and nothing but the beginning of a table follows the epoch. In a file no
// longer than that, old values of the table or the remains of a save that failed pass for samples.
#pragma once

#include "bytes/FileView.h"
#include "epochs/EpochLayout.h"
#include "survey/Survey.h"

namespace corvantis::reading {

// Whether the epoch begins where the header has the old table, and is known to be complete.
bool IsCompleteSave(const FileView& file, const EpochReading& reading);

// Completes a survey that has ended without a table: the reading is that of the place where it
// ended.
void SetAsideRest(const FileView& file, EpochReading reading, Survey& survey);

}  // namespace corvantis::reading
