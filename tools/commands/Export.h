// `corvantis export`: epochs as tables for other programs.
#pragma once

#include <string>

#include "commands/ManyFiles.h"
#include "output/Terminal.h"

namespace corvantis::tool {

struct ExportOptions {
    FileChoice choice;
    std::string epochs;  // list of numbers
    bool all = false;
    std::string format;  // empty for that of the output's name, or CSV
    std::string output;  // empty or - for standard output; a folder if it ends in a slash
    bool raw = false;
    bool volts = false;
    bool stimulus = false;
    bool force = false;
    bool resume = false;
};

// 0, or 1 if an epoch that was asked for cannot be given, or a stimulus not be computed, whose
// column is then empty, or is in doubt.
int RunExport(const ExportOptions& options, const Terminal& terminal);

}  // namespace corvantis::tool
