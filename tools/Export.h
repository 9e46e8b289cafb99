// `corvantis export`: epochs as tables for other programs.
#pragma once

#include <string>

#include "Terminal.h"

namespace corvantis {

struct ExportOptions {
    std::string file;
    std::string epochs;  // list of numbers
    bool all = false;
    std::string format = "csv";
    std::string output;  // empty for standard output
    bool raw = false;
    bool units = false;
    bool stimulus = false;
    bool force = false;
};

// 0, or 1 if a stimulus that was asked for cannot be rebuilt; its column is then empty.
int RunExport(const ExportOptions& options, const Terminal& terminal);

}  // namespace corvantis
