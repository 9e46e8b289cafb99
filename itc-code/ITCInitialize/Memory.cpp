// The allocation pair for every block that the library owns.
#include "Corvantis.h"

#include <cstdlib>

#include "ITCInitialize/SlotBlocks.h"
#include "ITCUtilities/Memory.h"

namespace corvantis {

void* AllocateBlock(size_t size) { return ITCMalloc(1, size); }
void ReleaseBlock(void* block) { ITCFree(block); }

}  // namespace corvantis

void* ITCMalloc(size_t /*count*/, size_t size) { return std::malloc(size); }

int32_t ITCFree(void* block) {
    corvantis::ForgetInstalled(block);
    std::free(block);
    return ITC_SUCCESS;
}
