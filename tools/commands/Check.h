// `corvantis check`: what is wrong with files' containers, and which stimuli can be computed again.
#pragma once

#include "commands/ManyFiles.h"
#include "output/Terminal.h"

namespace corvantis::tool {

struct CheckOptions {
    FileChoice choice;
    bool stimulus = false;
};

// 0 if all files are clean, 1 for findings, 2 if one cannot be read; the others are still checked.
int RunCheck(const CheckOptions& options, const Terminal& terminal);

}  // namespace corvantis::tool
