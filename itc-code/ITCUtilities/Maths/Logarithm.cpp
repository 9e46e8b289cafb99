// The natural logarithm: with two words, and with four or eight where these cannot tell how to
// round.
//
// The logarithm of a double but 1 is no fraction, so it lies on no boundary of rounding. Published
// searches have found all doubles' closest: none needs more than 120 bits, so four words decide.
#include "ITCUtilities/Maths/Logarithm.h"

#include <cmath>

#include "ITCUtilities/Maths/Functions.h"

namespace corvantis {

double Logarithm(double x) {
    if (x == 0.0) return -std::numeric_limits<double>::infinity();
    if (!(x > 0.0)) return std::numeric_limits<double>::quiet_NaN();
    if (std::isinf(x)) return x;
    if (x == 1.0) return 0.0;
    if (const auto logarithm = LogarithmInWords<2>(x)) return *logarithm;
    if (const auto logarithm = LogarithmInWords<4>(x)) return *logarithm;
    return *LogarithmInWords<8>(x, 0);
}

}  // namespace corvantis
