// The library's allocation pair as this program provides it.
#include "FailingAllocations.h"

#include <cstdlib>

#include "Corvantis.h"

namespace {

int64_t failing = 0;
int64_t asked = 0;
int64_t live = 0;

}  // namespace

namespace corvantis_test {

void FailAllocation(int64_t number) {
    failing = number;
    asked = 0;
}

bool AllocationFailed() { return failing != 0 && asked >= failing; }

int64_t LiveBlocks() { return live; }

}  // namespace corvantis_test

void* ITCMalloc(size_t /*count*/, size_t size) {
    if (++asked == failing) return nullptr;
    ++live;
    return std::malloc(size);
}

int32_t ITCFree(void* block) {
    if (block != nullptr) --live;
    std::free(block);
    return ITC_SUCCESS;
}
