// Progress on a terminal.
#include <algorithm>
#include <utility>

#include "output/Terminal.h"

namespace corvantis::tool {

Progress::Progress(const Terminal& terminal, std::string what, int64_t total)
    : stream_(terminal.quiet || !IsScreen(terminal.messages.Stream()) ? nullptr
                                                                      : terminal.messages.Stream()),
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
