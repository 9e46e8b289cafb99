// Long runs of ran2 in blocks, for hosts whose registers take 64 bits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace corvantis {

inline constexpr size_t kBlockDraws = 32;

// Draws the first of the deviates, and returns their number: possibly none. It ends where a whole
// block is not wanted any more, or one of the next draws cannot be done in scaled form.
size_t DrawInBlocks(int32_t& state, std::span<float> deviates);

}  // namespace corvantis
