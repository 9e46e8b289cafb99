// A library that is started once for all inputs, and a data file in memory that it can open by
// path.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "Corvantis.h"

namespace corvantis_fuzz {

// Small, so that an input cannot buy much work with a large count.
inline constexpr int32_t kBufferSamples = 1024;

// Starts the library for analysis at the first call.
inline void StartLibrary() {
    static const bool started = [] {
        // The library's lines would only slow the search down.
        if (std::freopen("/dev/null", "w", stdout) == nullptr) std::abort();
        return ITCInitializeAnalysis(kBufferSamples) == ITC_SUCCESS;
    }();
    if (!started) std::abort();
}

// Release the records of all slots with their components, which reading anew would lose.
inline void ReleaseStimuli() {
    for (uint32_t channel = 0; channel < ITC_CHANNELS; ++channel) ITCFreeParams(channel);
}

// A file that lives in memory and goes with this object.
class MemoryFile {
  public:
    explicit MemoryFile(const uint8_t* data = nullptr, size_t size = 0)
        : descriptor_(memfd_create("recording", 0)) {
        const bool made = descriptor_ >= 0 && (size == 0 || write(descriptor_, data, size) ==
                                                                static_cast<ssize_t>(size));
        if (!made) std::abort();
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(descriptor_); }
    std::string Path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

  private:
    int descriptor_;
};

}  // namespace corvantis_fuzz
