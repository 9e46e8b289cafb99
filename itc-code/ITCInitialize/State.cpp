// The exported state and the bookkeeping of its blocks.
#include "ITCInitialize/State.h"

#include "ITCFileIO/StimulusTypes.h"
#include "ITCInitialize/PositionTable.h"
#include "ITCInitialize/SlotBlocks.h"
#include "ITCUtilities/Memory.h"

int32_t InitFlag = 0;
int32_t InitializationTime = 0;
ITCFileHeader* filehdr = nullptr;
ITCEpochHeader* epochhdr = nullptr;
void* StmParameters[ITC_CHANNELS] = {};
uint32_t* EpochPosition = nullptr;
int32_t* ITCbufsize = nullptr;
uint16_t** ITCInputBuffer = nullptr;
uint16_t** ITCOutputBuffer = nullptr;
FILE* ITCOpenFilePtr = nullptr;
void* itc = nullptr;
float* ExcitatoryG = nullptr;
float* InhibitoryG = nullptr;

namespace corvantis {
namespace {

// What a global still points to although the library has released it.
const void* releasedFileHeader = nullptr;
const void* releasedEpochHeader = nullptr;
const void* releasedCapacity = nullptr;
const void* releasedInputHandle = nullptr;
const void* releasedOutputHandle = nullptr;

ITCFileHeader BlankFileHeader() {
    ITCFileHeader header = {};
    header.version = ITC_FILE_VERSION;
    return header;
}

bool IsLive(const void* block, const void* released) {
    return block != nullptr && block != released;
}

template <class T>
bool RenewBlock(T*& block, const void*& released) {
    T* const fresh = AllocateZeroed<T>(1).release();
    if (fresh == nullptr) return false;
    if (IsLive(block, released)) *fresh = *block;
    block = fresh;
    released = nullptr;
    return true;
}

void ReleaseBlock(void* block, const void*& released) {
    if (!IsLive(block, released)) return;
    ITCFree(block);
    released = block;
}

uint16_t* Samples(uint16_t** handle, const void* released) {
    return IsLive(handle, released) ? *handle : nullptr;
}

void ReleaseSamples(uint16_t** handle, const void* released) { ITCFree(Samples(handle, released)); }

}  // namespace

bool HasFileHeader() { return IsLive(filehdr, releasedFileHeader); }
bool HasEpochHeader() { return IsLive(epochhdr, releasedEpochHeader); }

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

void FillBlankFileHeader() {
    ITCFileHeader& header = CurrentFileHeader();
    if (header.version == 0 && header.inputScale == 0.0F) SetFileHeaderDefaults(header);
}

bool IsStarted() { return InitFlag != 0 && HasFileHeader() && HasEpochHeader(); }

void BeginStartUp() {
    if (HasFileHeader() && HasEpochHeader()) return;
    // What an ended session left is its caller's again, who may have released it by now.
    releasedInputHandle = ITCInputBuffer;
    releasedOutputHandle = ITCOutputBuffer;
    releasedCapacity = ITCbufsize;
    EmptySlots();
}

void BeginSession(uint16_t** inputBuffer, uint16_t** outputBuffer, const int32_t* bufsize) {
    *filehdr = {};
    *epochhdr = {};
    ResetPositionTable();
    EmptySlots();
    *ITCbufsize = bufsize == nullptr ? 0 : *bufsize;
    ITCInputBuffer = inputBuffer;
    ITCOutputBuffer = outputBuffer;
    releasedInputHandle = nullptr;
    releasedOutputHandle = nullptr;
}

ITCFileHeader& CurrentFileHeader() {
    static ITCFileHeader blank = BlankFileHeader();
    return HasFileHeader() ? *filehdr : blank;
}

ITCEpochHeader& CurrentEpochHeader() {
    static ITCEpochHeader blank = {};
    return HasEpochHeader() ? *epochhdr : blank;
}

EpochSettings CurrentEpochSettings() {
    const ITCEpochHeader& epoch = CurrentEpochHeader();
    return {epoch.samplingInterval, epoch.epochPoints, CurrentFileHeader().version};
}

uint16_t* InputSamples() { return Samples(ITCInputBuffer, releasedInputHandle); }
uint16_t* OutputSamples() { return Samples(ITCOutputBuffer, releasedOutputHandle); }
int32_t BufferCapacity() { return IsLive(ITCbufsize, releasedCapacity) ? *ITCbufsize : 0; }

std::optional<int64_t> CurrentSampleCount() {
    const ITCEpochHeader& header = CurrentEpochHeader();
    if (header.epochPoints < 0 || header.sequenceLength < 0) return std::nullopt;
    return int64_t{header.epochPoints} * header.sequenceLength;
}

bool RenewFileHeader() { return RenewBlock(filehdr, releasedFileHeader); }
bool RenewEpochHeader() { return RenewBlock(epochhdr, releasedEpochHeader); }
bool RenewBufferCapacity() { return RenewBlock(ITCbufsize, releasedCapacity); }

void ReleaseHeaders() {
    ReleaseBlock(epochhdr, releasedEpochHeader);
    ReleaseBlock(filehdr, releasedFileHeader);
    ReleasePositionTable();
}

void ReleaseSampleBuffers() {
    ReleaseSamples(ITCOutputBuffer, releasedOutputHandle);
    if (ITCInputBuffer != ITCOutputBuffer) ReleaseSamples(ITCInputBuffer, releasedInputHandle);
    ReleaseBlock(ITCOutputBuffer, releasedOutputHandle);
    ReleaseBlock(ITCInputBuffer, releasedInputHandle);
}

void ReleaseBufferCapacity() { ReleaseBlock(ITCbufsize, releasedCapacity); }

}  // namespace corvantis
