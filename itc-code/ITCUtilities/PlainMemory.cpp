// The allocation pair of programs and libraries that use these rooms without the session.
#include "ITCUtilities/Memory.h"

#include <cstdlib>

namespace corvantis {

void* AllocateBlock(size_t size) { return std::malloc(size); }
void ReleaseBlock(void* block) { std::free(block); }

}  // namespace corvantis
