// Headers, lines of epochs, and epochs in full, for people.
#pragma once

#include "files/DataFile.h"
#include "files/EpochRecords.h"
#include "output/Terminal.h"

namespace corvantis::tool {

void PrintFile(const DataFile& file, const Terminal& terminal);
// A line for each epoch, the damaged ones included.
void PrintEpochLines(const DataFile& file, const Terminal& terminal);
void PrintEpoch(const DataFile& file, const EpochRecords& epoch, const Terminal& terminal);

}  // namespace corvantis::tool
