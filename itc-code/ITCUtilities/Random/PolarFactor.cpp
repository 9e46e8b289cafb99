// Polar factors in batches. The exact logarithm takes one number at a time, and its time, so an
// approximation takes its place wherever it cannot make a difference:
//
// A number is 2^e * m with m between the square roots of 1/2 and 2, and with s = (m - 1) / (m + 1)
// the logarithm of m is 2 s (1 + z / 3 + z^2 / 5 + ...), z = s^2 <= 0.02945. The six terms taken
// leave out less than z^6 / 13 / (1 - z) < 5.2e-11 of it. Added to e ln 2, which is twice as large
// or 0, the error does not grow; the square root halves it to 2.6e-11, beside which the roundings
// on the way (some 2e-15) and the formula's own vanish. So formula and approximation differ by less
// than 2^-35 = 2.9e-11 of their value.
//
// Rounding is monotonic: where both ends of that interval round to the same single-precision
// number, the formula's result does too. Elsewhere, about once in 1,500, the formula is calculated.
#include "ITCUtilities/Random/PolarFactor.h"

#include <algorithm>
#include <bit>
#include <cstdint>

#include "ITCUtilities/FunctionClones.h"

namespace corvantis {
namespace {

constexpr size_t kBatch = 256;
constexpr double kLogarithmOf2 = 0x1.62e42fefa39efp-1;
constexpr uint32_t kRootOfHalf = 0x3F3504F3;

// -2 log(square) / square. Both divisions, by m + 1 and by the square, are one, for they take
// longer than all the rest.
inline double ApproximateSquaredFactor(float square) {
    const uint32_t bits = std::bit_cast<uint32_t>(square);
    const int32_t exponent = static_cast<int32_t>(bits - kRootOfHalf) >> 23;
    const double m = std::bit_cast<float>(bits - (static_cast<uint32_t>(exponent) << 23));
    const double reciprocal = 1.0 / ((m + 1.0) * square);
    const double s = (m - 1.0) * square * reciprocal;
    const double z = s * s;
    const double high = 2.0 / 7 + z * (2.0 / 9 + z * (2.0 / 11));
    const double logarithm =
        exponent * kLogarithmOf2 + s * (2.0 + z * (2.0 / 3 + z * (2.0 / 5 + z * high)));
    return -2.0 * (m + 1.0) * reciprocal * logarithm;
}

// Both ends of the interval that the factor lies in; whether they differ anywhere.
CORVANTIS_CLONES bool CalculateEnds(const float* __restrict squares, float* __restrict low,
                                    float* __restrict high, size_t count, double guard) {
    int32_t differing = 0;
    for (size_t i = 0; i < count; ++i) {
        const double factor = std::sqrt(ApproximateSquaredFactor(squares[i]));
        low[i] = static_cast<float>(factor - factor * guard);
        high[i] = static_cast<float>(factor + factor * guard);
        differing |= low[i] != high[i] ? 1 : 0;
    }
    return differing != 0;
}

}  // namespace

void CalculatePolarFactors(std::span<const float> squares, std::span<float> factors, double guard) {
    float high[kBatch];
    for (size_t done = 0; done < squares.size(); done += kBatch) {
        const size_t count = std::min(kBatch, squares.size() - done);
        const float* square = squares.data() + done;
        float* factor = factors.data() + done;
        if (!CalculateEnds(square, factor, high, count, guard)) continue;
        for (size_t i = 0; i < count; ++i) {
            if (factor[i] != high[i]) factor[i] = PolarFactor(square[i]);
        }
    }
}

}  // namespace corvantis
