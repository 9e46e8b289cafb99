// Many random deviates at once: the same numbers, and the same generator states behind them, as
// that many single draws.
#pragma once

#include <cstdint>
#include <span>

namespace corvantis {

void DrawUniformDeviates(int32_t& state, std::span<float> deviates);
void DrawNormalDeviates(int32_t& state, std::span<float> deviates);
// On the platform's rand, for files up to version 4.
void DrawOldNormalDeviates(std::span<float> deviates);

}  // namespace corvantis
