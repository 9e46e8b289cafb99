// Filtered noise: which of its two methods a file's version means.
#include "ITCWaveforms/FilteredNoise.h"

#include <algorithm>

#include "ITCWaveforms/Draws.h"
#include "ITCWaveforms/Samples.h"
#include "ITCWaveforms/Waveforms.h"

namespace corvantis {

int32_t CreateWaveform(uint16_t* buffer, const ITCNoiseParameters& record,
                       const EpochSettings& settings, NoiseGenerators& generators) {
    if (settings.version <= kLastVersionWithOldNoise) {
        return CreateSmoothedNoise(buffer, record, generators);
    }
    return CreateSpectralNoise(buffer, record, settings.samplingInterval, generators);
}

Draws DrawsOf(const ITCNoiseParameters& record, int8_t version) {
    if (version <= kLastVersionWithOldNoise) {
        return {Deviates::kOldNormal, record.seed, std::max(TotalPoints(record), 0)};
    }
    if (record.points <= 0) return {};
    // Without the memory for more, the generator is restarted all the same.
    const bool fits = record.points <= kMostSpectralPoints;
    return {Deviates::kNormal, record.seed, fits ? TransformLength(record.points) : 0};
}

}  // namespace corvantis
