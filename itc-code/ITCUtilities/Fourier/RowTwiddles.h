// The twiddle factors of long stages, by their recurrences from many of their places side by side.
#pragma once

#include <cstddef>
#include <cstring>

#include "ITCUtilities/Fourier/KeptTwiddles.h"
#include "ITCUtilities/Fourier/PointRows.h"
#include "ITCUtilities/Fourier/Twiddle.h"

namespace corvantis {

// Of the stages that combine transforms of `half` points, of twice as many and so on, up to `rows`
// times as many. Entry h + j goes through those of the stage from h * half points on, from place
// j * half; the first entry is nobody's.
class RowTwiddles {
  public:
    RowTwiddles(bool forward, size_t half, size_t rows)
        : rows_(rows), real_(), imaginary_(), stepReal_(), stepImaginary_() {
        for (size_t h = 1; h < rows; h *= 2) {
            const StageStarts& starts = KeptStageStarts(forward, h * half);
            for (size_t j = 0; j < h; ++j) {
                real_[h + j] = starts.real[j * (StageStarts::kCount / h)];
                imaginary_[h + j] = starts.imaginary[j * (StageStarts::kCount / h)];
                stepReal_[h + j] = starts.stepReal;
                stepImaginary_[h + j] = starts.stepImaginary;
            }
        }
    }

    // The next eight of each entry.
    CORVANTIS_INLINE void Take(FactorRow (&factors)[kMostRows]) {
        alignas(64) double reals[kLanes][kMostRows];
        alignas(64) double imaginaries[kLanes][kMostRows];
        for (size_t k = 0; k < kLanes; ++k) Advance(reals[k], imaginaries[k]);
        for (size_t entry = 0; entry < rows_; entry += 2) {
            for (size_t k = 0; k < kLanes; k += 2) {
                LayAcross(&reals[k][entry], reinterpret_cast<double*>(&factors[entry].real) + k);
                LayAcross(&imaginaries[k][entry],
                          reinterpret_cast<double*>(&factors[entry].imaginary) + k);
            }
        }
    }

  private:
    using TwoDoubles __attribute__((vector_size(16))) = double;

    CORVANTIS_INLINE void Advance(double (&reals)[kMostRows], double (&imaginaries)[kMostRows]) {
        const size_t rows = rows_;
        for (size_t i = 0; i < rows; ++i) {
            reals[i] = real_[i];
            imaginaries[i] = imaginary_[i];
            AdvanceTwiddle(real_[i], imaginary_[i], stepReal_[i], stepImaginary_[i]);
        }
    }

    // Two entries at two places become two lanes of two factor rows: so little at a time, since
    // every vector unit can do that.
    CORVANTIS_INLINE static void LayAcross(const double* from, double* to) {
        TwoDoubles a;
        TwoDoubles b;
        std::memcpy(&a, from, sizeof a);
        std::memcpy(&b, from + kMostRows, sizeof b);
        const TwoDoubles first = __builtin_shufflevector(a, b, 0, 2);
        const TwoDoubles second = __builtin_shufflevector(a, b, 1, 3);
        std::memcpy(to, &first, sizeof first);
        std::memcpy(to + sizeof(FactorRow) / sizeof(double), &second, sizeof second);
    }

    size_t rows_;
    alignas(64) double real_[kMostRows];
    alignas(64) double imaginary_[kMostRows];
    alignas(64) double stepReal_[kMostRows];
    alignas(64) double stepImaginary_[kMostRows];
};

}  // namespace corvantis
