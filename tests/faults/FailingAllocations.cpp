// The library's allocation pair as this program provides it.
#include "FailingAllocations.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>

#include "Corvantis.h"

namespace {

int64_t failing = 0;
int64_t asked = 0;
int64_t live = 0;
int64_t liveBytes = 0;
int64_t peakBytes = 0;

int64_t SizeOf(void* block) { return static_cast<int64_t>(malloc_usable_size(block)); }

}  // namespace

namespace corvantis_test {

void FailAllocation(int64_t number) {
    failing = number;
    asked = 0;
}

bool AllocationFailed() { return failing != 0 && asked >= failing; }

int64_t LiveBlocks() { return live; }

void StartPeak() { peakBytes = liveBytes; }

int64_t PeakBytes() { return peakBytes; }

}  // namespace corvantis_test

void* ITCMalloc(size_t /*count*/, size_t size) {
    if (++asked == failing) return nullptr;
    void* block = std::malloc(size);
    if (block == nullptr) return nullptr;
    ++live;
    liveBytes += SizeOf(block);
    peakBytes = std::max(peakBytes, liveBytes);
    return block;
}

int32_t ITCFree(void* block) {
    if (block != nullptr) {
        --live;
        liveBytes -= SizeOf(block);
    }
    std::free(block);
    return ITC_SUCCESS;
}
