// `corvantis info`: what files hold.
#pragma once

#include <string>

#include "commands/ManyFiles.h"
#include "output/Terminal.h"

namespace corvantis::tool {

struct InfoOptions {
    FileChoice choice;
    std::string epochs;  // list of numbers; empty for the table of all
};

// 0, or 2 if a file cannot be read; damage is said, and no reason for another exit code.
int RunInfo(const InfoOptions& options, const Terminal& terminal);

}  // namespace corvantis::tool
