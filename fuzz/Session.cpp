// Starting the library and keeping data files in memory for the fuzz targets.
#include "Session.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

#include "Corvantis.h"

namespace corvantis_fuzz {
namespace {

int CreateInMemory(const uint8_t* data, size_t size) {
    const int descriptor = memfd_create("recording", 0);
    if (descriptor < 0 || write(descriptor, data, size) != static_cast<ssize_t>(size)) std::abort();
    return descriptor;
}

}  // namespace

void StartLibrary() {
    static const bool started = [] {
        // The library's lines would only slow the search down.
        if (std::freopen("/dev/null", "w", stdout) == nullptr) std::abort();
        return ITCInitializeAnalysis(kBufferSamples) == ITC_SUCCESS;
    }();
    if (!started) std::abort();
}

void ReleaseStimuli() {
    for (uint32_t channel = 0; channel < ITC_CHANNELS; ++channel) ITCFreeParams(channel);
}

MemoryFile::MemoryFile(const uint8_t* data, size_t size)
    : descriptor_(CreateInMemory(data, size)),
      path_("/proc/self/fd/" + std::to_string(descriptor_)) {}

MemoryFile::~MemoryFile() { close(descriptor_); }

}  // namespace corvantis_fuzz
