// The table of positions as the library writes it for epochs that were found.
#pragma once

#include <cstdint>
#include <vector>

#include "bytes/FileView.h"
#include "epochs/EpochLayout.h"

namespace corvantis::reading {

// Whether a table of at least so many positions begins there.
bool IsTable(const FileView& file, int64_t position, int64_t entries);

// Whether a table of these epochs begins there, with their recorded or their real places.
bool IsExactTable(const FileView& file, int64_t position, const std::vector<EpochPlace>& epochs);

// The table that the library writes for these epochs: beyond their real starts after types that
// count bytes without having any.
std::vector<uint32_t> RecordedPositions(const std::vector<EpochPlace>& epochs);

}  // namespace corvantis::reading
