// Starting the library with a device or without one, re-starting the device, and ending.
#include <ctime>

#include "Corvantis.h"
#include "ITC18.h"
#include "ITCInitialize/PositionTable.h"
#include "ITCInitialize/SlotBlocks.h"
#include "ITCInitialize/State.h"
#include "ITCUtilities/Diagnostics.h"
#include "ITCUtilities/Memory.h"

namespace corvantis {
namespace {

constexpr int32_t kDefaultDeviceInterval = 10;

bool AllocateDevice() {
    void* const structure = AllocateArray<uint8_t>(ITC18_GetStructureSize()).release();
    if (structure == nullptr) return false;
    itc = structure;
    return true;
}

bool RenewState() {
    if (!RenewEpochHeader() || !RenewFileHeader()) return false;
    FillBlankFileHeader();
    return RenewPositionTable() && RenewBufferCapacity();
}

int32_t SetDeviceInterval() {
    const bool done = ITC18_SetSamplingInterval(itc, kDefaultDeviceInterval, 0) == 0;
    return done ? ITC_SUCCESS : ITC_NOT_STARTED;
}

int32_t SetDefaultSequence() {
    return ITCSetSeq("0", "0") == ITC_SUCCESS ? ITC_SUCCESS : ITC_NOT_STARTED;
}

}  // namespace
}  // namespace corvantis

int32_t ITCInit(uint16_t** inputBuffer, uint16_t** outputBuffer, const int32_t* bufsize,
                int32_t deviceNumber) {
    using namespace corvantis;
    BeginStartUp();
    if (!AllocateDevice() || !RenewState()) return ITC_OUT_OF_MEMORY;
    PrintLine("opening");
    if (ITC18_Open(itc, deviceNumber) != 0) return ITC_NOT_STARTED;
    BeginSession(inputBuffer, outputBuffer, bufsize);
    SetFileHeaderDefaults(*filehdr);
    InitializationTime = static_cast<int32_t>(std::time(nullptr));
    InitFlag = 1;
    PrintLine("initializing");
    PrintLine("itc18");
    if (ITC18_Initialize(itc, 0) != 0) return ITC_NOT_STARTED;
    PrintLine("setting defaults");
    if (SetDeviceInterval() != ITC_SUCCESS) return ITC_NOT_STARTED;
    return SetDefaultSequence();
}

int32_t ITCInitAnalysis(uint16_t** inputBuffer, uint16_t** outputBuffer, const int32_t* bufsize) {
    using namespace corvantis;
    BeginStartUp();
    if (!RenewEpochHeader() || !RenewFileHeader()) return ITC_OUT_OF_MEMORY;
    if (!RenewBufferCapacity() || !RenewPositionTable()) return ITC_OUT_OF_MEMORY;
    BeginSession(inputBuffer, outputBuffer, bufsize);
    InitFlag = 1;
    return ITC_SUCCESS;
}

int32_t ITCQuickReInit(int32_t deviceNumber) {
    using namespace corvantis;
    if (itc == nullptr || !HasFileHeader() || !HasEpochHeader()) return ITC_NOT_STARTED;
    ITC18_Close(itc);
    if (ITC18_Open(itc, deviceNumber) != 0) return ITC_NOT_STARTED;
    FillBlankFileHeader();
    InitFlag = 1;
    if (ITC18_Initialize(itc, 0) != 0) return ITC_NOT_STARTED;
    if (SetDeviceInterval() != ITC_SUCCESS) return ITC_NOT_STARTED;
    return SetDefaultSequence();
}

int32_t ITCFinish() {
    using namespace corvantis;
    if (!IsStarted()) return ITC_NOT_STARTED;
    if (itc != nullptr) ITC18_Close(itc);
    ReleaseHeaders();
    ForgetInstalledRecords();
    return ITC_SUCCESS;
}
