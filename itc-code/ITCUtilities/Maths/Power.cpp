// Powers with a whole exponent: with two words, and with four or eight where these cannot tell how
// to round.
#include "ITCUtilities/Maths/Power.h"

#include <cmath>

#include "ITCUtilities/Maths/Functions.h"

namespace corvantis {
namespace {

// Of a base that is 0 or infinite, or to the power 0.
double LimitOfPower(double magnitude, int32_t exponent) {
    if (exponent == 0) return 1.0;
    return (magnitude == 0.0) == (exponent > 0) ? 0.0 : std::numeric_limits<double>::infinity();
}

double PowerOfMagnitude(double base, int32_t exponent) {
    if (base == 0.0 || std::isinf(base) || exponent == 0) return LimitOfPower(base, exponent);
    if (const auto power = PowerInWords<2>(base, exponent)) return *power;
    if (const auto power = PowerInWords<4>(base, exponent)) return *power;
    return *PowerInWords<8>(base, exponent, 0);
}

}  // namespace

double Power(double base, int32_t exponent) {
    if (std::isnan(base) && exponent != 0) return base + base;
    const bool negative = std::signbit(base) && exponent % 2 != 0;
    return WithSign(PowerOfMagnitude(std::abs(base), exponent), negative);
}

}  // namespace corvantis
