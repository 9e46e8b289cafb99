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
// Between the two the blocks of an earlier session are being replaced; a start-up that fails there
// leaves nothing that could be worked with, whatever the flag still says.
// Between the two below, also after a start-up that failed.
bool IsStartUpUnderway();
void BeginStartUp();
void CompleteStartUp();

// The current headers; before a start-up blank ones, so that no accessor meets a null pointer.
ITCFileHeader& CurrentFileHeader();
ITCEpochHeader& CurrentEpochHeader();
bool HasFileHeader();
bool HasEpochHeader();
// What the current headers say about waveforms.
EpochSettings CurrentEpochSettings();

// A sample buffer of the caller, or null if there is none (any more).
uint16_t* InputSamples();
uint16_t* OutputSamples();
int32_t BufferCapacity();

constexpr bool IsChannel(uint32_t channel) { return channel < ITC_CHANNELS; }

// The number of samples in the current epoch, all entries together; nothing for negative counts.
std::optional<int64_t> CurrentSampleCount();

// Take fresh, cleared blocks; false when memory is out. The old block is forgotten.
bool AllocateFileHeader();
bool AllocateEpochHeader();
bool AllocateBufferCapacity(const int32_t* bufsize);

// Give up blocks; a block that was given up already is left alone.
void ReleaseHeaders();
void ReleaseSampleBuffers();
void ReleaseBufferCapacity();

void AttachSampleBuffers(uint16_t** inputBuffer, uint16_t** outputBuffer);

}  // namespace corvantis
