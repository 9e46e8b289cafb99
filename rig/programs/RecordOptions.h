// What corvantis record was asked for.
#pragma once

#include <string>

#include "output/Terminal.h"

namespace corvantis::rig {

struct RecordOptions {
    std::string protocol;
    std::string output;
    std::string resumed;
    std::string played;
    double waitForRoom = 60;
    bool check = false;
    bool schema = false;
    bool allowWrapping = false;
    bool continueNoise = false;
    bool watch = false;
    bool quiet = false;
};

// Exit codes as of the tool: 0, 1 if not all was recorded or a check has findings, 2.
int RunRecord(const RecordOptions& options, const tool::Terminal& terminal);

}  // namespace corvantis::rig
