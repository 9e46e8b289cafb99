// Standard streams, and progress.
#include "output/Terminal.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "files/Failure.h"

namespace corvantis::tool {

// Otherwise a new file could become descriptor 2 and receive the messages.
void SecureStandardStreams() {
    if (fcntl(STDOUT_FILENO, F_GETFD) < 0) throw SystemFailure("standard output");
    int descriptor = 0;
    while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = open("/dev/null", O_RDWR);
    if (descriptor > STDERR_FILENO) close(descriptor);
}

Progress::Progress(const Terminal& terminal, std::string what, int64_t total)
    : stream_(terminal.quiet || isatty(fileno(terminal.messages)) == 0 ? nullptr
                                                                       : terminal.messages),
      what_(std::move(what)),
      total_(std::max<int64_t>(total, 1)) {}

Progress::~Progress() { Clear(); }

void Progress::Reach(int64_t done) {
    const int64_t percent = std::clamp<int64_t>(100 * done / total_, 0, 100);
    if (stream_ == nullptr || percent == shown_) return;
    shown_ = percent;
    std::fputs(fmt::format("\r{} {} %", what_, percent).c_str(), stream_);
    std::fflush(stream_);
}

void Progress::Clear() {
    if (stream_ == nullptr || shown_ < 0) return;
    shown_ = -1;
    std::fputs("\r\033[K", stream_);
}

}  // namespace corvantis::tool
