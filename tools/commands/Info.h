// `corvantis info`: what a file holds.
#pragma once

#include <string>

#include "output/Terminal.h"

namespace corvantis::tool {

struct InfoOptions {
    std::string file;
    std::string epochs;  // list of numbers; empty for the table of all
    bool json = false;
};

int RunInfo(const InfoOptions& options, const Terminal& terminal);

}  // namespace corvantis::tool
