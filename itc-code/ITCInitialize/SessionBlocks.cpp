// The lower rooms' blocks, from the exported pair. Not beside it: programs may bring a pair of
// their own in its place, and a compiler that sees both would go past that one.
#include "Corvantis.h"
#include "ITCUtilities/Memory.h"

namespace corvantis {

void* AllocateBlock(size_t size) { return ITCMalloc(1, size); }
void ReleaseBlock(void* block) { ITCFree(block); }

}  // namespace corvantis
