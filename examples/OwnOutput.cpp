// Duplicating standard output before it is turned over to the library.
#include "OwnOutput.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace {

FILE* DuplicateStandardOutput() {
    std::fflush(stdout);
    const int descriptor = dup(STDOUT_FILENO);
    FILE* duplicate = descriptor < 0 ? nullptr : fdopen(descriptor, "w");
    if (duplicate == nullptr)
        throw std::system_error(errno, std::generic_category(), "standard output");
    return duplicate;
}

}  // namespace

OwnOutput::OwnOutput(const std::string& log) : stream(DuplicateStandardOutput()) {
    if (std::freopen(log.c_str(), "a", stdout) == nullptr) {
        std::fclose(stream);
        throw std::system_error(errno, std::generic_category(), log);
    }
}

OwnOutput::~OwnOutput() { std::fclose(stream); }
