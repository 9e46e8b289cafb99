// What the tool knows of the stimulus types: their names, and the sizes that the table counts.
#pragma once

#include <cstdint>
#include <string_view>

namespace corvantis {

// Any of the fourteen but the sum, which has a form of its own.
bool IsSimpleType(int32_t type);

std::string_view TypeName(int32_t type);

// Size of a simple type's record as the library counts it; starts the library if need be.
int64_t CountedSize(int32_t type);

}  // namespace corvantis
