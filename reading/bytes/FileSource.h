// A file of this machine as a source of bytes.
#pragma once

#include <string>

#include "bytes/FileView.h"

namespace corvantis::reading {

// Without a source it says why, in words.
struct OpenedFile {
    bool isOpen = false;
    ByteSource source;
    std::string refusal;
};

OpenedFile OpenFile(const char* path);

}  // namespace corvantis::reading
