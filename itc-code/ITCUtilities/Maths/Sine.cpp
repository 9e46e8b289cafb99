// The sine: with two words, and with four or eight where these cannot tell how to round.
//
// The sine of a double but 0 is no fraction, so it lies on no boundary of rounding and some number
// of words decides. Where it lies between two boundaries is as good as random: two words fail about
// once in 2^44 times, or more often where the sine is near 0, and eight would for any double at all
// with a probability of 2^-370; there the nearest result would be taken.
#include "ITCUtilities/Maths/Sine.h"

#include <cmath>

#include "ITCUtilities/Maths/Functions.h"

namespace corvantis {

double Sine(double x) {
    if (!std::isfinite(x)) return x - x;
    // x (1 - x^2 / 6 ...) is off x by less than half of what makes another double.
    if (std::abs(x) < 0x1p-27) return x;
    if (const auto sine = SineInWords<2>(x)) return *sine;
    if (const auto sine = SineInWords<4>(x)) return *sine;
    return *SineInWords<8>(x, 0);
}

}  // namespace corvantis
