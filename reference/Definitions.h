// The formulas of every waveform and file path written plainly: scalar, one value at a time. The
// benchmarks measure the library against them, the exactness tests hold it to their bits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "Corvantis.h"

namespace definition {

// The generators have a state of their own; a state word of 0 or less restarts the first one.
float UniformDeviate(int32_t* word);
float NormalDeviate(int32_t* word);
float OldNormalDeviate();
void DropSpareDeviates();

// In place; element 0 is not touched, `points` is a power of two.
void Fourier(int32_t isign, uint32_t points, float* data);

// The waveform of a record; the sampling interval is in microseconds.
void Sine(uint16_t* buffer, const ITCSineParameters& record, int32_t samplingInterval);
void Pulse(uint16_t* buffer, const ITCPulseParameters& record);
void Ramp(uint16_t* buffer, const ITCRampParameters& record);
void TriggerSeries(uint16_t* buffer, const ITCTrigSeriesParameters& record);
void AlternatingVoltage(uint16_t* buffer, const ITCAlternateVoltageParameters& record);
void SegmentedNoise(uint16_t* buffer, const ITCSegmentedNoiseParameters& record);
void BinaryNoise(uint16_t* buffer, const ITCBinaryNoiseParameters& record);
void SmoothedNoise(uint16_t* buffer, const ITCNoiseParameters& record);
void SpectralNoise(uint16_t* buffer, const ITCNoiseParameters& record, int32_t samplingInterval);

void Interleave(uint16_t* interleaved, uint16_t* const* perEntry, int32_t entries, int32_t points);
void Split(const uint16_t* interleaved, uint16_t* const* perEntry, int32_t entries, int32_t points);

// One transfer per element.
bool WriteShorts(FILE* stream, const int16_t* values, size_t count);
bool ReadShorts(FILE* stream, int16_t* values, size_t count);
bool WriteEpochHeader(FILE* stream, const ITCEpochHeader& header);
bool ReadEpochHeader(FILE* stream, ITCEpochHeader& header);
bool ReadPulse(FILE* stream, ITCPulseParameters& record);

uint16_t Sample(double value);

}  // namespace definition
