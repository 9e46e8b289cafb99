// Any bytes as a damaged recording: what `corvantis repair` makes of it must pass `corvantis
// check`.
#include "Check.h"
#include "Failure.h"
#include "Repair.h"
#include "Session.h"
#include "Terminal.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Repairs put a new file in its place, in memory where there is room.
    static const std::string output =
        (access("/dev/shm", W_OK) == 0 ? "/dev/shm/" : "/tmp/") + std::to_string(getpid());
    static FILE* const nowhere = std::fopen("/dev/null", "w");
    static const corvantis::Terminal terminal = {nowhere, nowhere, true};
    corvantis_fuzz::StartLibrary();
    const corvantis_fuzz::MemoryFile file(data, size);
    try {
        const bool keepPartial = size % 2 == 0;
        corvantis::RunRepair({file.path, output, keepPartial, true, false}, terminal);
    } catch (const corvantis::Failure&) {
        return 0;
    }
    const int checked = corvantis::RunCheck({{output}, false, false}, terminal);
    corvantis_fuzz::Require(checked == corvantis::kFine);
    ITCOpenFileForInput(output.c_str());
    corvantis_fuzz::ReachFirstEpoch();
    ITCCloseOpenFile();
    return std::remove(output.c_str());
}
