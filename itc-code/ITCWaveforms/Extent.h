// Whether a record's waveform stays within a buffer. Records from files, adders and builders may
// ask for more points than there are, or for negative runs that make noise start before the buffer.
#pragma once

#include <algorithm>
#include <cstdint>

#include "Corvantis.h"
#include "ITCWaveforms/Samples.h"

namespace corvantis {

template <class Record>
bool RunsStayWithin(const Record& record, int64_t bufferPoints) {
    const auto length = [](int32_t count) { return std::max<int64_t>(count, 0); };
    return length(record.prePoints) + length(record.points) + length(record.tailPoints) <=
           bufferPoints;
}

// Noise is laid at its place among all the points, wherever negative runs put it.
template <class Record>
bool NoiseStaysWithin(const Record& record, int64_t laidPoints, int64_t bufferPoints) {
    const int64_t end = int64_t{record.prePoints} + laidPoints;
    return TotalPoints(record) <= bufferPoints &&
           (laidPoints <= 0 || (record.prePoints >= 0 && end <= bufferPoints));
}

inline bool FilteredNoiseStaysWithin(const ITCNoiseParameters& record, int64_t bufferPoints) {
    return NoiseStaysWithin(record, record.points, bufferPoints);
}

// Whole segments alone are laid.
template <class Record>
bool SegmentsStayWithin(const Record& record, int64_t bufferPoints) {
    const int64_t length = std::max(record.segmentPoints, 1);
    const int64_t segments = record.segmentPoints < 1 ? 0 : record.points / length;
    return NoiseStaysWithin(record, segments * length, bufferPoints);
}

inline bool WaveStaysWithin(const ITCFilewaveParameters& record, int64_t bufferPoints) {
    return record.length <= bufferPoints;
}

inline bool PointsStayWithin(const ITCSpatialStmParameters& record, int64_t bufferPoints) {
    return record.points <= bufferPoints;
}

}  // namespace corvantis
