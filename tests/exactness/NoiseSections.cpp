// The noise stimuli, also over histories of calls: generators and spare deviates carry over.
#include "Corvantis.h"
#include "SampleGrid.h"
#include "Sections.h"

namespace exactness {
namespace {

constexpr int32_t kSeeds[] = {0, 12345, -7, -7, 2147483647, -1, INT32_MIN, 1};
constexpr int32_t kSegments[] = {1, 7, 50};
constexpr int32_t kOrders[] = {0, 1, 2, 3, 4};
constexpr int32_t kCutoffs[] = {1, 60, 300, 5000};
constexpr int32_t kNoiseIntervals[] = {10, 50, 100};

template <class Record>
Samples SegmentNoise(uint32_t type) {
    Samples samples;
    for (const int32_t seed : kSeeds) {
        for (const int32_t segment : kSegments) {
            for (const auto& [amplitude, mean] : kLevels) {
                Append(samples, type, Record{amplitude, mean, seed, 5003, 2, 3, segment, {}});
            }
        }
    }
    return samples;
}

Samples FilteredNoise(int32_t points) {
    Samples samples;
    for (const int32_t interval : kNoiseIntervals) {
        epochhdr->samplingInterval = interval;
        for (const int32_t order : kOrders) {
            for (const int32_t cutoff : kCutoffs) {
                const int32_t seed = 1000 * order + cutoff;
                const ITCNoiseParameters record = {3000, 100, seed, points, 2, 3, 0, cutoff, order};
                Append(samples, ITC_STIMULUS_NOISE, record);
            }
        }
    }
    return samples;
}

Samples LongFilteredNoise() {
    Samples samples;
    epochhdr->samplingInterval = 50;
    for (const int32_t order : kOrders) {
        const ITCNoiseParameters record = {3000, 100, order + 1, 100000, 2, 3, 0, 300, order};
        Append(samples, ITC_STIMULUS_NOISE, record);
    }
    return samples;
}

// Odd numbers of segments leave a spare deviate for whichever noise comes next.
Samples Histories() {
    Samples samples;
    epochhdr->samplingInterval = 50;
    for (const int32_t seed : kSeeds) {
        const ITCSegmentedNoiseParameters segmented = {3000, 100, seed, 105, 0, 0, 15, {}};
        Append(samples, ITC_STIMULUS_SEGMENTED_NOISE, segmented);
        const ITCNoiseParameters filtered = {3000, -100, seed, 300, 1, 1, 0, 500, 2};
        Append(samples, ITC_STIMULUS_NOISE, filtered);
        const ITCBinaryNoiseParameters binary = {3000, 100, seed, 500, 0, 0, 1, {}};
        Append(samples, ITC_STIMULUS_BINARY_NOISE, binary);
    }
    return samples;
}

// The method of files up to version 4.
Samples SmoothedNoise() {
    Samples samples;
    const int8_t version = filehdr->version;
    filehdr->version = 4;
    for (const int32_t seed : kSeeds) {
        for (const int32_t window : {1, 2, 5, 8, 101}) {
            const ITCNoiseParameters record = {3000, 100, seed, 1001, 50, 60, window, 0, 0};
            Append(samples, ITC_STIMULUS_NOISE, record);
        }
    }
    filehdr->version = version;
    return samples;
}

}  // namespace

void ReportNoise(Report& report) {
    report.Add("segmented-noise",
               SegmentNoise<ITCSegmentedNoiseParameters>(ITC_STIMULUS_SEGMENTED_NOISE));
    report.Add("binary-noise", SegmentNoise<ITCBinaryNoiseParameters>(ITC_STIMULUS_BINARY_NOISE));
    report.Add("filtered-noise-1000", FilteredNoise(1000));
    report.Add("filtered-noise-4096", FilteredNoise(4096));
    report.Add("filtered-noise-100000", LongFilteredNoise());
    report.Add("noise-histories", Histories());
    report.Add("platform-rand-smoothed-noise", SmoothedNoise());
}

}  // namespace exactness
