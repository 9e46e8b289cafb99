// The power gains of the spectral filter, many at a time.
#pragma once

#include <cstdint>
#include <span>

#include "ITCUtilities/Maths/Functions.h"

namespace corvantis {

// The filter of one record: frequency bins `step` apart [Hz], its corner [Hz] and its order.
struct FilterFormula {
    float Base(double i) const {
        const float f = static_cast<float>(i * step / corner);
        return 1.0F / (f * f + 1.0F);
    }
    float Gain(int32_t i) const { return static_cast<float>(Power(double{Base(i)}, order)); }
    double step;
    int32_t corner;
    int32_t order;
};

// How far a product may lie from the power it stands for, in parts of it; see there.
inline constexpr double kPowerGuard = 0x1p-38;

// The gains of bins first, first + 1, ..., equal to the formula's in every bit as long as the guard
// is not smaller than it has to be.
void CalculateGains(const FilterFormula& formula, int32_t first, std::span<float> gains,
                    double guard = kPowerGuard);
// Square roots of the gains, times both parts of the bins 2k, 2k + 1; also from the last bin on
// downwards.
void ScaleBins(float* bins, std::span<const float> gains);
void ScaleBinsDownwards(float* lastBin, std::span<const float> gains);

}  // namespace corvantis
