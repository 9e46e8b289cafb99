// A file of this machine as a source of bytes.
#pragma once

#include <string>

#include "bytes/FileView.h"

namespace corvantis::reading {

// Why there is none is said in words, with the number of the system's error, 0 for a file of
// another kind than a regular one.
struct OpenedFile {
    bool isOpen = false;
    ByteSource source;
    std::string refusal;
};

OpenedFile OpenFile(const char* path);

}  // namespace corvantis::reading
