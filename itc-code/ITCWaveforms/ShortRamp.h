// The ramp stimulus by multiplication: a point's share of the ramp without its division.
#pragma once

#include <cstdint>
#include <span>

namespace corvantis {

struct RampFormula {
    float points;
    float amplitude;
    float mean;
};

// Whether the ramp has few enough points, levels that need no bounds, and a processor that gains.
bool IsShortRamp(const RampFormula& formula);
// The samples of points 0, 1, ... of a short ramp, equal to the formula's in every bit.
void WriteShortRamp(std::span<uint16_t> samples, const RampFormula& formula);

}  // namespace corvantis
