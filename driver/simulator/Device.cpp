// The table of simulated interfaces and the checks on it.
#include "simulator/Device.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace itc18 {
namespace {

constexpr uint32_t kEndMark = 0xC000;
constexpr uint32_t kKnownBits = 0x0780 | 0x3800 | kEndMark;

std::array<Device, ITC18Simulator_Devices> devices;

int32_t CheckWord(uint32_t word, bool isLast) {
    if ((word & ~kKnownBits) != 0 || InputOf(word) > kDigitalInput ||
        OutputOf(word) > kDigitalOutput)
        return ITC18Simulator_BadSequenceWord;
    const uint32_t expected = isLast ? kEndMark : 0;
    return (word & kEndMark) == expected ? ITC18Simulator_Success : ITC18Simulator_BadEndMark;
}

}  // namespace

Device* DeviceNumbered(int32_t deviceNumber) {
    if (deviceNumber < 0 || deviceNumber >= ITC18Simulator_Devices) return nullptr;
    return &devices[static_cast<size_t>(deviceNumber)];
}

Device* OpenDevice(const void* structure) {
    if (structure == nullptr) return nullptr;
    auto* const found = std::find_if(devices.begin(), devices.end(), [=](const Device& device) {
        return device.structure == structure;
    });
    return found == devices.end() ? nullptr : &*found;
}

int32_t CheckInitialized(const Device* device) {
    if (device == nullptr || device->lost) return ITC18Simulator_NotOpen;
    return device->state.initialized ? ITC18Simulator_Success : ITC18Simulator_NotInitialized;
}

int32_t CheckSequence(int32_t length, const uint32_t* words) {
    if (length < 1 || length > ITC18Simulator_SequenceMemory)
        return ITC18Simulator_BadSequenceLength;
    if (words == nullptr) return ITC18Simulator_NullPointer;
    for (int32_t entry = 0; entry < length; ++entry) {
        const int32_t result = CheckWord(words[entry], entry == length - 1);
        if (result != ITC18Simulator_Success) return result;
    }
    return ITC18Simulator_Success;
}

void CloseEveryDevice() { devices.fill(Device{}); }

}  // namespace itc18
