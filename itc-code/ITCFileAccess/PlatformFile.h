// What the data file asks of the operating system, beyond what standard streams can do.
#pragma once

#include <cstdint>
#include <cstdio>

namespace corvantis {

enum class Access {
    kReading,
    kReplacing,  // emptied, but not while another program records it
    kCreating    // only if there is no such file
};

// The first file that matches a pattern, or the one of that name: "~" and wildcards are expanded as
// shells do. Null for anything but a regular file that may be opened so. Programs that the
// application starts do not get the file.
FILE* OpenFirstMatch(const char* pattern, Access access);

int64_t FileSize(FILE* stream);  // -1 on failure
// How many names the file has; 0 once it was deleted, or if that cannot be told.
int64_t FileNames(FILE* stream);
bool CutFile(FILE* stream, int64_t size);
// What was flushed reaches the disk.
bool ForceToDisk(FILE* stream);
// Forget what was written but could not reach the file, or it would follow whenever there is room.
void DiscardUnwritten(FILE* stream);

}  // namespace corvantis
