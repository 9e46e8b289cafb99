// Power gains in batches. A power with a whole exponent is a product, which takes the place of the
// exact power wherever it cannot make a difference:
//
// Squaring and multiplying makes the power N of at most 2 N factors and roundings, each of which
// adds a relative error of 2^-53; up to the order 10,000 that is less than 2.3e-12, beside which
// the rounding of the exact power vanishes. So product and power differ
// by less than 2^-38 = 3.6e-12 of their value. Rounding is monotonic: where both ends of that
// interval round to the same single-precision number, the power does too, and elsewhere that is
// calculated. A base is at most 1, so products too small for a double stand for powers too small
// for a float.
#include "ITCWaveforms/PowerGains.h"

#include <algorithm>
#include <cmath>

#include "ITCUtilities/FunctionClones.h"

namespace corvantis {
namespace {

constexpr size_t kBatch = 256;
constexpr int32_t kHighestOrder = 10000;

CORVANTIS_CLONES void CalculateBases(const FilterFormula& formula, int32_t first, double* bases,
                                     size_t count) {
    const double step = formula.step;
    const double corner = formula.corner;
    for (size_t i = 0; i < count; ++i) {
        const float f = static_cast<float>((first + static_cast<int32_t>(i)) * step / corner);
        bases[i] = 1.0F / (f * f + 1.0F);
    }
}

CORVANTIS_CLONES void Multiply(double* __restrict values, const double* __restrict factors,
                               size_t count) {
    for (size_t i = 0; i < count; ++i) values[i] *= factors[i];
}

CORVANTIS_CLONES void Square(double* values, size_t count) {
    for (size_t i = 0; i < count; ++i) values[i] *= values[i];
}

CORVANTIS_CLONES bool RoundEnds(const double* __restrict powers, float* __restrict low,
                                float* __restrict high, size_t count, double guard) {
    int32_t differing = 0;
    for (size_t i = 0; i < count; ++i) {
        low[i] = static_cast<float>(powers[i] - powers[i] * guard);
        high[i] = static_cast<float>(powers[i] + powers[i] * guard);
        differing |= low[i] == high[i] ? 0 : 1;
    }
    return differing != 0;
}

CORVANTIS_CLONES void MultiplyByRoots(float* __restrict bins, const float* __restrict gains,
                                      size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const float factor = std::sqrt(gains[i]);
        bins[2 * i] *= factor;
        bins[2 * i + 1] *= factor;
    }
}

void CalculateBatch(const FilterFormula& formula, int32_t first, float* gains, size_t count,
                    double guard) {
    double squares[kBatch];
    double powers[kBatch];
    float high[kBatch];
    CalculateBases(formula, first, squares, count);
    std::fill_n(powers, count, 1.0);
    for (uint32_t bits = static_cast<uint32_t>(formula.order); bits != 0; bits /= 2) {
        if (bits % 2 != 0) Multiply(powers, squares, count);
        Square(squares, count);
    }
    if (!RoundEnds(powers, gains, high, count, guard)) return;
    for (size_t i = 0; i < count; ++i) {
        if (!(gains[i] == high[i])) gains[i] = formula.Gain(first + static_cast<int32_t>(i));
    }
}

}  // namespace

void CalculateGains(const FilterFormula& formula, int32_t first, std::span<float> gains,
                    double guard) {
    const bool product = formula.order >= 0 && formula.order <= kHighestOrder;
    for (size_t done = 0; done < gains.size(); done += kBatch) {
        const size_t count = std::min(kBatch, gains.size() - done);
        const int32_t start = first + static_cast<int32_t>(done);
        if (product) {
            CalculateBatch(formula, start, gains.data() + done, count, guard);
            continue;
        }
        for (size_t i = 0; i < count; ++i) {
            gains[done + i] = formula.Gain(start + static_cast<int32_t>(i));
        }
    }
}

void ScaleBins(float* bins, std::span<const float> gains) {
    MultiplyByRoots(bins, gains.data(), gains.size());
}

void ScaleBinsDownwards(float* lastBin, std::span<const float> gains) {
    float reversed[kBatch];
    for (size_t done = 0; done < gains.size(); done += kBatch) {
        const size_t count = std::min(kBatch, gains.size() - done);
        std::reverse_copy(gains.data() + done, gains.data() + done + count, reversed);
        ScaleBins(lastBin - 2 * (done + count - 1), {reversed, count});
    }
}

}  // namespace corvantis
