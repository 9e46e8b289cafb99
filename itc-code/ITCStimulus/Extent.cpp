// The samples that each type's record would write: records from files, adders and builders may ask
// for more, or for negative runs that make noise start before the buffer.
#include "ITCStimulus/Extent.h"

#include <algorithm>

#include "Corvantis.h"
#include "ITCStimulus/Samples.h"

namespace corvantis {
namespace {

int64_t RunLength(int32_t count) { return std::max<int64_t>(count, 0); }

template <class Record>
bool RunsFit(const void* params, int64_t bufferPoints) {
    const auto& record = *static_cast<const Record*>(params);
    return RunLength(record.prePoints) + RunLength(record.points) + RunLength(record.tailPoints) <=
           bufferPoints;
}

// Noise is laid at its place among all the points, wherever negative runs put it.
template <class Record>
bool NoiseFits(const Record& record, int64_t laidPoints, int64_t bufferPoints) {
    const int64_t end = int64_t{record.prePoints} + laidPoints;
    return TotalPoints(record) <= bufferPoints &&
           (laidPoints <= 0 || (record.prePoints >= 0 && end <= bufferPoints));
}

bool FilteredNoiseFits(const void* params, int64_t bufferPoints) {
    const auto& record = *static_cast<const ITCNoiseParameters*>(params);
    return NoiseFits(record, record.points, bufferPoints);
}

// Whole segments alone are laid.
template <class Record>
bool SegmentsFit(const void* params, int64_t bufferPoints) {
    const auto& record = *static_cast<const Record*>(params);
    const int64_t length = std::max(record.segmentPoints, 1);
    const int64_t segments = record.segmentPoints < 1 ? 0 : record.points / length;
    return NoiseFits(record, segments * length, bufferPoints);
}

}  // namespace

bool StaysWithin(uint32_t type, const void* params, int64_t bufferPoints) {
    switch (type) {
        case ITC_STIMULUS_SINE:
            return RunsFit<ITCSineParameters>(params, bufferPoints);
        case ITC_STIMULUS_NOISE:
            return FilteredNoiseFits(params, bufferPoints);
        case ITC_STIMULUS_PULSE:
            return RunsFit<ITCPulseParameters>(params, bufferPoints);
        case ITC_STIMULUS_RAMP:
            return RunsFit<ITCRampParameters>(params, bufferPoints);
        case ITC_STIMULUS_FILEWAVE:
            return static_cast<const ITCFilewaveParameters*>(params)->length <= bufferPoints;
        case ITC_STIMULUS_TRIGGER_SERIES:
            return RunsFit<ITCTrigSeriesParameters>(params, bufferPoints);
        case ITC_STIMULUS_SEGMENTED_NOISE:
            return SegmentsFit<ITCSegmentedNoiseParameters>(params, bufferPoints);
        case ITC_STIMULUS_BINARY_NOISE:
            return SegmentsFit<ITCBinaryNoiseParameters>(params, bufferPoints);
        case ITC_STIMULUS_ALTERNATING_VOLTAGE:
            return RunsFit<ITCAlternateVoltageParameters>(params, bufferPoints);
        case ITC_STIMULUS_SPATIAL:
            return static_cast<const ITCSpatialStmParameters*>(params)->points <= bufferPoints;
        default:
            return true;
    }
}

}  // namespace corvantis
