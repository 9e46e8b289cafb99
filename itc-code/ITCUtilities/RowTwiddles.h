// The twiddle factors of long stages, by their recurrences from many of their places side by side.
#pragma once

#include <cstddef>

#include "ITCUtilities/KeptTwiddles.h"
#include "ITCUtilities/PointRows.h"

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
        for (size_t entry = 0; entry < rows_; entry += kSquare) {
            for (size_t k = 0; k < kLanes; k += kSquare) {
                LayAcross(&reals[k][entry], &factors[entry].real, k);
                LayAcross(&imaginaries[k][entry], &factors[entry].imaginary, k);
            }
        }
    }

  private:
    static constexpr size_t kSquare = 4;
    using Quads __attribute__((vector_size(8 * kSquare), aligned(8), may_alias)) = double;

    CORVANTIS_INLINE void Advance(double (&reals)[kMostRows], double (&imaginaries)[kMostRows]) {
        const size_t rows = rows_;
        for (size_t i = 0; i < rows; ++i) {
            const double real = real_[i];
            const double imaginary = imaginary_[i];
            reals[i] = real;
            imaginaries[i] = imaginary;
            real_[i] = real + (real * stepReal_[i] - imaginary * stepImaginary_[i]);
            imaginary_[i] = imaginary + (imaginary * stepReal_[i] + real * stepImaginary_[i]);
        }
    }

    // Four entries at four places become lanes k to k + 3 of four factor rows: in squares, since
    // every vector unit can transpose them.
    CORVANTIS_INLINE static void LayAcross(const double* from, Doubles* to, size_t k) {
        const auto row = [from](size_t i) -> const Quads& {
            return *reinterpret_cast<const Quads*>(from + i * kMostRows);
        };
        const Quads a = __builtin_shufflevector(row(0), row(1), 0, 4, 2, 6);
        const Quads b = __builtin_shufflevector(row(0), row(1), 1, 5, 3, 7);
        const Quads c = __builtin_shufflevector(row(2), row(3), 0, 4, 2, 6);
        const Quads d = __builtin_shufflevector(row(2), row(3), 1, 5, 3, 7);
        const auto lanes = [to, k](size_t i) -> Quads& {
            constexpr size_t kDistance = sizeof(FactorRow) / sizeof(double);
            return *reinterpret_cast<Quads*>(reinterpret_cast<double*>(to) + i * kDistance + k);
        };
        lanes(0) = __builtin_shufflevector(a, c, 0, 1, 4, 5);
        lanes(1) = __builtin_shufflevector(b, d, 0, 1, 4, 5);
        lanes(2) = __builtin_shufflevector(a, c, 2, 3, 6, 7);
        lanes(3) = __builtin_shufflevector(b, d, 2, 3, 6, 7);
    }

    size_t rows_;
    alignas(64) double real_[kMostRows];
    alignas(64) double imaginary_[kMostRows];
    alignas(64) double stepReal_[kMostRows];
    alignas(64) double stepImaginary_[kMostRows];
};

}  // namespace corvantis
