// Sine and cosine together, in double precision.
#include "ITCUtilities/Maths/Turn.h"

#include <cmath>

#include "ITCUtilities/Maths/Sine.h"

namespace corvantis {
namespace {

constexpr double kInverseFactorial[] = {1.0,
                                        1.0,
                                        1.0 / 2,
                                        1.0 / 6,
                                        1.0 / 24,
                                        1.0 / 120,
                                        1.0 / 720,
                                        1.0 / 5040,
                                        1.0 / 40320,
                                        1.0 / 362880,
                                        1.0 / 3628800,
                                        1.0 / 39916800,
                                        1.0 / 479001600,
                                        1.0 / 6227020800,
                                        1.0 / 87178291200,
                                        1.0 / 1307674368000,
                                        1.0 / 20922789888000,
                                        1.0 / 355687428096000,
                                        1.0 / 6402373705728000};

// z (1/k! - z (1/(k + 2)! - ...)), the last power being `last`.
double Series(double z, int32_t k, int32_t last) {
    double product = z * kInverseFactorial[last];
    for (int32_t j = last - 2; j >= k; j -= 2) product = z * (kInverseFactorial[j] - product);
    return product;
}

}  // namespace

Turn TurnBy(double phase) {
    if (std::abs(phase) < 0x1p-27) return {phase, 1.0};
    const DoubleParts parts = PartsOf(phase);
    const ReducedAngle<1> angle = ReduceAngle<1>(parts);
    const double r = static_cast<double>(static_cast<int64_t>(angle.rest[0] >> 11)) * 0x1p-53;
    const double z = r * r;
    const double sine = WithSign(r - r * Series(z, 3, 17), angle.negative);
    const double cosine = 1.0 - Series(z, 2, 18);
    const bool odd = angle.quarters % 2 != 0;
    const Turn turn = odd ? Turn{cosine, -sine} : Turn{sine, cosine};
    const bool behindHalf = angle.quarters >= 2;
    return {WithSign(turn.sine, behindHalf != parts.negative), WithSign(turn.cosine, behindHalf)};
}

}  // namespace corvantis
