// The Fourier transform for 64 points and more, with the plain form's every rounding. What changes
// is the order of the butterflies, of which each reads only what the stage before has left, and how
// the points lie from the first pass to the last: in rows of eight, real parts apart.
//   1. The bit reversal moves tiles of 8 by 8 points, and the first three stages run on them, where
//      8 butterflies with the same twiddle factor lie side by side.
//   2. The next stages run on blocks that fit the first cache, with twiddle factors that are kept.
//   3. The others run on columns of up to 64 rows, up to six stages in one pass through memory:
//      first in parts that fit the second cache, then through everything. Their factors are made as
//      they are needed, by the recurrence of each stage from many of its places at once.
#include "ITCUtilities/BlockedTransform.h"

#include <algorithm>

#include "ITCUtilities/FunctionClones.h"
#include "ITCUtilities/KeptTwiddles.h"
#include "ITCUtilities/RowStages.h"
#include "ITCUtilities/RowTwiddles.h"

namespace corvantis {
namespace {

constexpr size_t kReversed[kLanes] = {0, 4, 2, 6, 1, 5, 3, 7};

// Eight transforms of eight points each, side by side: row p has point p of each.
struct Tile {
    Row rows[kLanes];
};

CORVANTIS_INLINE void Gather(Tile& tile, const float* values, size_t distance) {
    for (size_t p = 0; p < kLanes; ++p) {
        LoadPoints(tile.rows[p], values + 2 * distance * kReversed[p]);
    }
}

CORVANTIS_INLINE void Scatter(const Tile& tile, float* values, size_t distance) {
    Singles reals[kLanes];
    Singles imaginaries[kLanes];
    for (size_t p = 0; p < kLanes; ++p) {
        reals[p] = tile.rows[p].real;
        imaginaries[p] = tile.rows[p].imaginary;
    }
    Transpose(reals);
    Transpose(imaginaries);
    for (size_t c = 0; c < kLanes; ++c) {
        StoreRow({reals[c], imaginaries[c]}, values + 2 * distance * kReversed[c]);
    }
}

// Each the same for all lanes: those of the first three stages, 1, 2 and 4, behind one that is
// nobody's.
using FirstFactors = FactorRow[kLanes];

CORVANTIS_INLINE void CombineTile(Row (&rows)[kLanes], const FirstFactors& w) {
    for (size_t p = 0; p < kLanes; p += 2) CombineFirst(rows[p], rows[p + 1]);
    for (size_t p = 0; p < kLanes; p += 4) {
        CombineFirst(rows[p], rows[p + 2]);
        Combine(rows[p + 1], rows[p + 3], w[3]);
    }
    CombineFirst(rows[0], rows[4]);
    for (size_t p = 1; p < 4; ++p) Combine(rows[p], rows[p + 4], w[4 + p]);
}

// A point's number is its row, its tile and its column; reversing the bits reverses the tile's
// number and makes a row of each column. A tile changes places with the one of reversed number.
CORVANTIS_CLONES void ReverseAndCombineTiles(size_t points, float* values,
                                             const BlockTwiddles& kept) {
    FirstFactors factors;
    for (size_t k = 0; k < kLanes; ++k) {
        factors[k] = {kept.rows[0].real[k] + Doubles{}, kept.rows[0].imaginary[k] + Doubles{}};
    }
    const size_t tiles = points / (kLanes * kLanes);
    const size_t distance = points / kLanes;
    size_t reversed = 0;
    for (size_t number = 0; number < tiles; ++number) {
        if (number <= reversed) {
            Tile tile;
            Tile other;
            Gather(tile, values + kRowValues * number, distance);
            CombineTile(tile.rows, factors);
            Gather(other, values + kRowValues * reversed, distance);
            CombineTile(other.rows, factors);
            Scatter(other, values + kRowValues * number, distance);
            Scatter(tile, values + kRowValues * reversed, distance);
        }
        size_t bit = tiles / 2;
        for (; (reversed & bit) != 0; bit /= 2) reversed ^= bit;
        reversed ^= bit;
    }
}

// The number that the last pass multiplies its points by.
struct Ending {
    bool isLast;
    float factor;
};

CORVANTIS_CLONES void CombineBlock(float* values, size_t points, const BlockTwiddles& w,
                                   Ending ending) {
    const Rows rows = {values, kRowValues};
    const RowPlaces places = {rows, rows, rows};
    if (ending.isLast) {
        CombineRows(places, points / kLanes, w.rows, AsPoints{ending.factor});
    } else {
        CombineRows(places, points / kLanes, w.rows, AsRows());
    }
}

// From `count` transforms of `half` points each to one. Rows at distances of powers of two would
// drive each other from the first cache, so they are kept elsewhere between their stages.
CORVANTIS_CLONES void CombineColumns(bool forward, size_t half, size_t count, float* values,
                                     Ending ending) {
    RowTwiddles w(forward, half, count);
    FactorRow factors[kMostRows];
    float kept[kMostRows * kRowValues];
    for (size_t k = 0; k < half; k += kLanes) {
        w.Take(factors);
        const Rows rows = {values + 2 * k, 2 * half};
        const RowPlaces places = {rows, {kept, kRowValues}, rows};
        if (ending.isLast) {
            CombineRows(places, count, factors, AsPoints{ending.factor});
        } else {
            CombineRows(places, count, factors, AsRows());
        }
    }
}

}  // namespace

void TransformInBlocks(bool forward, uint32_t points, float* values) {
    // A power of two's reciprocal is exact: multiplying by it divides.
    const float factor = forward ? 1.0F : 1.0F / static_cast<float>(points);
    const BlockTwiddles& kept = KeptBlockTwiddles(forward);
    ReverseAndCombineTiles(points, values, kept);
    const size_t block = std::min<size_t>(points, kTransformBlock);
    const size_t part = std::min<size_t>(points, kTransformBlock * kMostRows);
    for (size_t start = 0; start < points; start += part) {
        float* first = values + 2 * start;
        for (size_t k = 0; k < part; k += block) {
            CombineBlock(first + 2 * k, block, kept, {block == points, factor});
        }
        if (block == part) continue;
        CombineColumns(forward, block, part / block, first, {part == points, factor});
    }
    for (size_t half = part; half < points;) {
        const size_t count = std::min(points / half, kMostRows);
        const size_t length = half * count;
        for (size_t start = 0; start < points; start += length) {
            CombineColumns(forward, half, count, values + 2 * start, {length == points, factor});
        }
        half = length;
    }
}

}  // namespace corvantis
