// The allocation pair for every block that the library owns.
#include "ITCUtilities/Memory.h"

#include <cstdlib>

void* ITCMalloc(size_t /*count*/, size_t size) { return std::malloc(size); }

int32_t ITCFree(void* block) {
    std::free(block);
    return ITC_SUCCESS;
}
