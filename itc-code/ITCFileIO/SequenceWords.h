// The device word of a sequence entry: which input it acquires from and which output it plays to.
#pragma once

#include <algorithm>
#include <cstdint>

namespace corvantis {

inline constexpr uint32_t kAnalogueInputs = 8;
inline constexpr uint32_t kAnalogueOutputs = 4;

// A word selects by number; the number behind the last analogue one, and any above, is the digital
// port.
inline constexpr uint32_t kInputUnit = 0x80;
inline constexpr uint32_t kOutputUnit = 0x800;
inline constexpr uint32_t kDigitalInput = kAnalogueInputs * kInputUnit;
inline constexpr uint32_t kDigitalOutput = kAnalogueOutputs * kOutputUnit;

constexpr int32_t InputOf(uint32_t word) {
    return static_cast<int32_t>(std::min(word / kInputUnit % 16, kAnalogueInputs));
}
constexpr int32_t OutputOf(uint32_t word) {
    return static_cast<int32_t>(std::min(word / kOutputUnit % 8, kAnalogueOutputs));
}
constexpr bool IsDigitalInput(uint32_t word) { return InputOf(word) == int32_t{kAnalogueInputs}; }
constexpr bool IsDigitalOutput(uint32_t word) {
    return OutputOf(word) == int32_t{kAnalogueOutputs};
}

}  // namespace corvantis
