// The newer filtered noise: deviates of ran2, shaped in the frequency domain.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <span>

#include "ITCUtilities/Fourier/FourierTransform.h"
#include "ITCUtilities/Memory.h"
#include "ITCUtilities/WrappingArithmetic.h"
#include "ITCWaveforms/FilteredNoise.h"
#include "ITCWaveforms/PowerGains.h"
#include "ITCWaveforms/Samples.h"

namespace corvantis {
namespace {

// A complex sequence as the transform wants it: bin k behind an unused first value.
struct Spectrum {
    float* Bin(int32_t k) const { return values.get() + 1 + 2 * static_cast<size_t>(k); }
    void Transform(int32_t direction) const {
        TransformFourier(direction, static_cast<uint32_t>(length), values.get());
    }
    OwnedBlock<float> values;
    int32_t length = 0;
};

constexpr int32_t kBatch = 4096;

void DrawWhiteNoise(const Spectrum& spectrum, const ITCNoiseParameters& record,
                    NoiseGenerators& generators, int32_t& word) {
    const float amplitude = static_cast<float>(record.amplitude);
    std::array<float, kBatch> batch;
    for (int32_t k = 0; k < spectrum.length; k += kBatch) {
        const auto count = static_cast<size_t>(std::min(kBatch, spectrum.length - k));
        DrawNormalDeviates(generators, word, {batch.data(), count});
        float* bin = spectrum.Bin(k);
        for (size_t i = 0; i < count; ++i) {
            bin[2 * i] = amplitude * batch[i];
            bin[2 * i + 1] = 0.0F;
        }
    }
}

// Bin i shares its gain with bin n - 1 - i, one beside its true mirror: recorded noise depends on
// it. Returns the sum of the gains.
float ShapeSpectrum(const Spectrum& spectrum, const ITCNoiseParameters& record,
                    int32_t samplingInterval) {
    const double duration = WrappingMultiply(spectrum.length, samplingInterval) * 1e-6;
    const float frequencyStep = static_cast<float>(1.0 / duration);
    const FilterFormula filter = {frequencyStep, record.cutoffFrequency, record.filterOrder};
    std::array<float, kBatch> batch;
    float sum = 0.0F;
    for (int32_t i = 0; i < spectrum.length / 2; i += kBatch) {
        const auto count = static_cast<size_t>(std::min(kBatch, spectrum.length / 2 - i));
        const std::span<float> gains(batch.data(), count);
        CalculateGains(filter, i, gains);
        for (const float gain : gains) sum += gain;
        ScaleBins(spectrum.Bin(i), gains);
        ScaleBinsDownwards(spectrum.Bin(spectrum.length - 1 - i), gains);
    }
    return sum;
}

// Points before the buffer, which a negative prePoints would ask for, are passed over.
void LayNoise(uint16_t* buffer, const Spectrum& spectrum, const ITCNoiseParameters& record,
              float sum) {
    const float scale = std::sqrt(static_cast<float>(spectrum.length) / (sum + sum));
    const int64_t skipped = std::max<int64_t>(-int64_t{record.prePoints}, 0);
    if (skipped >= record.points) return;
    AddScaledLevels(
        {buffer + record.prePoints + skipped, static_cast<size_t>(record.points - skipped)}, scale,
        spectrum.Bin(static_cast<int32_t>(skipped)));
}

}  // namespace

// The smallest power of two above the points: equal to the logarithm's floor plus 1 for every
// number of points, without asking the platform's logarithm.
int32_t TransformLength(int32_t points) {
    return static_cast<int32_t>(std::bit_ceil(static_cast<uint32_t>(points) + 1));
}

int32_t CreateSpectralNoise(uint16_t* buffer, const ITCNoiseParameters& record,
                            int32_t samplingInterval, NoiseGenerators& generators) {
    if (record.points <= 0) {
        WriteLevel(buffer, TotalPoints(record), record.mean);
        return ITC_SUCCESS;
    }
    // Before the memory is asked for: a failure too leaves the generator restarted.
    int32_t word = WrappingNegate(record.seed);
    DrawUniformDeviate(generators.uniform, word);
    if (record.points > kMostSpectralPoints) return ITC_OUT_OF_MEMORY;
    Spectrum spectrum;
    spectrum.length = TransformLength(record.points);
    spectrum.values = AllocateArray<float>(2 * int64_t{spectrum.length} + 1);
    if (spectrum.values == nullptr) return ITC_OUT_OF_MEMORY;
    DrawWhiteNoise(spectrum, record, generators, word);
    spectrum.Transform(1);
    const float sum = ShapeSpectrum(spectrum, record, samplingInterval);
    spectrum.Transform(-1);
    WriteLevel(buffer, TotalPoints(record), record.mean);
    LayNoise(buffer, spectrum, record, sum);
    return ITC_SUCCESS;
}

}  // namespace corvantis
