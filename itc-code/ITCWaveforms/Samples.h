// How a computed value becomes a 16-bit sample, and the runs of samples around a waveform.
#pragma once

#include <cstdint>

#include "ITCUtilities/WrappingArithmetic.h"
#include "ITCWaveforms/SampleRuns.h"

namespace corvantis {

// Truncation toward zero; beyond the range the nearest bound, for a NaN the lowest number. The
// value is bounded before it is converted, so that loops over many can be vectorised.
constexpr int32_t TruncateToInt32(double value) {
    const double raised = value > -2147483648.0 ? value : -2147483648.0;
    return static_cast<int32_t>(raised < 2147483647.0 ? raised : 2147483647.0);
}

// The low 16 bits, without clamping: 40000 is stored as 0x9C40, as in every recorded stimulus.
constexpr uint16_t LevelSample(int32_t level) { return static_cast<uint16_t>(level); }
constexpr uint16_t ConvertToSample(double value) { return LevelSample(TruncateToInt32(value)); }
// The same for single precision, whose numbers below the upper bound can all be converted.
constexpr uint16_t ConvertToSample(float value) {
    const float raised = value > -2147483648.0F ? value : -2147483648.0F;
    const bool convertible = raised < 2147483648.0F;
    const int32_t truncated = static_cast<int32_t>(convertible ? raised : 0.0F);
    return LevelSample(convertible ? truncated : INT32_MAX);
}

// All the points of a record at its holding level, over which noise is laid. The sum wraps, as the
// builders' test of lengths does, which lets such a record pass.
template <class Record>
int32_t TotalPoints(const Record& record) {
    return WrappingAdd(WrappingAdd(record.prePoints, record.points), record.tailPoints);
}

}  // namespace corvantis
