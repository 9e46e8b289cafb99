// The newer filtered noise: deviates of ran2, shaped in the frequency domain.
#include <bit>
#include <cmath>

#include "ITCInitialize/Memory.h"
#include "ITCInitialize/State.h"
#include "ITCStimulus/FilteredNoise.h"
#include "ITCStimulus/Samples.h"
#include "ITCUtilities/WrappingArithmetic.h"

namespace corvantis {
namespace {

constexpr int32_t kMostPoints = (1 << 30) - 1;

// The smallest power of two above the points: equal to the logarithm's floor plus 1 for every
// number of points, without asking the platform's logarithm.
int32_t TransformLength(int32_t points) {
    return static_cast<int32_t>(std::bit_ceil(static_cast<uint32_t>(points) + 1));
}

// A complex sequence as the transform wants it: bin k behind an unused first value.
struct Spectrum {
    float& Real(int32_t k) const { return values[2 * static_cast<size_t>(k) + 1]; }
    float& Imaginary(int32_t k) const { return values[2 * static_cast<size_t>(k) + 2]; }
    void Scale(int32_t k, float factor) const {
        Real(k) *= factor;
        Imaginary(k) *= factor;
    }
    void Transform(int32_t direction) const {
        ITCfft(direction, static_cast<uint32_t>(length), values.get());
    }
    OwnedBlock<float> values;
    int32_t length = 0;
};

void DrawWhiteNoise(const Spectrum& spectrum, const ITCNoiseParameters& record) {
    static int32_t seed;
    seed = WrappingNegate(record.seed);
    ITCSeedRandom(&seed);
    const float amplitude = static_cast<float>(record.amplitude);
    for (int32_t k = 0; k < spectrum.length; ++k) {
        spectrum.Real(k) = amplitude * ITCNormalDeviate(&seed);
        spectrum.Imaginary(k) = 0.0F;
    }
}

float PowerGain(double frequency, const ITCNoiseParameters& record) {
    const float f = static_cast<float>(frequency / record.cutoffFrequency);
    const float base = 1.0F / (f * f + 1.0F);
    return static_cast<float>(std::pow(double{base}, static_cast<double>(record.filterOrder)));
}

// Bin i shares its gain with bin n - 1 - i, one beside its true mirror: recorded noise depends on
// it. Returns the sum of the gains.
float ShapeSpectrum(const Spectrum& spectrum, const ITCNoiseParameters& record) {
    const int32_t interval = CurrentEpochHeader().samplingInterval;
    const double duration = WrappingMultiply(spectrum.length, interval) * 1e-6;
    const float frequencyStep = static_cast<float>(1.0 / duration);
    float sum = 0.0F;
    for (int32_t i = 0; i < spectrum.length / 2; ++i) {
        const float gain = PowerGain(i * double{frequencyStep}, record);
        sum += gain;
        const float factor = std::sqrt(gain);
        spectrum.Scale(i, factor);
        spectrum.Scale(spectrum.length - 1 - i, factor);
    }
    return sum;
}

// Points before the buffer, which a negative prePoints would ask for, are passed over.
void LayNoise(uint16_t* buffer, const Spectrum& spectrum, const ITCNoiseParameters& record,
              float sum) {
    const float scale = std::sqrt(static_cast<float>(spectrum.length) / (sum + sum));
    for (int32_t k = 0; k < record.points; ++k) {
        const int64_t x = int64_t{record.prePoints} + k;
        if (x < 0) continue;
        const float mean = static_cast<float>(static_cast<int16_t>(buffer[x]));
        buffer[x] = ConvertToSample(std::fma(scale, spectrum.Real(k), mean));
    }
}

}  // namespace

int32_t CreateSpectralNoise(uint16_t* buffer, const ITCNoiseParameters& record) {
    if (record.points <= 0) {
        WriteLevel(buffer, TotalPoints(record), record.mean);
        return ITC_SUCCESS;
    }
    if (record.points > kMostPoints) return ITC_OUT_OF_MEMORY;
    Spectrum spectrum;
    spectrum.length = TransformLength(record.points);
    spectrum.values = AllocateArray<float>(2 * int64_t{spectrum.length} + 1);
    if (spectrum.values == nullptr) return ITC_OUT_OF_MEMORY;
    DrawWhiteNoise(spectrum, record);
    spectrum.Transform(1);
    const float sum = ShapeSpectrum(spectrum, record);
    spectrum.Transform(-1);
    WriteLevel(buffer, TotalPoints(record), record.mean);
    LayNoise(buffer, spectrum, record, sum);
    return ITC_SUCCESS;
}

}  // namespace corvantis
