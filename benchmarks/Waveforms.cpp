// Every waveform; the limits are memset of the same bytes, or the calls of rand alone.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "Corvantis.h"
#include "Jobs.h"
#include "reference/Definitions.h"

namespace bench {
namespace {

constexpr int32_t kInterval = 100;
constexpr double kRandsPerDeviate = 1.2732395447351628;

using Buffer = std::shared_ptr<std::vector<uint16_t>>;

Buffer Samples(int64_t points) {
    return std::make_shared<std::vector<uint16_t>>(static_cast<size_t>(points));
}

std::function<void()> Memset(const Buffer& buffer) {
    return [=] {
        std::memset(buffer->data(), 1, 2 * buffer->size());
        benchmark::ClobberMemory();
    };
}

std::function<void()> Rands(int64_t deviates) {
    return [=] {
        const auto count = static_cast<int64_t>(kRandsPerDeviate * static_cast<double>(deviates));
        for (int64_t i = 0; i < count; ++i) benchmark::DoNotOptimize(std::rand());
    };
}

// The same record through a plain and a library generator.
template <class Record, class Plain, class Library>
Job Pair(const char* name, int32_t points, Record record, Plain plainForm, Library library) {
    record.points = points;
    const Buffer buffer = Samples(points + record.prePoints + record.tailPoints);
    return {name, points, [=] { plainForm(buffer->data(), record); },
            [=] {
                epochhdr->samplingInterval = kInterval;
                library(reinterpret_cast<int16_t*>(buffer->data()), &record);
            },
            std::function<void()>()};
}

template <class Record, class Plain, class Library>
Job PairAgainstMemset(const char* name, int32_t points, Record record, Plain plainForm,
                      Library library) {
    Job job = Pair(name, points, record, plainForm, library);
    job.limit = Memset(Samples(points));
    return job;
}

void PlainSine(uint16_t* buffer, const ITCSineParameters& record) {
    definition::Sine(buffer, record, kInterval);
}
void PlainSpectral(uint16_t* buffer, const ITCNoiseParameters& record) {
    definition::SpectralNoise(buffer, record, kInterval);
}
template <int Version>
void LibraryNoise(int16_t* buffer, const ITCNoiseParameters* record) {
    filehdr->version = Version;
    ITCStmCreateNoise(reinterpret_cast<uint16_t*>(buffer), record);
}

void AddFilteredNoise(Jobs& jobs) {
    const ITCNoiseParameters spectral = {
        .amplitude = 2000, .mean = 100, .seed = 42, .cutoffFrequency = 60, .filterOrder = 4};
    for (const int32_t points : {1000, 65000, 1000000}) {
        jobs.push_back(
            Pair("filtered noise, spectral", points, spectral, PlainSpectral, LibraryNoise<8>));
    }
    for (const int32_t window : {51, 501}) {
        const ITCNoiseParameters smoothed = {.amplitude = 2000,
                                             .mean = 100,
                                             .seed = 42,
                                             .tailPoints = window,
                                             .prePoints = window,
                                             .smoothingPoints = window};
        const std::string name = "filtered noise, window " + std::to_string(window);
        jobs.push_back(
            Pair(name.c_str(), 100000, smoothed, definition::SmoothedNoise, LibraryNoise<4>));
        jobs.back().limit = Rands(100000 + 2 * window);
    }
}

}  // namespace

void AddWaveformJobs(Jobs& jobs) {
    AddFilteredNoise(jobs);
    const ITCSineParameters sine = {.amplitude = 12000, .mean = 100, .period = 37};
    const ITCSegmentedNoiseParameters segmented = {
        .amplitude = 2000, .mean = 100, .seed = 42, .segmentPoints = 1};
    const ITCBinaryNoiseParameters binary = {
        .amplitude = 2000, .mean = 100, .seed = 42, .segmentPoints = 1};
    const ITCAlternateVoltageParameters alternating = {
        .halfPeriod = 50, .amplitude = 3000, .mean = 7};
    for (const int32_t points : {1000, 100000})
        jobs.push_back(Pair("sine", points, sine, PlainSine, ITCStmCreateSine));
    jobs.push_back(Pair("segmented noise, one-point segments", 100000, segmented,
                        definition::SegmentedNoise, ITCStmCreateSegmentedNoise));
    jobs.push_back(Pair("binary noise, one-point segments", 100000, binary, definition::BinaryNoise,
                        ITCStmCreateBinaryNoise));
    jobs.push_back(PairAgainstMemset("pulse", 100000,
                                     ITCPulseParameters{.amplitude = 3000, .mean = 7},
                                     definition::Pulse, ITCStmCreatePulse));
    jobs.push_back(PairAgainstMemset("ramp", 100000,
                                     ITCRampParameters{.amplitude = 30000, .mean = 7},
                                     definition::Ramp, ITCStmCreateRamp));
    jobs.push_back(PairAgainstMemset("alternating voltage", 100000, alternating,
                                     definition::AlternatingVoltage, ITCStmCreateAltVoltage));
}

}  // namespace bench
