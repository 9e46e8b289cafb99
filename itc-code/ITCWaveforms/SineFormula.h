// The sine stimulus as a formula of the point's number.
#pragma once

#include <cstdint>

#include "ITCUtilities/Maths/Functions.h"
#include "ITCUtilities/Maths/FusedOperation.h"
#include "ITCWaveforms/Samples.h"

namespace corvantis {

struct SineFormula {
    // 2 pi as recorded stimuli were made with: a period of 4 peaks at 999 of 1000, and must go on
    // to.
    static constexpr double kTwoPi = 6.283184;
    static constexpr double kSecondsPerMicrosecond = 1e-6;

    SineFormula(int32_t amplitudeLevel, int32_t meanLevel, int32_t period, int32_t samplingInterval)
        : amplitude(amplitudeLevel),
          mean(meanLevel),
          interval(samplingInterval),
          w(kTwoPi / (period * interval * kSecondsPerMicrosecond)) {}
    double Phase(int32_t i) const { return i * interval * kSecondsPerMicrosecond * w; }
    uint16_t Sample(int32_t i) const {
        return ConvertToSample(FusedSum(amplitude, Sine(Phase(i)), mean));
    }

    double amplitude;
    double mean;
    double interval;
    double w;
};

}  // namespace corvantis
