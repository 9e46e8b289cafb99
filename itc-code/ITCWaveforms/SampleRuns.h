// What is done to whole runs of samples, in loops of their own: they have versions for newer
// processors, which templates and lambdas cannot have.
#pragma once

#include <cstdint>
#include <span>

namespace corvantis {

// A run at one level; a count of zero or less is no run. Returns where the next run begins.
uint16_t* WriteLevel(uint16_t* next, int64_t count, int32_t level);
// Continues the first `period` samples of a run periodically to its end.
void RepeatPeriod(std::span<uint16_t> run, int64_t period);
void AddSamples(std::span<uint16_t> sums, const uint16_t* samples);

// Levels added to samples, which are read back as signed 16 bits: a level adds to the mean as it
// was truncated. The sum is taken in single precision and truncated once more.
void AddLevel(std::span<uint16_t> samples, float level);
void AddLevels(std::span<uint16_t> samples, const float* levels);
// The same for scaled levels of which every second value is one, by a fused multiply-add.
void AddScaledLevels(std::span<uint16_t> samples, float scale, const float* levels);

}  // namespace corvantis
