// How a computed value becomes a 16-bit sample, and the runs of samples around a waveform.
#pragma once

#include <algorithm>
#include <cstdint>

namespace corvantis {

// Truncation toward zero; beyond the range the nearest bound, for a NaN the lowest number.
constexpr int32_t TruncateToInt32(double value) {
    if (value >= 2147483647.0) return INT32_MAX;
    return value > -2147483648.0 ? static_cast<int32_t>(value) : INT32_MIN;
}

// The low 16 bits, without clamping: 40000 is stored as 0x9C40, as in every recorded stimulus.
constexpr uint16_t LevelSample(int32_t level) { return static_cast<uint16_t>(level); }
constexpr uint16_t ConvertToSample(double value) { return LevelSample(TruncateToInt32(value)); }

// A run at one level; a count of zero or less is no run. Returns where the next run begins.
inline uint16_t* WriteLevel(uint16_t* next, int64_t count, int32_t level) {
    return std::fill_n(next, std::max<int64_t>(count, 0), LevelSample(level));
}

// The runs before, of and after a waveform, whose sample i is shape(i).
template <class Record, class Shape>
void WriteRuns(uint16_t* buffer, const Record& record, int32_t holdingLevel, Shape shape) {
    uint16_t* next = WriteLevel(buffer, record.prePoints, holdingLevel);
    for (int32_t i = 0; i < record.points; ++i) *next++ = shape(i);
    WriteLevel(next, record.tailPoints, holdingLevel);
}

// All the points of a record at its holding level, over which noise is laid.
template <class Record>
int64_t TotalPoints(const Record& record) {
    return int64_t{record.prePoints} + record.points + record.tailPoints;
}

}  // namespace corvantis
