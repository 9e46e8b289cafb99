// The bytes that each stimulus type's record has on file; 0 for those that are not stored.
#pragma once

#include <cstddef>

namespace corvantis_fuzz {

inline constexpr size_t kRecordSizes[] = {0, 40, 36, 32, 32, 0, 32, 1284, 0, 40, 40, 8, 48, 36, 16};

}  // namespace corvantis_fuzz
