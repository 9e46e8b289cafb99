// The noise waveforms computed a second time, by other means, as reference for the tests.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "Corvantis.h"
#include "ReferenceRandom.h"
#include "ReferenceSamples.h"

namespace corvantis_test {

using Bin = std::complex<float>;
using Spectrum = std::vector<Bin>;

// Halves are transformed apart and joined; the turning factor grows by repeated multiplication.
inline Spectrum Transform(const Spectrum& in, double sign) {
    if (in.size() < 2) return in;
    Spectrum halves[2];
    for (size_t n = 0; n < in.size(); ++n) halves[n % 2].push_back(in[n]);
    const Spectrum even = Transform(halves[0], sign);
    const Spectrum odd = Transform(halves[1], sign);
    const double angle = sign * 6.283184 / static_cast<double>(in.size());
    const std::complex<double> step(-2.0 * std::sin(angle / 2) * std::sin(angle / 2),
                                    std::sin(angle));
    std::complex<double> turn = 1.0;
    Spectrum out(in.size());
    for (size_t k = 0; k < odd.size(); ++k, turn += turn * step) {
        const Bin turned(turn * std::complex<double>(odd[k]));
        out[k] = even[k] + turned;
        out[k + odd.size()] = even[k] - turned;
    }
    return out;
}

// Follows the library's generators from a restart on: the same calls give the same samples.
class ReferenceNoise {
  public:
    Samples Segmented(const ITCSegmentedNoiseParameters& r) {
        return Segments(
            r, [&] { return static_cast<float>(r.amplitude) * normal.Draw(uniform, word); });
    }
    Samples Binary(const ITCBinaryNoiseParameters& r) {
        return Segments(r, [&] {
            return static_cast<float>(uniform.Draw(word) > 0.5F ? int64_t{r.amplitude}
                                                                : Wrapped(-int64_t{r.amplitude}));
        });
    }
    Samples Spectral(const ITCNoiseParameters& r, int64_t samplingInterval) {
        Restart(r.seed);
        Samples samples = Held(r);
        int64_t length = 2;
        while (length <= r.points) length *= 2;
        Spectrum spectrum;
        for (int64_t k = 0; k < length; ++k)
            spectrum.emplace_back(static_cast<float>(r.amplitude) * normal.Draw(uniform, word));
        spectrum = Transform(spectrum, 1);
        const double span = static_cast<double>(Wrapped(length * samplingInterval)) * 1e-6;
        const auto spacing = static_cast<float>(1 / span);
        float sum = 0;
        for (size_t low = 0, high = spectrum.size() - 1; low < high; ++low, --high) {
            const double frequency = static_cast<double>(low) * double{spacing};
            const auto f = static_cast<float>(frequency / r.cutoffFrequency);
            const auto gain =
                static_cast<float>(std::pow(double{1.0F / (f * f + 1.0F)}, r.filterOrder));
            sum += gain;
            spectrum[low] *= std::sqrt(gain);
            spectrum[high] *= std::sqrt(gain);
        }
        spectrum = Transform(spectrum, -1);
        const float scale = std::sqrt(static_cast<float>(length) / (sum + sum));
        for (int32_t k = 0; k < r.points; ++k) {
            const float part = spectrum[static_cast<size_t>(k)].real() / static_cast<float>(length);
            Raise(samples, r.prePoints + k,
                  [&](float held) { return std::fma(scale, part, held); });
        }
        return samples;
    }
    Samples Smoothed(const ITCNoiseParameters& r) {
        const int32_t half = r.smoothingPoints / 2;
        const int32_t reach = (r.smoothingPoints - 1) / 2;
        const int32_t end = r.prePoints + r.points;
        Samples samples = Held(r);
        std::vector<float> work;
        std::srand(static_cast<unsigned>(r.seed));
        for (size_t x = 0; x < samples.size(); ++x) {
            const float deviate = static_cast<float>(r.amplitude) * older.DrawOnRand();
            work.push_back(static_cast<float>(deviate * std::sqrt(double(r.smoothingPoints))));
        }
        for (int32_t x = end; x < end + half; ++x) work.at(static_cast<size_t>(x)) = 0;
        const auto size = static_cast<int32_t>(work.size());
        for (int32_t x = r.prePoints - half; x < end + half; ++x) {
            float sum = 0;
            for (int32_t y = x - reach; y <= x + reach; ++y)
                if (y >= 0 && y < size) sum += work[static_cast<size_t>(y)];
            const float average = sum / static_cast<float>(r.smoothingPoints);
            samples.at(static_cast<size_t>(x)) =
                Stored(double{average + static_cast<float>(r.mean)});
        }
        return samples;
    }

    ReferenceNormal normal;

  private:
    void Restart(int64_t seed) {
        word = Wrapped(-seed);
        uniform.Draw(word);
    }
    template <class Record>
    static Samples Held(const Record& r) {
        return Samples(static_cast<size_t>(std::max(r.prePoints + r.points + r.tailPoints, 0)),
                       static_cast<uint16_t>(r.mean));
    }
    // Replaces a held sample by a level made of it; an index before the buffer does nothing.
    template <class Level>
    static void Raise(Samples& samples, int32_t index, Level level) {
        if (index < 0) return;
        uint16_t& sample = samples.at(static_cast<size_t>(index));
        sample = Stored(double{level(static_cast<float>(static_cast<int16_t>(sample)))});
    }
    template <class Record, class Draw>
    Samples Segments(const Record& r, Draw draw) {
        Restart(r.seed);
        Samples samples = Held(r);
        for (int32_t segment = 0; segment < r.points / r.segmentPoints; ++segment) {
            const float level = draw();
            for (int32_t j = 0; j < r.segmentPoints; ++j)
                Raise(samples, r.prePoints + segment * r.segmentPoints + j,
                      [&](float held) { return level + held; });
        }
        return samples;
    }

    ReferenceRan2 uniform;
    ReferenceNormal older;
    int64_t word = 0;
};

}  // namespace corvantis_test
