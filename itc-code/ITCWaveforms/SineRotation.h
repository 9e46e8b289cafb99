// The sine stimulus by rotation: a few sines and cosines per 512 points instead of one per point.
#pragma once

#include <cstdint>
#include <span>

#include "ITCWaveforms/SineFormula.h"

namespace corvantis {

// The samples of points 0, 1, ..., equal to the formula's in every bit as long as the guard's share
// of the proven bound is 1 or more.
void WriteSine(std::span<uint16_t> samples, const SineFormula& formula, double guardShare = 1.0);

}  // namespace corvantis
