// Where exported tables go, and in which format.
#pragma once

#include <cstdint>
#include <string>

#include "commands/Export.h"
#include "files/FoundFiles.h"

namespace corvantis::tool {

bool IsStandardOutput(const ExportOptions& options);
// Then every file has a folder of its own in it, for all its epochs unless some are named.
bool IsFolderOutput(const ExportOptions& options);
// Throws a Failure if the name's ending says none.
std::string FormatOf(const ExportOptions& options);

// Of an epoch of a file of so many. Makes the folders that are not there.
std::string TablePath(const ExportOptions& options, const FoundFile& found, int64_t epoch,
                      int64_t epochs);

}  // namespace corvantis::tool
