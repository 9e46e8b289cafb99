// The waveforms that are a formula of the point's number, and the sequence's interleaving.
#include <cmath>

#include "reference/Definitions.h"
#include "reference/Fused.h"

namespace definition {
namespace {

int32_t Sum(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

template <class Record, class Shape>
void WriteRuns(uint16_t* next, const Record& record, int32_t level, Shape shape) {
    for (int32_t i = 0; i < record.prePoints; ++i) *next++ = static_cast<uint16_t>(level);
    for (int32_t i = 0; i < record.points; ++i) *next++ = shape(i);
    for (int32_t i = 0; i < record.tailPoints; ++i) *next++ = static_cast<uint16_t>(level);
}

}  // namespace

uint16_t Sample(double value) {
    if (value >= 2147483647.0) return static_cast<uint16_t>(INT32_MAX);
    if (!(value > -2147483648.0)) return static_cast<uint16_t>(INT32_MIN);
    return static_cast<uint16_t>(static_cast<int32_t>(value));
}

void Sine(uint16_t* buffer, const ITCSineParameters& record, int32_t samplingInterval) {
    const double interval = samplingInterval;
    const double w = 6.283184 / (record.period * interval * 1e-6);
    WriteRuns(buffer, record, record.mean, [&](int32_t i) {
        const double phase = i * interval * 1e-6 * w;
        return Sample(Fused(double(record.amplitude), std::sin(phase), double(record.mean)));
    });
}

void Pulse(uint16_t* buffer, const ITCPulseParameters& record) {
    WriteRuns(buffer, record, record.mean,
              [&](int32_t) { return static_cast<uint16_t>(Sum(record.mean, record.amplitude)); });
}

void Ramp(uint16_t* buffer, const ITCRampParameters& record) {
    WriteRuns(buffer, record, record.mean, [&](int32_t i) {
        const float part = static_cast<float>(i) / static_cast<float>(record.points);
        return Sample(
            Fused(part, static_cast<float>(record.amplitude), static_cast<float>(record.mean)));
    });
}

void TriggerSeries(uint16_t* buffer, const ITCTrigSeriesParameters& record) {
    WriteRuns(buffer, record, record.baseline, [&](int32_t i) {
        const bool trigger = i % record.interval == 0;
        const int32_t level = trigger ? Sum(record.baseline, record.amplitude) : record.baseline;
        return static_cast<uint16_t>(level);
    });
}

void AlternatingVoltage(uint16_t* buffer, const ITCAlternateVoltageParameters& record) {
    WriteRuns(buffer, record, record.mean, [&](int32_t i) {
        const bool first = std::remainder(i / record.halfPeriod, 2.0) == 0.0;
        const int32_t level = first ? record.mean : Sum(record.mean, record.amplitude);
        return static_cast<uint16_t>(level);
    });
}

void Interleave(uint16_t* interleaved, uint16_t* const* perEntry, int32_t entries, int32_t points) {
    for (int32_t p = 0; p < points; ++p) {
        for (int32_t c = 0; c < entries; ++c) *interleaved++ = perEntry[c][p];
    }
}

void Split(const uint16_t* interleaved, uint16_t* const* perEntry, int32_t entries,
           int32_t points) {
    for (int32_t p = 0; p < points; ++p) {
        for (int32_t c = 0; c < entries; ++c) perEntry[c][p] = *interleaved++;
    }
}

}  // namespace definition
