// The noise waveforms, for records whose runs are not negative.
#include <cmath>
#include <vector>

#include "reference/Definitions.h"
#include "reference/Fused.h"
#include "reference/OldNumbers.h"

namespace definition {
namespace {

int32_t Negated(int32_t value) { return static_cast<int32_t>(0u - static_cast<uint32_t>(value)); }

template <class Record>
void Hold(uint16_t* buffer, const Record& record) {
    const int32_t total = record.prePoints + record.points + record.tailPoints;
    for (int32_t x = 0; x < total; ++x) buffer[x] = static_cast<uint16_t>(record.mean);
}

float Held(uint16_t sample) { return static_cast<float>(static_cast<int16_t>(sample)); }

template <class Record, class Draw>
void LaySegments(uint16_t* buffer, const Record& record, Draw draw) {
    Hold(buffer, record);
    for (int32_t s = 0; s < record.points / record.segmentPoints; ++s) {
        const float level = draw();
        for (int32_t j = 0; j < record.segmentPoints; ++j) {
            uint16_t& sample = buffer[record.prePoints + s * record.segmentPoints + j];
            sample = Sample(level + Held(sample));
        }
    }
}

int32_t Restarted(int32_t seed) {
    int32_t word = Negated(seed);
    UniformDeviate(&word);
    return word;
}

void Scale(float* bin, float factor) {
    bin[0] *= factor;
    bin[1] *= factor;
}

// Bin k stands at 2k + 1. Returns the sum of the gains.
float Shape(std::vector<float>& bins, const ITCNoiseParameters& record, int32_t samplingInterval) {
    const auto n = static_cast<int32_t>(bins.size() / 2);
    const auto wrapped =
        static_cast<int32_t>(static_cast<uint32_t>(n) * static_cast<uint32_t>(samplingInterval));
    const auto step = static_cast<float>(1.0 / (static_cast<double>(wrapped) * 1e-6));
    float sum = 0.0F;
    for (int32_t i = 0; i < n / 2; ++i) {
        const auto f = static_cast<float>((i * double{step}) / record.cutoffFrequency);
        const float base = 1.0F / (f * f + 1.0F);
        const auto gain = static_cast<float>(std::pow(double{base}, double(record.filterOrder)));
        sum = sum + gain;
        Scale(&bins[2 * static_cast<size_t>(i) + 1], std::sqrt(gain));
        Scale(&bins[2 * static_cast<size_t>(n - 1 - i) + 1], std::sqrt(gain));
    }
    return sum;
}

}  // namespace

void SegmentedNoise(uint16_t* buffer, const ITCSegmentedNoiseParameters& record) {
    int32_t word = Restarted(record.seed);
    LaySegments(buffer, record,
                [&] { return static_cast<float>(record.amplitude) * NormalDeviate(&word); });
}

void BinaryNoise(uint16_t* buffer, const ITCBinaryNoiseParameters& record) {
    int32_t word = Restarted(record.seed);
    LaySegments(buffer, record, [&] {
        const bool up = UniformDeviate(&word) > 0.5F;
        return static_cast<float>(up ? record.amplitude : Negated(record.amplitude));
    });
}

void SmoothedNoise(uint16_t* buffer, const ITCNoiseParameters& record) {
    const int32_t half = record.smoothingPoints / 2;
    const int32_t reach = (record.smoothingPoints - 1) / 2;
    const int32_t end = record.prePoints + record.points;
    const int32_t total = end + record.tailPoints;
    SeedOldNumbers(static_cast<uint32_t>(record.seed));
    std::vector<float> work(static_cast<size_t>(total));
    Hold(buffer, record);
    for (float& value : work) {
        const float scaled = static_cast<float>(record.amplitude) * OldNormalDeviate();
        value = static_cast<float>(scaled * std::sqrt(static_cast<double>(record.smoothingPoints)));
    }
    for (int32_t x = end; x < end + half; ++x) work[static_cast<size_t>(x)] = 0.0F;
    for (int32_t x = record.prePoints - half; x < end + half; ++x) {
        float sum = 0.0F;
        for (int32_t k = x - reach; k <= x + reach; ++k) {
            if (k >= 0 && k < total) sum += work[static_cast<size_t>(k)];
        }
        buffer[x] = Sample(sum / static_cast<float>(record.smoothingPoints) +
                           static_cast<float>(record.mean));
    }
}

void SpectralNoise(uint16_t* buffer, const ITCNoiseParameters& record, int32_t samplingInterval) {
    const double exponent = std::floor(std::log(record.points) / std::log(2.0)) + 1.0;
    const auto n = static_cast<uint32_t>(std::pow(2.0, static_cast<int32_t>(exponent)));
    int32_t word = Restarted(record.seed);
    std::vector<float> bins(size_t{2} * n + 1);
    for (uint32_t k = 0; k < n; ++k) {
        bins[2 * k + 1] = static_cast<float>(record.amplitude) * NormalDeviate(&word);
    }
    Fourier(1, n, bins.data());
    const float sum = Shape(bins, record, samplingInterval);
    Fourier(-1, n, bins.data());
    Hold(buffer, record);
    const float scale = std::sqrt(static_cast<float>(n) / (sum + sum));
    for (int32_t k = 0; k < record.points; ++k) {
        uint16_t& sample = buffer[record.prePoints + k];
        sample = Sample(Fused(scale, bins[2 * static_cast<size_t>(k) + 1], Held(sample)));
    }
}

}  // namespace definition
