// Point i of p has i / p of the ramp behind it, rounded to single precision. Dividing takes several
// times as long as all the rest, so i is multiplied by 1 / p in two parts, h + l, of single
// precision:
//
// h is 1 / p rounded, |l| <= 2^-24 h the rest of it rounded, so h + l is off by less than
// 2^-48 + 2^-53 of 1 / p. The product i * l is rounded, by less than 2^-48 of i / p; the product
// i * h and the sum are exact until they are rounded together. What is rounded differs from i / p
// by less than 2^-46 of it.
//
// Both round the same unless a midpoint between two single-precision numbers lies between or on
// them. A midpoint is m * 2^k with an odd m between 2^24 and 2^25, so |i / p - m * 2^k| is
// |i * 2^-k - m * p| * 2^k / p. With p up to 2^20, k is negative and the first factor a whole
// number; it is not 0, for then the odd m would divide i, which is smaller. So i / p lies at least
// 2^k / p from every midpoint, which is 1 / (m * p) > 2^-45 of it: too far.
#include "ITCWaveforms/ShortRamp.h"

#include <cmath>

#include "ITCUtilities/FunctionClones.h"
#include "ITCUtilities/Maths/FusedOperation.h"
#include "ITCWaveforms/Samples.h"

namespace corvantis {
namespace {

constexpr float kMostPoints = 1048576.0F;
// The largest single-precision number that is a 32-bit integer.
constexpr double kLargestLevel = 2147483520.0;

CORVANTIS_CLONES void Write(uint16_t* samples, int32_t count, const RampFormula& formula) {
    const float amplitude = formula.amplitude;
    const float mean = formula.mean;
    const float high = 1.0F / formula.points;
    const auto low = static_cast<float>(1.0 / double{formula.points} - double{high});
    for (int32_t i = 0; i < count; ++i) {
        const auto point = static_cast<float>(i);
        const float share = FusedSum<true>(point, high, point * low);
        samples[i] = LevelSample(static_cast<int32_t>(FusedSum<true>(share, amplitude, mean)));
    }
}

}  // namespace

bool IsShortRamp(const RampFormula& formula) {
    const double largest = std::fabs(double{formula.amplitude}) + std::fabs(double{formula.mean});
    return formula.points <= kMostPoints && largest <= kLargestLevel && HasFusedInstruction();
}

void WriteShortRamp(std::span<uint16_t> samples, const RampFormula& formula) {
    Write(samples.data(), static_cast<int32_t>(samples.size()), formula);
}

}  // namespace corvantis
