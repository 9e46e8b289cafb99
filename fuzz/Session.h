// A library that is started once for all inputs, and a data file in memory that it can open by
// path.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>

#include "Corvantis.h"

namespace corvantis_fuzz {

// Small, so that an input cannot buy much work with a large count.
inline constexpr int32_t kBufferSamples = 1024;

// The stimulus types that inputs have led to: the inputs of the tree must lead to all.
inline std::set<int32_t> reachedTypes;

inline void Require(bool condition) {
    if (!condition) std::abort();
}

// Starts the library for analysis at the first call; its lines would only slow the search down.
inline void StartLibrary() {
    static const bool started = std::freopen("/dev/null", "w", stdout) != nullptr &&
                                ITCInitializeAnalysis(kBufferSamples) == ITC_SUCCESS;
    Require(started);
}

// Release the records of all slots with their components, which reading anew would lose.
inline void ReleaseStimuli() {
    for (uint32_t channel = 0; channel < ITC_CHANNELS; ++channel) ITCFreeParams(channel);
}

// Reads the first epoch of the open file.
inline void ReachFirstEpoch() {
    if (ITCRetrieveEpoch(0) == ITC_SUCCESS) reachedTypes.insert(epochhdr->stimType[0]);
    ReleaseStimuli();
}

// A file that lives in memory and goes with this object.
struct MemoryFile {
    explicit MemoryFile(const uint8_t* data = nullptr, size_t size = 0) {
        Require(write(descriptor, data, size) == static_cast<ssize_t>(size));
    }
    MemoryFile(const MemoryFile&) = delete;
    ~MemoryFile() { close(descriptor); }

    const int descriptor = memfd_create("recording", 0);
    const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
};

}  // namespace corvantis_fuzz
