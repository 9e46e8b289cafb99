// The simulated interfaces: what each of them holds, and what their sequence words mean.
#pragma once

#include <cstdint>
#include <memory>

#include "simulator/ITC18Simulator.h"

namespace itc18 {

struct Bench;

struct Device {
    const void* structure = nullptr;  // the caller's memory, known by its address alone; null: none
    ITC18Simulator_State state{};
    std::shared_ptr<Bench> bench;  // what is connected for streaming, or null
    bool lost = false;             // answers nothing until it is opened again
};

constexpr int32_t kStructureSize = 512;  // [bytes]

// Selectors as the words hold them: analogue channels first, the digital one behind them.
constexpr uint32_t kDigitalInput = 8;
constexpr uint32_t kDigitalOutput = 4;

constexpr uint32_t InputOf(uint32_t word) { return (word & 0x0780) >> 7; }
constexpr uint32_t OutputOf(uint32_t word) { return (word & 0x3800) >> 11; }

// The interface of that number, or null when there is none.
Device* DeviceNumbered(int32_t deviceNumber);

// The interface that is open in that structure, or null.
Device* OpenDevice(const void* structure);

// Whether a device, or null, takes set-up calls: success, not open or lost, or not initialised.
int32_t CheckInitialized(const Device* device);

// Whether a sequence can be loaded. Reads no word behind a bad one, and none at all when the
// length itself is bad.
int32_t CheckSequence(int32_t length, const uint32_t* words);

void CloseEveryDevice();

}  // namespace itc18
