// The waveform of each stimulus type, as a function of its record and of nothing that is not handed
// in.
#pragma once

#include <cstdint>

#include "Corvantis.h"
#include "ITCUtilities/Random/NoiseGenerators.h"

namespace corvantis {

// What an epoch and its file say about all of its waveforms.
struct EpochSettings {
    int32_t samplingInterval = 0;  // [µs]
    int32_t epochPoints = 0;       // [samples]
    int8_t version = ITC_FILE_VERSION;
};

void CreateWaveform(uint16_t* buffer, const ITCSineParameters& record, int32_t samplingInterval);
void CreateWaveform(uint16_t* buffer, const ITCPulseParameters& record);
void CreateWaveform(uint16_t* buffer, const ITCRampParameters& record);
void CreateWaveform(uint16_t* buffer, const ITCFilewaveParameters& record);
void CreateWaveform(uint16_t* buffer, const ITCTrigSeriesParameters& record);
void CreateWaveform(uint16_t* buffer, const ITCAlternateVoltageParameters& record);
void CreateWaveform(uint16_t* buffer, const ITCSpatialStmParameters& record);
void CreateDynamicClampWaveform(uint16_t* buffer, int32_t epochPoints);
// The generators are left where the noise ended, for the noise that goes on behind it.
void CreateWaveform(uint16_t* buffer, const ITCSegmentedNoiseParameters& record,
                    NoiseGenerators& generators);
void CreateWaveform(uint16_t* buffer, const ITCBinaryNoiseParameters& record,
                    NoiseGenerators& generators);
// ITC_STIMULUS_ERROR where half the window of the older method does not fit into the runs before
// and behind, ITC_OUT_OF_MEMORY; nothing is written then.
int32_t CreateWaveform(uint16_t* buffer, const ITCNoiseParameters& record,
                       const EpochSettings& settings, NoiseGenerators& generators);

// Whether a record's waveform is defined: a division by its interval would not be, for 0.
constexpr bool IsAlwaysComputable(const auto& /*record*/) { return true; }
constexpr bool HasWave(const ITCFilewaveParameters& record) {
    return record.samples != nullptr || record.length <= 0;
}
constexpr bool HasInterval(const ITCTrigSeriesParameters& record) { return record.interval != 0; }
constexpr bool HasHalfPeriod(const ITCAlternateVoltageParameters& record) {
    return record.halfPeriod != 0;
}
constexpr bool HasSegments(const auto& record) { return record.segmentPoints != 0; }

}  // namespace corvantis
