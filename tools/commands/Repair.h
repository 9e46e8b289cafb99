// `corvantis repair`: a new file with every complete epoch of a damaged one.
#pragma once

#include <string>

#include "output/Terminal.h"

namespace corvantis::tool {

struct RepairOptions {
    std::string file;
    std::string output;
    bool keepPartial = false;
    bool force = false;
    bool json = false;
};

// 0 if everything was kept, 1 if something was dropped or is in doubt.
int RunRepair(const RepairOptions& options, const Terminal& terminal);

}  // namespace corvantis::tool
