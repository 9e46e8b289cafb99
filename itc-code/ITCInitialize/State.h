// The library's one working state: which of the exported pointers are alive, and how they are taken
// and given up. An ending leaves the pointers' values, so their blocks' fate is remembered here.
#pragma once

#include <cstdint>
#include <optional>

#include "Corvantis.h"
#include "ITCWaveforms/Waveforms.h"

namespace corvantis {

// Started, and both headers are there: what nearly every operation asks first.
bool IsStarted();

// A start-up takes fresh blocks, in which an earlier session that has not ended goes on until the
// new one begins: a device that stops the start-up costs it nothing.
void BeginStartUp();
// From here on the blocks are the new session's.
void BeginSession(uint16_t** inputBuffer, uint16_t** outputBuffer, const int32_t* bufsize);

// The current headers; before a start-up blank ones, so that no accessor meets a null pointer.
ITCFileHeader& CurrentFileHeader();
ITCEpochHeader& CurrentEpochHeader();
bool HasFileHeader();
bool HasEpochHeader();
// What the current headers say about waveforms.
EpochSettings CurrentEpochSettings();

void SetFileHeaderDefaults(ITCFileHeader& header);
// The same for a header that nobody has set: no file may say nothing of its version and scales.
void FillBlankFileHeader();

// A sample buffer of the caller, or null if there is none (any more).
uint16_t* InputSamples();
uint16_t* OutputSamples();
int32_t BufferCapacity();

constexpr bool IsChannel(uint32_t channel) { return channel < ITC_CHANNELS; }

// The number of samples in the current epoch, all entries together; nothing for negative counts.
std::optional<int64_t> CurrentSampleCount();

// Take fresh blocks with what the old ones held, or cleared ones; false, and the old block stays,
// when memory is out. Otherwise the old block is forgotten.
bool RenewFileHeader();
bool RenewEpochHeader();
bool RenewBufferCapacity();

// Give up blocks; a block that was given up already is left alone.
void ReleaseHeaders();
void ReleaseSampleBuffers();
void ReleaseBufferCapacity();

}  // namespace corvantis
