// Starting the library with a device or without one, re-starting the device, and ending.
#include <ctime>

#include "Corvantis.h"
#include "ITC18.h"
#include "ITCFileIO/StimulusTypes.h"
#include "ITCInitialize/EpochTable.h"
#include "ITCInitialize/State.h"
#include "ITCUtilities/Diagnostics.h"
#include "ITCUtilities/Memory.h"

namespace corvantis {
namespace {

constexpr float kCountsPerVolt = 3200.0F;
constexpr int32_t kDefaultDeviceInterval = 10;

bool AllocateDevice() {
    itc = AllocateArray<uint8_t>(ITC18_GetStructureSize()).release();
    return itc != nullptr;
}

bool AllocateState(const int32_t* bufsize) {
    return AllocateEpochHeader() && AllocateFileHeader() && AllocateEpochTable(1) &&
           AllocateBufferCapacity(bufsize);
}

void SetFileHeaderDefaults(ITCFileHeader& header) {
    header.version = ITC_FILE_VERSION;
    header.fileFlagA = 1;
    header.fileFlagB = 2;
    header.inputScale = kCountsPerVolt;
    header.outputScale = kCountsPerVolt;
    header.pipelineDepth = static_cast<int8_t>(kPipelineLength);
    header.numEpochs = 0;
    header.offset = 0.0F;
    header.fileFlagC = 2;
    header.fileFlagD = 1;
}

// A new start-up forgets the records of the one before, as it forgets its blocks.
void EmptySlots() {
    for (void*& slot : StmParameters) slot = nullptr;
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
    if (!AllocateDevice() || !AllocateState(bufsize)) return ITC_OUT_OF_MEMORY;
    PrintLine("opening");
    if (ITC18_Open(itc, deviceNumber) != 0) return ITC_NOT_STARTED;
    AttachSampleBuffers(inputBuffer, outputBuffer);
    SetFileHeaderDefaults(*filehdr);
    EpochPosition[0] = kFirstEpochPosition;
    EmptySlots();
    InitializationTime = static_cast<int32_t>(std::time(nullptr));
    CompleteStartUp();
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
    if (!AllocateEpochHeader() || !AllocateFileHeader()) return ITC_OUT_OF_MEMORY;
    if (!AllocateBufferCapacity(bufsize) || !AllocateEpochTable(1)) return ITC_OUT_OF_MEMORY;
    EpochPosition[0] = kFirstEpochPosition;
    AttachSampleBuffers(inputBuffer, outputBuffer);
    EmptySlots();
    CompleteStartUp();
    return ITC_SUCCESS;
}

int32_t ITCQuickReInit(int32_t deviceNumber) {
    using namespace corvantis;
    if (itc == nullptr || !HasFileHeader() || !HasEpochHeader()) return ITC_NOT_STARTED;
    ITC18_Close(itc);
    if (ITC18_Open(itc, deviceNumber) != 0) return ITC_NOT_STARTED;
    // A start-up that the device had stopped goes on here.
    if (IsStartUpUnderway() && EpochTableEntries() > 0) EpochPosition[0] = kFirstEpochPosition;
    CompleteStartUp();
    if (ITC18_Initialize(itc, 0) != 0) return ITC_NOT_STARTED;
    if (SetDeviceInterval() != ITC_SUCCESS) return ITC_NOT_STARTED;
    return SetDefaultSequence();
}

int32_t ITCFinish() {
    using namespace corvantis;
    // Also after a second start-up that failed: the first one's state is still to be ended.
    if (InitFlag == 0 || !HasFileHeader() || !HasEpochHeader()) return ITC_NOT_STARTED;
    if (itc != nullptr) ITC18_Close(itc);
    ReleaseHeaders();
    return ITC_SUCCESS;
}
