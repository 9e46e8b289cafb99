// How an interface's outputs, the amplifier and its inputs are wired to each other.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "simulator/Device.h"

namespace itc18 {

// What stands at each output, by its selector.
using OutputLevels = std::array<uint16_t, kDigitalOutput + 1>;

// The command of the amplifier [counts].
inline int16_t CommandCounts(const OutputLevels& levels) { return static_cast<int16_t>(levels[0]); }

// What the converter makes of a level [counts].
inline uint16_t Converted(double counts) {
    return static_cast<uint16_t>(
        static_cast<int16_t>(std::clamp(std::round(counts), -32768.0, 32767.0)));
}

// Each entry's sample to its output; of two with the same output the later one stands.
inline void SetOutputs(OutputLevels& levels, std::span<const uint32_t> entries,
                       const uint16_t* samples) {
    for (size_t entry = 0; entry < entries.size(); ++entry)
        levels[OutputOf(entries[entry])] = samples[entry];
}

// What an input other than 0 reads.
inline uint16_t EchoAt(uint32_t input, const OutputLevels& levels) {
    if (input == kDigitalInput) return levels[kDigitalOutput];
    return input < kDigitalOutput ? levels[input] : uint16_t{0};
}

}  // namespace itc18
