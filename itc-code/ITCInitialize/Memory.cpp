// The allocation pair for every block that the library owns.
#include "Corvantis.h"

#include <cstdlib>

#include "ITCInitialize/SlotBlocks.h"

void* ITCMalloc(size_t /*count*/, size_t size) { return std::malloc(size); }

int32_t ITCFree(void* block) {
    corvantis::ForgetInstalled(block);
    std::free(block);
    return ITC_SUCCESS;
}
