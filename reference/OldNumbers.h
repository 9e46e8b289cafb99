// The numbers that noise of old files is made of: those of the GNU C library's rand.
#pragma once

#include <cstdint>

namespace definition {

void SeedOldNumbers(uint32_t seed);
int32_t NextOldNumber();  // 0 to 2147483647

}  // namespace definition
