// The real standard output, set apart from the library's, and progress.
#include "output/Terminal.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "files/Failure.h"

namespace corvantis::tool {
namespace {

// Otherwise a data file could become descriptor 1 and receive what the library prints.
void FillStandardDescriptors() {
    int descriptor = 0;
    while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = open("/dev/null", O_RDWR);
    if (descriptor > STDERR_FILENO) close(descriptor);
}

}  // namespace

FILE* TakeStandardOutput() {
    if (fcntl(STDOUT_FILENO, F_GETFD) < 0) throw SystemFailure("standard output");
    FillStandardDescriptors();
    const int results = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    FILE* stream = results < 0 ? nullptr : fdopen(results, "w");
    if (stream == nullptr || nowhere < 0 || dup2(nowhere, STDOUT_FILENO) < 0) {
        throw SystemFailure("standard output");
    }
    close(nowhere);
    return stream;
}

Progress::Progress(const Terminal& terminal, std::string what, int64_t total)
    : stream_(terminal.quiet || isatty(fileno(terminal.messages)) == 0 ? nullptr
                                                                       : terminal.messages),
      what_(std::move(what)),
      total_(std::max<int64_t>(total, 1)) {}

Progress::~Progress() {
    if (stream_ != nullptr && shown_ >= 0) fmt::print(stream_, "\r\033[K");
}

void Progress::Reach(int64_t done) {
    const int64_t percent = std::clamp<int64_t>(done / (total_ / 100 + 1), 0, 100);
    if (stream_ == nullptr || percent == shown_) return;
    shown_ = percent;
    fmt::print(stream_, "\r{} {} %", what_, percent);
    std::fflush(stream_);
}

}  // namespace corvantis::tool
