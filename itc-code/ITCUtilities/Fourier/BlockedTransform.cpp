// The Fourier transform for 64 points and more, with the plain form's every rounding. What changes
// is the order of the butterflies, of which each reads only what the stage before has left, and how
// the points lie from the first pass to the last: in rows of eight, real parts apart.
//   1. The bit reversal moves tiles of 8 by 8 points, and the first three stages run on them, where
//      8 butterflies with the same twiddle factor lie side by side.
//   2. The next stages run on blocks that fit the first cache, with twiddle factors that are kept.
//   3. The others run on columns of up to 64 rows, up to six stages in one pass through memory:
//      first in parts that fit the second cache, then through everything. Their factors are made as
//      they are needed, by the recurrence of each stage from many of its places at once.
#include "ITCUtilities/Fourier/BlockedTransform.h"

#include <algorithm>

#include "ITCUtilities/Fourier/KeptTwiddles.h"
#include "ITCUtilities/Fourier/RowStages.h"
#include "ITCUtilities/Fourier/RowTwiddles.h"
#include "ITCUtilities/FunctionClones.h"

namespace corvantis {
namespace {

constexpr size_t kReversed[kLanes] = {0, 4, 2, 6, 1, 5, 3, 7};

// Eight transforms of eight points each, side by side: row p has point p of each.
struct Tile {
    alignas(64) float rows[kLanes][kRowValues];
};

CORVANTIS_INLINE void Gather(Tile& tile, const float* values, size_t distance) {
    for (size_t p = 0; p < kLanes; ++p) {
        SeparateParts(values + 2 * distance * kReversed[p], tile.rows[p]);
    }
}

CORVANTIS_INLINE void Scatter(const Tile& tile, float* values, size_t distance) {
    for (size_t c = 0; c < kLanes; c += kFour) {
        float* rows[kFour];
        for (size_t i = 0; i < kFour; ++i) rows[i] = values + 2 * distance * kReversed[c + i];
        for (size_t p = 0; p < kLanes; p += kFour) {
            LayAcross(tile.rows[p] + c, rows, p);
            LayAcross(tile.rows[p] + kLanes + c, rows, kLanes + p);
        }
    }
}

// Each the same for all lanes: those of the first three stages, 1, 2 and 4, behind one that is
// nobody's.
using FirstFactors = FactorRow[kLanes];

CORVANTIS_INLINE void CombineTile(Tile& tile, const FirstFactors& w) {
    Row rows[kLanes];
    for (size_t p = 0; p < kLanes; ++p) LoadRow(rows[p], tile.rows[p]);
    for (size_t p = 0; p < kLanes; p += 2) CombineFirst(rows[p], rows[p + 1]);
    for (size_t p = 0; p < kLanes; p += 4) {
        CombineFirst(rows[p], rows[p + 2]);
        Combine(rows[p + 1], rows[p + 3], w[3]);
    }
    CombineFirst(rows[0], rows[4]);
    for (size_t p = 1; p < 4; ++p) Combine(rows[p], rows[p + 4], w[4 + p]);
    for (size_t p = 0; p < kLanes; ++p) StoreRow(rows[p], tile.rows[p]);
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
            const size_t places[2] = {kRowValues * number, kRowValues * reversed};
            const size_t count = number == reversed ? 1 : 2;
            Tile moved[2];
            for (size_t i = 0; i < count; ++i) Gather(moved[i], values + places[i], distance);
            for (size_t i = 0; i < count; ++i) CombineTile(moved[i], factors);
            for (size_t i = 0; i < count; ++i) {
                Scatter(moved[i], values + places[count - 1 - i], distance);
            }
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

CORVANTIS_CLONES void CombineBlock(const Rows& rows, size_t count, const BlockTwiddles& w,
                                   Ending ending) {
    const RowPlaces places = {rows, rows, rows};
    if (ending.isLast) {
        CombineRows(places, count, w.rows, AsPoints{ending.factor});
    } else {
        CombineRows(places, count, w.rows, AsRows());
    }
}

// From `count` transforms, each of the points from one row to the next, to one. Rows at distances
// of powers of two would drive each other from the first cache, so they are kept elsewhere between
// their stages.
CORVANTIS_CLONES void CombineColumns(bool forward, const Rows& rows, size_t count, Ending ending) {
    const size_t half = rows.distance / 2;
    RowTwiddles w(forward, half, count);
    FactorRow factors[kMostRows];
    float kept[kMostRows * kRowValues];
    for (size_t k = 0; k < half; k += kLanes) {
        w.Take(factors);
        const Rows column = {rows.first + 2 * k, rows.distance};
        const RowPlaces places = {column, {kept, kRowValues}, column};
        if (ending.isLast) {
            CombineRows(places, count, factors, AsPoints{ending.factor});
        } else {
            CombineRows(places, count, factors, AsRows());
        }
    }
}

// All stages behind the first three; the parts' own ones while a part is in the cache.
void CombineStages(bool forward, float* values, size_t length, Ending ending) {
    if (length <= kTransformBlock) {
        CombineBlock({values, kRowValues}, length / kLanes, KeptBlockTwiddles(forward), ending);
        return;
    }
    size_t half = kTransformBlock;
    while (half * kMostRows < length) half *= kMostRows;
    for (size_t k = 0; k < length; k += half) {
        CombineStages(forward, values + 2 * k, half, {false, 1.0F});
    }
    CombineColumns(forward, {values, 2 * half}, length / half, ending);
}

}  // namespace

void TransformInBlocks(bool forward, uint32_t points, float* values) {
    ReverseAndCombineTiles(points, values, KeptBlockTwiddles(forward));
    // A power of two's reciprocal is exact: multiplying by it divides.
    const float factor = forward ? 1.0F : 1.0F / static_cast<float>(points);
    CombineStages(forward, values, points, {true, factor});
}

}  // namespace corvantis
