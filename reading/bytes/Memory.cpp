// The reading library's allocation pair, for the rooms that it shares with the session.
#include "ITCUtilities/Memory.h"

#include <cstdlib>

namespace corvantis {

void* AllocateBlock(size_t size) { return std::malloc(size); }
void ReleaseBlock(void* block) { std::free(block); }

}  // namespace corvantis
