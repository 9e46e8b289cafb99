// The waveform of each stimulus type: one body, which the dispatcher and the generators share.
#pragma once

#include <cstdint>

#include "Corvantis.h"

namespace corvantis {

void CreateWaveform(uint16_t* buffer, const ITCSineParameters& record);
void CreateWaveform(uint16_t* buffer, const ITCPulseParameters& record);
void CreateWaveform(uint16_t* buffer, const ITCRampParameters& record);
void CreateWaveform(uint16_t* buffer, const ITCFilewaveParameters& record);
void CreateWaveform(uint16_t* buffer, const ITCTrigSeriesParameters& record);
void CreateWaveform(uint16_t* buffer, const ITCSegmentedNoiseParameters& record);
void CreateWaveform(uint16_t* buffer, const ITCBinaryNoiseParameters& record);
void CreateWaveform(uint16_t* buffer, const ITCAlternateVoltageParameters& record);
void CreateWaveform(uint16_t* buffer, const ITCSpatialStmParameters& record);
void CreateDynamicClampWaveform(uint16_t* buffer);

// Whether a record's waveform is defined: a division by its interval would not be, for 0.
constexpr bool IsComputable(const auto& /*record*/) { return true; }
constexpr bool IsComputable(const ITCFilewaveParameters& record) {
    return record.samples != nullptr || record.length <= 0;
}
constexpr bool IsComputable(const ITCTrigSeriesParameters& record) { return record.interval != 0; }
constexpr bool IsComputable(const ITCSegmentedNoiseParameters& record) {
    return record.segmentPoints != 0;
}
constexpr bool IsComputable(const ITCBinaryNoiseParameters& record) {
    return record.segmentPoints != 0;
}
constexpr bool IsComputable(const ITCAlternateVoltageParameters& record) {
    return record.halfPeriod != 0;
}

}  // namespace corvantis
