// The seven driver calls on the simulated interfaces, with the faults injected into them.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>

#include "simulator/Device.h"
#include "simulator/Faults.h"
#include "simulator/streaming/Clock.h"

namespace {

using itc18::Device;
using itc18::TakeFault;

}  // namespace

int32_t ITC18_GetStructureSize(void) {
    const int32_t fault = TakeFault(ITC18Simulator_CallGetStructureSize);
    return fault != 0 ? fault : itc18::kStructureSize;
}

int32_t ITC18_Open(void* device, int32_t deviceNumber) {
    if (const int32_t fault = TakeFault(ITC18Simulator_CallOpen)) return fault;
    if (device == nullptr) return ITC18Simulator_NullPointer;
    Device* const connected = itc18::DeviceNumbered(deviceNumber);
    if (connected == nullptr) return ITC18Simulator_BadDeviceNumber;
    // Not refused while it is open elsewhere: a program that starts anew has forgotten where.
    if (Device* const former = itc18::OpenDevice(device)) *former = Device{};
    *connected = Device{};
    // Written to its last byte so that a memory checker finds a structure allocated too small.
    std::memset(device, 0x18, itc18::kStructureSize);
    connected->structure = device;
    connected->state.open = 1;
    return ITC18Simulator_Success;
}

int32_t ITC18_Initialize(void* device, int32_t options) {
    if (const int32_t fault = TakeFault(ITC18Simulator_CallInitialize)) return fault;
    Device* const opened = itc18::OpenDevice(device);
    if (opened == nullptr || opened->lost) return ITC18Simulator_NotOpen;
    if (options != 0) return ITC18Simulator_BadOptions;
    opened->state = ITC18Simulator_State{};
    opened->state.open = 1;
    opened->state.initialized = 1;
    return ITC18Simulator_Success;
}

int32_t ITC18_SetSamplingInterval(void* device, int32_t interval, int32_t options) {
    if (const int32_t fault = TakeFault(ITC18Simulator_CallSetSamplingInterval)) return fault;
    Device* const opened = itc18::OpenDevice(device);
    const int32_t result = itc18::CheckInitialized(opened);
    if (result != ITC18Simulator_Success) return result;
    if (options != 0) return ITC18Simulator_BadOptions;
    if (interval < ITC18Simulator_ShortestInterval || interval > ITC18Simulator_LongestInterval)
        return ITC18Simulator_BadInterval;
    opened->state.interval = interval;
    return ITC18Simulator_Success;
}

int32_t ITC18_SetSequence(void* device, int32_t length, const uint32_t* words) {
    if (const int32_t fault = TakeFault(ITC18Simulator_CallSetSequence)) return fault;
    Device* const opened = itc18::OpenDevice(device);
    int32_t result = itc18::CheckInitialized(opened);
    if (result == ITC18Simulator_Success) result = itc18::CheckSequence(length, words);
    if (result != ITC18Simulator_Success) return result;
    ITC18Simulator_State& state = opened->state;
    std::fill(std::begin(state.sequence), std::end(state.sequence), 0);
    std::copy_n(words, length, state.sequence);
    state.sequenceLength = length;
    state.prepared = 0;
    return ITC18Simulator_Success;
}

int32_t ITC18_InitializeAcquisition(void* device) {
    if (const int32_t fault = TakeFault(ITC18Simulator_CallInitializeAcquisition)) return fault;
    Device* const opened = itc18::OpenDevice(device);
    const int32_t result = itc18::CheckInitialized(opened);
    if (result != ITC18Simulator_Success) return result;
    if (opened->state.sequenceLength == 0) return ITC18Simulator_NoSequence;
    opened->state.prepared = 1;
    return ITC18Simulator_Success;
}

int32_t ITC18_Close(void* device) {
    Device* const opened = itc18::OpenDevice(device);
    if (opened != nullptr) *opened = Device{};
    if (const int32_t fault = TakeFault(ITC18Simulator_CallClose)) return fault;
    return opened != nullptr ? ITC18Simulator_Success : ITC18Simulator_NotOpen;
}

int32_t ITC18Simulator_FailCall(int32_t call, int32_t result) {
    if (call < 0 || call >= ITC18Simulator_Calls) return ITC18Simulator_BadCall;
    itc18::SetFault(call, 0, result);
    return ITC18Simulator_Success;
}

int32_t ITC18Simulator_FailNthCall(int32_t call, int32_t nth, int32_t result) {
    if (call < 0 || call >= ITC18Simulator_Calls || nth < 1) return ITC18Simulator_BadCall;
    itc18::SetFault(call, nth, result);
    return ITC18Simulator_Success;
}

int32_t ITC18Simulator_GetState(int32_t deviceNumber, ITC18Simulator_State* state) {
    if (state == nullptr) return ITC18Simulator_NullPointer;
    const Device* const connected = itc18::DeviceNumbered(deviceNumber);
    if (connected == nullptr) return ITC18Simulator_BadDeviceNumber;
    *state = connected->state;
    return ITC18Simulator_Success;
}

void ITC18Simulator_Reset(void) {
    itc18::CloseEveryDevice();
    itc18::ClearFaults();
    itc18::timeByHand.reset();
}
