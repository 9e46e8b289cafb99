// The waveforms that are a formula of the point's number, over a grid of parameters.
#include "Corvantis.h"
#include "SampleGrid.h"
#include "Sections.h"

namespace exactness {
namespace {

constexpr int32_t kLengths[] = {0, 1, 3, 7, 10, 97, 1000, 4096, 9999};
constexpr int32_t kSteps[] = {1, 2, 3, 7, 100, -3};
constexpr int32_t kLongPoints = 1000000;

Samples Sines() {
    Samples samples;
    for (const int32_t interval : kIntervals) {
        epochhdr->samplingInterval = interval;
        for (const int32_t period : kPeriods) {
            for (const auto& [amplitude, mean] : kLevels) {
                const ITCSineParameters record = {amplitude,   mean, period, 0,
                                                  kSinePoints, 2,    3,      {}};
                Append(samples, ITC_STIMULUS_SINE, record);
            }
        }
    }
    return samples;
}

Samples LongSine() {
    Samples samples;
    epochhdr->samplingInterval = 20;
    const ITCSineParameters record = {30000, 5, 7919, 0, kLongPoints, 0, 0, {}};
    Append(samples, ITC_STIMULUS_SINE, record);
    return samples;
}

// Pulse and ramp: records of the same fields.
template <class Record>
Samples OverLengths(uint32_t type) {
    Samples samples;
    for (const int32_t points : kLengths) {
        for (const auto& [amplitude, mean] : kLevels) {
            Append(samples, type, Record{amplitude, mean, points, 2, 3, {}});
        }
    }
    return samples;
}

Samples TriggerSeries() {
    Samples samples;
    for (const int32_t interval : kSteps) {
        for (const auto& [amplitude, mean] : kLevels) {
            const ITCTrigSeriesParameters record = {mean, amplitude, interval, 1000, 2, 3, {}};
            Append(samples, ITC_STIMULUS_TRIGGER_SERIES, record);
        }
    }
    return samples;
}

Samples AlternatingVoltage() {
    Samples samples;
    for (const int32_t halfPeriod : kSteps) {
        for (const auto& [amplitude, mean] : kLevels) {
            const ITCAlternateVoltageParameters record = {halfPeriod, amplitude, mean, 1000,
                                                          2,          3,         {}};
            Append(samples, ITC_STIMULUS_ALTERNATING_VOLTAGE, record);
        }
    }
    return samples;
}

Samples WithoutHoldingLevel() {
    Samples samples;
    Samples wave;
    for (int i = 0; i < 1000; ++i) wave.push_back(static_cast<uint16_t>(i * 7919));
    const ITCFilewaveParameters filewave = {wave.data(), 1000};
    Append(samples, ITC_STIMULUS_FILEWAVE, &filewave, filewave.length);
    const ITCSpatialStmParameters spatial = {50, {}};
    Append(samples, ITC_STIMULUS_SPATIAL, &spatial, spatial.points);
    epochhdr->epochPoints = 60;
    Append(samples, ITC_STIMULUS_DYNAMIC_CLAMP, nullptr, epochhdr->epochPoints);
    return samples;
}

}  // namespace

void ReportWaveforms(Report& report) {
    report.Add("sine", Sines());
    report.Add("sine-long", LongSine());
    report.Add("pulse", OverLengths<ITCPulseParameters>(ITC_STIMULUS_PULSE));
    report.Add("ramp", OverLengths<ITCRampParameters>(ITC_STIMULUS_RAMP));
    report.Add("trigger-series", TriggerSeries());
    report.Add("alternating-voltage", AlternatingVoltage());
    report.Add("file-wave-spatial-dynamic-clamp", WithoutHoldingLevel());
}

}  // namespace exactness
