// The waveforms that are a formula of the point's number.
#include "ITCStimulus/Shapes.h"

#include <algorithm>
#include <cmath>

#include "ITCInitialize/State.h"
#include "ITCStimulus/Samples.h"
#include "ITCUtilities/WrappingArithmetic.h"

namespace corvantis {
namespace {

// 2 pi as recorded stimuli were made with: a period of 4 peaks at 999 of 1000, and must go on to.
constexpr double kTwoPi = 6.283184;
constexpr double kSecondsPerMicrosecond = 1e-6;

}  // namespace

void CreateWaveform(uint16_t* buffer, const ITCSineParameters& record) {
    const double interval = CurrentEpochHeader().samplingInterval;
    const double w = kTwoPi / (record.period * interval * kSecondsPerMicrosecond);
    WriteRuns(buffer, record, record.mean, [&](int32_t i) {
        const double phase = i * interval * kSecondsPerMicrosecond * w;
        return ConvertToSample(std::fma(record.amplitude, std::sin(phase), record.mean));
    });
}

void CreateWaveform(uint16_t* buffer, const ITCPulseParameters& record) {
    const uint16_t sample = LevelSample(WrappingAdd(record.mean, record.amplitude));
    WriteRuns(buffer, record, record.mean, [=](int32_t /*i*/) { return sample; });
}

void CreateWaveform(uint16_t* buffer, const ITCRampParameters& record) {
    const float points = static_cast<float>(record.points);
    const float amplitude = static_cast<float>(record.amplitude);
    const float mean = static_cast<float>(record.mean);
    WriteRuns(buffer, record, record.mean, [=](int32_t i) {
        return ConvertToSample(std::fma(static_cast<float>(i) / points, amplitude, mean));
    });
}

void CreateWaveform(uint16_t* buffer, const ITCFilewaveParameters& record) {
    if (record.length > 0 && record.samples != nullptr) {
        std::copy_n(record.samples, record.length, buffer);
    }
}

void CreateWaveform(uint16_t* buffer, const ITCTrigSeriesParameters& record) {
    const uint16_t trigger = LevelSample(WrappingAdd(record.baseline, record.amplitude));
    const int64_t interval = record.interval;
    WriteRuns(buffer, record, record.baseline, [&](int32_t i) {
        return interval != 0 && i % interval == 0 ? trigger : LevelSample(record.baseline);
    });
}

void CreateWaveform(uint16_t* buffer, const ITCAlternateVoltageParameters& record) {
    const uint16_t second = LevelSample(WrappingAdd(record.mean, record.amplitude));
    const int64_t halfPeriod = record.halfPeriod;
    WriteRuns(buffer, record, record.mean, [&](int32_t i) {
        return halfPeriod != 0 && i / halfPeriod % 2 != 0 ? second : LevelSample(record.mean);
    });
}

void CreateWaveform(uint16_t* buffer, const ITCSpatialStmParameters& record) {
    WriteLevel(buffer, record.points, 0);
}

void CreateDynamicClampWaveform(uint16_t* buffer) {
    WriteLevel(buffer, CurrentEpochHeader().epochPoints, 0);
}

}  // namespace corvantis
