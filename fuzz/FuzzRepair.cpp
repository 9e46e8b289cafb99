// Any bytes as a damaged recording: what `corvantis repair` makes of it must pass `corvantis
// check`.
#include <unistd.h>

#include <cstdio>
#include <string>

#include "Session.h"
#include "commands/Check.h"
#include "commands/Repair.h"
#include "files/Failure.h"
#include "output/Terminal.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Repairs put a new file in its place, in memory where there is room.
    static const std::string output =
        (access("/dev/shm", W_OK) == 0 ? "/dev/shm/" : "/tmp/") + std::to_string(getpid());
    static FILE* const nowhere = std::fopen("/dev/null", "w");
    static const corvantis::tool::Terminal terminal = {nowhere, nowhere, true};
    corvantis_fuzz::StartLibrary();
    const corvantis_fuzz::MemoryFile file(data, size);
    try {
        const bool keepPartial = size % 2 == 0;
        corvantis::tool::RunRepair({file.path, output, keepPartial, true, false}, terminal);
    } catch (const corvantis::tool::Failure&) {
        return 0;
    }
    const int checked = corvantis::tool::RunCheck({{{output}, 1, false}, false}, terminal);
    corvantis_fuzz::Require(checked == corvantis::tool::kFine);
    ITCOpenFileForInput(output.c_str());
    corvantis_fuzz::ReachFirstEpoch();
    ITCCloseOpenFile();
    return std::remove(output.c_str());
}
