// The meaning of each result code, in words for the person at the rig.
#include "LibraryCalls.h"

#include <stdexcept>
#include <string>

#include "Corvantis.h"

namespace {

const char* Meaning(int32_t result) {
    switch (result) {
        case ITC_NOT_STARTED:
            return "not started, or the interface failed";
        case ITC_STIMULUS_ERROR:
            return "the stimulus is missing, wrong or cannot be computed";
        case ITC_TOO_LARGE:
            return "the interval was refused, or the epoch is above the buffers";
        case ITC_OUT_OF_MEMORY:
            return "out of memory";
        case ITC_BAD_ARGUMENT:
            return "bad sequence, length, interval or channel";
        case ITC_FILE_ERROR:
            return "the file cannot be created, opened, read or written, or has no such epoch";
        case ITC_VERSION_TOO_NEW:
            return "the file is of a newer format version";
        default:
            return "unknown result";
    }
}

}  // namespace

void Require(int32_t result, const char* call) {
    if (result == ITC_SUCCESS) return;
    throw std::runtime_error(std::string(call) + ": " + Meaning(result) + " (" +
                             std::to_string(result) + ")");
}
