// The older filtered noise: deviates of the older generator, averaged over a moving window.
#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "ITCUtilities/Memory.h"
#include "ITCUtilities/WrappingArithmetic.h"
#include "ITCWaveforms/FilteredNoise.h"
#include "ITCWaveforms/Samples.h"
#include "ITCWaveforms/WindowSums.h"

namespace corvantis {
namespace {

void DrawDeviates(std::span<float> work, const ITCNoiseParameters& record,
                  NoiseGenerators& generators) {
    DrawOldNormalDeviates(generators, work);
    const float amplitude = static_cast<float>(record.amplitude);
    const double gain = std::sqrt(static_cast<double>(record.smoothingPoints));
    for (float& value : work) value = static_cast<float>(double{amplitude * value} * gain);
}

// Only behind the points: the noise fades into the tail but starts at full strength, as recorded.
void FadeIntoTail(std::span<float> work, const ITCNoiseParameters& record, int32_t half) {
    const int64_t total = static_cast<int64_t>(work.size());
    const int64_t first = int64_t{record.prePoints} + record.points;
    const int64_t begin = std::clamp<int64_t>(first, 0, total);
    const int64_t end = std::clamp<int64_t>(first + half, begin, total);
    std::fill(work.data() + begin, work.data() + end, 0.0F);
}

// The sums of the windows around `sums.size()` successive points, the first one's at `x`; entries
// outside the work array count as zero.
void SumClippedWindows(std::span<float> sums, std::span<const float> work, int64_t x,
                       int32_t reach) {
    for (float& sum : sums) {
        const int64_t begin = std::max<int64_t>(x - reach, 0);
        const int64_t end = std::min(x + reach + 1, static_cast<int64_t>(work.size()));
        sum = 0.0F;
        for (int64_t k = begin; k < end; ++k) sum += work[static_cast<size_t>(k)];
        ++x;
    }
}

void LayNoise(uint16_t* buffer, std::span<const float> work, int64_t first, int64_t end,
              const ITCNoiseParameters& record) {
    const int32_t reach = WrappingSubtract(record.smoothingPoints, 1) / 2;
    const float window = static_cast<float>(record.smoothingPoints);
    const float mean = static_cast<float>(record.mean);
    std::array<float, kWindowBatch> batch;
    for (int64_t x = first; x < end; x += kWindowBatch) {
        const int64_t count = std::min<int64_t>(kWindowBatch, end - x);
        const std::span<float> sums(batch.data(), static_cast<size_t>(count));
        const bool inside = reach >= 0 && x >= reach &&
                            x + kWindowBatch + reach <= static_cast<int64_t>(work.size());
        if (inside) {
            SumWindows(batch.data(), work.data() + (x - reach), 2 * int64_t{reach} + 1);
        } else {
            SumClippedWindows(sums, work, x, reach);
        }
        std::transform(sums.begin(), sums.end(), buffer + x,
                       [=](float sum) { return ConvertToSample(sum / window + mean); });
    }
}

}  // namespace

int32_t CreateSmoothedNoise(uint16_t* buffer, const ITCNoiseParameters& record,
                            NoiseGenerators& generators) {
    const int32_t half = record.smoothingPoints / 2;
    if (record.prePoints < half || record.tailPoints < half) return ITC_STIMULUS_ERROR;
    const int64_t total = std::max(TotalPoints(record), 0);
    generators.old->Seed(static_cast<uint32_t>(record.seed));
    const OwnedBlock<float> block = AllocateArray<float>(total);
    if (block == nullptr) return ITC_OUT_OF_MEMORY;
    const std::span<float> work(block.get(), static_cast<size_t>(total));
    WriteLevel(buffer, total, record.mean);
    DrawDeviates(work, record, generators);
    FadeIntoTail(work, record, half);
    const int64_t first = std::max<int64_t>(int64_t{record.prePoints} - half, 0);
    // Lengths whose sum wraps would take the noise beyond all the points there are.
    const int64_t end = std::min(int64_t{record.prePoints} + record.points + half, total);
    LayNoise(buffer, work, first, end, record);
    return ITC_SUCCESS;
}

}  // namespace corvantis
