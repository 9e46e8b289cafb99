// Starting and ending the library for programs that only read files, with buffers of its own.
#include "Corvantis.h"
#include "ITCInitialize/State.h"
#include "ITCStimulus/Slots.h"
#include "ITCUtilities/Memory.h"

int32_t ITCInitializeAnalysis(int32_t bufsize) {
    using namespace corvantis;
    OwnedBlock<uint16_t*> inputHandle = AllocateArray<uint16_t*>(1);
    OwnedBlock<uint16_t*> outputHandle = AllocateArray<uint16_t*>(1);
    if (inputHandle == nullptr || outputHandle == nullptr) return ITC_OUT_OF_MEMORY;
    OwnedBlock<uint16_t> input = AllocateArray<uint16_t>(bufsize);
    OwnedBlock<uint16_t> output = AllocateArray<uint16_t>(bufsize);
    if (input == nullptr || output == nullptr) return ITC_OUT_OF_MEMORY;
    inputHandle[0] = input.get();
    outputHandle[0] = output.get();
    const int32_t result = ITCInitAnalysis(inputHandle.get(), outputHandle.get(), &bufsize);
    if (result != ITC_SUCCESS) return result;
    // From here ITCFinishAnalysis releases them, through the handles that the state holds.
    (void)input.release();
    (void)output.release();
    (void)inputHandle.release();
    (void)outputHandle.release();
    return ITC_SUCCESS;
}

int32_t ITCOpenFileForInput(const char* pattern) { return ITCOpenFile(pattern); }
int32_t ITCOpenFileForEditing(const char* pattern) { return ITCOpenFileForEdit(pattern); }
int32_t ITCCloseOpenFile() { return ITCCloseFile(); }

int32_t ITCFinishAnalysis() {
    using namespace corvantis;
    if (IsStarted()) ReleaseSlotRecordsAtEnd();
    ReleaseSampleBuffers();
    ReleaseHeaders();
    ReleaseBufferCapacity();
    return ITC_SUCCESS;
}
