// The factor that the polar method makes of a squared distance.
#pragma once

#include <cmath>
#include <span>

#include "ITCUtilities/Maths/Functions.h"

namespace corvantis {

inline float PolarFactor(float square) {
    return static_cast<float>(std::sqrt(-2.0 * Logarithm(double{square}) / double{square}));
}

// How far the approximation below may lie from the formula's result, in parts of it; see there.
inline constexpr double kPolarGuard = 0x1p-35;

// The factors of many squared distances, normal numbers above 0 and below 1, equal to the formula's
// in every bit as long as the guard is not smaller than it has to be.
void CalculatePolarFactors(std::span<const float> squares, std::span<float> factors,
                           double guard = kPolarGuard);

}  // namespace corvantis
