// The loops over runs of samples.
#include "ITCWaveforms/SampleRuns.h"

#include <algorithm>

#include "ITCUtilities/FunctionClones.h"
#include "ITCUtilities/Maths/FusedOperation.h"
#include "ITCWaveforms/Samples.h"

namespace corvantis {
namespace {

// Long enough for copying to be fast, short enough to be copied out of the first cache.
constexpr int64_t kLongestCopy = 4096;

CORVANTIS_CLONES void Fill(uint16_t* samples, int64_t count, uint16_t sample) {
    std::fill_n(samples, count, sample);
}

CORVANTIS_CLONES void Sum(uint16_t* __restrict sums, const uint16_t* __restrict samples,
                          size_t count) {
    for (size_t i = 0; i < count; ++i) sums[i] = static_cast<uint16_t>(sums[i] + samples[i]);
}

inline float Held(uint16_t sample) { return static_cast<float>(static_cast<int16_t>(sample)); }

CORVANTIS_CLONES void Raise(uint16_t* samples, size_t count, float level) {
    for (size_t i = 0; i < count; ++i) samples[i] = ConvertToSample(level + Held(samples[i]));
}

CORVANTIS_CLONES void RaiseEach(uint16_t* __restrict samples, const float* __restrict levels,
                                size_t count) {
    for (size_t i = 0; i < count; ++i) samples[i] = ConvertToSample(levels[i] + Held(samples[i]));
}

template <bool instruction>
CORVANTIS_INLINE void RaiseEachScaledBy(uint16_t* __restrict samples, float scale,
                                        const float* __restrict levels, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const float held = Held(samples[i]);
        samples[i] = ConvertToSample(FusedSum<instruction>(scale, levels[2 * i], held));
    }
}
CORVANTIS_CLONES void RaiseEachFused(uint16_t* __restrict samples, float scale,
                                     const float* __restrict levels, size_t count) {
    RaiseEachScaledBy<true>(samples, scale, levels, count);
}
CORVANTIS_CLONES void RaiseEachScaled(uint16_t* __restrict samples, float scale,
                                      const float* __restrict levels, size_t count) {
    RaiseEachScaledBy<false>(samples, scale, levels, count);
}

}  // namespace

uint16_t* WriteLevel(uint16_t* next, int64_t count, int32_t level) {
    if (count <= 0) return next;
    Fill(next, count, LevelSample(level));
    return next + count;
}

void RepeatPeriod(std::span<uint16_t> run, int64_t period) {
    const int64_t length = static_cast<int64_t>(run.size());
    for (int64_t done = period; done < length;) {
        const int64_t whole = std::min(done, std::max(kLongestCopy, period)) / period * period;
        const int64_t count = std::min(whole, length - done);
        std::copy_n(run.data(), count, run.data() + done);
        done += count;
    }
}

void AddSamples(std::span<uint16_t> sums, const uint16_t* samples) {
    Sum(sums.data(), samples, sums.size());
}

void AddLevel(std::span<uint16_t> samples, float level) {
    Raise(samples.data(), samples.size(), level);
}

void AddLevels(std::span<uint16_t> samples, const float* levels) {
    RaiseEach(samples.data(), levels, samples.size());
}

void AddScaledLevels(std::span<uint16_t> samples, float scale, const float* levels) {
    const auto raise = HasFusedInstruction() ? RaiseEachFused : RaiseEachScaled;
    raise(samples.data(), scale, levels, samples.size());
}

}  // namespace corvantis
