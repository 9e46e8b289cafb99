// The waveforms that are a formula of the point's number.
#include "ITCWaveforms/Waveforms.h"

#include <algorithm>
#include <cstdlib>

#include "ITCUtilities/FunctionClones.h"
#include "ITCUtilities/Maths/FusedOperation.h"
#include "ITCUtilities/WrappingArithmetic.h"
#include "ITCWaveforms/Samples.h"
#include "ITCWaveforms/ShortRamp.h"
#include "ITCWaveforms/SineRotation.h"

namespace corvantis {
namespace {

// A period counts by its magnitude, and one of 0 never ends.
int64_t PeriodOf(int32_t interval) {
    return interval == 0 ? INT32_MAX : std::abs(int64_t{interval});
}

// One period and its repetitions; shape(next, count) writes the first, or as much as there is.
template <class Record, class Shape>
void WritePeriodicRuns(uint16_t* buffer, const Record& record, int32_t holdingLevel, int64_t period,
                       Shape shape) {
    uint16_t* next = WriteLevel(buffer, record.prePoints, holdingLevel);
    const int64_t points = std::max(record.points, 0);
    shape(next, std::min(period, points));
    RepeatPeriod({next, static_cast<size_t>(points)}, std::min(period, points));
    WriteLevel(next + points, record.tailPoints, holdingLevel);
}

template <bool instruction>
CORVANTIS_INLINE void WriteRampBy(uint16_t* samples, int32_t count, const RampFormula& formula) {
    const auto [points, amplitude, mean] = formula;
    for (int32_t i = 0; i < count; ++i) {
        const float share = static_cast<float>(i) / points;
        samples[i] = ConvertToSample(FusedSum<instruction>(share, amplitude, mean));
    }
}
CORVANTIS_CLONES void WriteFusedRamp(uint16_t* samples, int32_t count, const RampFormula& formula) {
    WriteRampBy<true>(samples, count, formula);
}
CORVANTIS_CLONES void WriteRamp(uint16_t* samples, int32_t count, const RampFormula& formula) {
    WriteRampBy<false>(samples, count, formula);
}

}  // namespace

void CreateWaveform(uint16_t* buffer, const ITCSineParameters& record, int32_t samplingInterval) {
    const SineFormula formula(record.amplitude, record.mean, record.period, samplingInterval);
    uint16_t* next = WriteLevel(buffer, record.prePoints, record.mean);
    const auto points = static_cast<size_t>(std::max(record.points, 0));
    WriteSine({next, points}, formula);
    WriteLevel(next + points, record.tailPoints, record.mean);
}

void CreateWaveform(uint16_t* buffer, const ITCPulseParameters& record) {
    uint16_t* next = WriteLevel(buffer, record.prePoints, record.mean);
    next = WriteLevel(next, record.points, WrappingAdd(record.mean, record.amplitude));
    WriteLevel(next, record.tailPoints, record.mean);
}

void CreateWaveform(uint16_t* buffer, const ITCRampParameters& record) {
    const RampFormula formula = {static_cast<float>(record.points),
                                 static_cast<float>(record.amplitude),
                                 static_cast<float>(record.mean)};
    const int32_t points = std::max(record.points, 0);
    uint16_t* next = WriteLevel(buffer, record.prePoints, record.mean);
    if (IsShortRamp(formula)) {
        WriteShortRamp({next, static_cast<size_t>(points)}, formula);
    } else if (HasFusedInstruction()) {
        WriteFusedRamp(next, points, formula);
    } else {
        WriteRamp(next, points, formula);
    }
    WriteLevel(next + points, record.tailPoints, record.mean);
}

void CreateWaveform(uint16_t* buffer, const ITCFilewaveParameters& record) {
    if (record.length > 0 && record.samples != nullptr) {
        std::copy_n(record.samples, record.length, buffer);
    }
}

void CreateWaveform(uint16_t* buffer, const ITCTrigSeriesParameters& record) {
    const int64_t triggers = record.interval == 0 ? 0 : 1;
    const int32_t level = WrappingAdd(record.baseline, record.amplitude);
    WritePeriodicRuns(buffer, record, record.baseline, PeriodOf(record.interval),
                      [&](uint16_t* next, int64_t count) {
                          WriteLevel(next, count, record.baseline);
                          WriteLevel(next, std::min(count, triggers), level);
                      });
}

void CreateWaveform(uint16_t* buffer, const ITCAlternateVoltageParameters& record) {
    const int64_t halfPeriod = PeriodOf(record.halfPeriod);
    const int32_t second = WrappingAdd(record.mean, record.amplitude);
    WritePeriodicRuns(buffer, record, record.mean, 2 * halfPeriod,
                      [&](uint16_t* next, int64_t count) {
                          const int64_t first = std::min(count, halfPeriod);
                          next = WriteLevel(next, first, record.mean);
                          WriteLevel(next, count - first, second);
                      });
}

void CreateWaveform(uint16_t* buffer, const ITCSpatialStmParameters& record) {
    WriteLevel(buffer, record.points, 0);
}

void CreateDynamicClampWaveform(uint16_t* buffer, int32_t epochPoints) {
    WriteLevel(buffer, epochPoints, 0);
}

}  // namespace corvantis
