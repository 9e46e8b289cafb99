// The Fourier transform for 64 points and more, with the plain form's every rounding. What changes
// is the order of the butterflies, of which each reads only what the stage before has left:
//   1. the bit reversal moves tiles of 8 by 8 points, and the first three stages run on them, where
//      8 butterflies with the same twiddle factor lie side by side;
//   2. further stages run two at a time on blocks that fit the first cache, with twiddle factors
//      that are kept;
//   3. the last stages run two at a time, first on parts that fit the second cache, while the
//      recurrence of the twiddle factors, whose latency would else be waited for, runs a small
//      chunk ahead, from eight of its places at once.
#include "ITCUtilities/BlockedTransform.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "ITCUtilities/FunctionClones.h"
#include "ITCUtilities/KeptTwiddles.h"
#include "ITCUtilities/LaneTwiddles.h"

namespace corvantis {
namespace {

constexpr size_t kTile = 8;
constexpr size_t kBlock = kTransformBlock;
constexpr size_t kPart = 65536;
constexpr std::array<size_t, kTile> kReversed = {0, 4, 2, 6, 1, 5, 3, 7};

struct Point {
    float real;
    float imaginary;
};

inline Point Load(const float* values, size_t k) { return {values[2 * k], values[2 * k + 1]}; }
inline void Store(float* values, size_t k, Point point) {
    values[2 * k] = point.real;
    values[2 * k + 1] = point.imaginary;
}
inline Point Turned(double real, double imaginary, Point point) {
    return {static_cast<float>(real * point.real - imaginary * point.imaginary),
            static_cast<float>(real * point.imaginary + imaginary * point.real)};
}
inline Point Sum(Point a, Point b) { return {a.real + b.real, a.imaginary + b.imaginary}; }
inline Point Difference(Point a, Point b) { return {a.real - b.real, a.imaginary - b.imaginary}; }

// Eight transforms of eight points each, side by side: point p of transform c at [p][2c].
struct Tile {
    float at[kTile][2 * kTile];
};

inline void Gather(Tile& tile, const float* values, size_t stride) {
    for (size_t p = 0; p < kTile; ++p) {
        std::memcpy(tile.at[p], values + 2 * stride * kReversed[p], sizeof tile.at[p]);
    }
}

inline void Scatter(const Tile& tile, float* values, size_t stride) {
    for (size_t c = 0; c < kTile; ++c) {
        float* row = values + 2 * stride * kReversed[c];
        for (size_t p = 0; p < kTile; ++p) std::memcpy(row + 2 * p, tile.at[p] + 2 * c, 8);
    }
}

struct Factor {
    double real;
    double imaginary;
};

inline void CombineRows(float* __restrict even, float* __restrict odd, const Factor& w) {
    for (size_t c = 0; c < kTile; ++c) {
        const Point a = Load(even, c);
        const Point b = Turned(w.real, w.imaginary, Load(odd, c));
        Store(odd, c, Difference(a, b));
        Store(even, c, Sum(a, b));
    }
}

// The same with the first factor of each stage, 1: in single precision, and with the zeros that
// make a NaN of infinity and a positive zero of a negative one.
inline void CombineRowsUnturned(float* __restrict even, float* __restrict odd) {
    for (size_t c = 0; c < kTile; ++c) {
        const Point a = Load(even, c);
        const Point b = Load(odd, c);
        const Point t = {b.real - 0.0F * b.imaginary, b.imaginary + 0.0F * b.real};
        Store(odd, c, Difference(a, t));
        Store(even, c, Sum(a, t));
    }
}

// Those of the first three stages: 1, 2 and 4 of them, behind one that is nobody's.
using FirstFactors = std::array<Factor, kTile>;

inline void CombineTile(Tile& tile, const FirstFactors& w) {
    for (size_t p = 0; p < kTile; p += 2) CombineRowsUnturned(tile.at[p], tile.at[p + 1]);
    for (size_t p = 0; p < kTile; p += 4) {
        CombineRowsUnturned(tile.at[p], tile.at[p + 2]);
        CombineRows(tile.at[p + 1], tile.at[p + 3], w[3]);
    }
    CombineRowsUnturned(tile.at[0], tile.at[4]);
    for (size_t p = 1; p < 4; ++p) CombineRows(tile.at[p], tile.at[p + 4], w[4 + p]);
}

// A point's number is its row, its tile and its column; reversing the bits reverses the tile's
// number and makes a row of each column. A tile changes places with the one of reversed number.
CORVANTIS_CLONES void ReverseAndCombineTiles(size_t points, float* values,
                                             const BlockTwiddles& kept) {
    FirstFactors factors;
    for (size_t k = 0; k < kTile; ++k) factors[k] = {kept.real[k], kept.imaginary[k]};
    const size_t tiles = points / (kTile * kTile);
    const size_t stride = points / kTile;
    size_t reversed = 0;
    for (size_t number = 0; number < tiles; ++number) {
        if (number <= reversed) {
            Tile tile;
            Tile other;
            Gather(tile, values + 2 * kTile * number, stride);
            Gather(other, values + 2 * kTile * reversed, stride);
            CombineTile(tile, factors);
            CombineTile(other, factors);
            Scatter(other, values + 2 * kTile * number, stride);
            Scatter(tile, values + 2 * kTile * reversed, stride);
        }
        size_t bit = tiles / 2;
        for (; (reversed & bit) != 0; bit /= 2) reversed ^= bit;
        reversed ^= bit;
    }
}

// `count` butterflies of one stage.
inline void CombinePairs(float* __restrict even, float* __restrict odd, Factors w, size_t count) {
    for (size_t k = 0; k < count; ++k) {
        const Point a = Load(even, k);
        const Point b = Turned(w.real[k], w.imaginary[k], Load(odd, k));
        Store(odd, k, Difference(a, b));
        Store(even, k, Sum(a, b));
    }
}

// The same of two stages at once: the first combines p0 with p1 and p2 with p3, the second the two
// results, whose halves have twiddle factors of their own.
inline void CombineQuads(float* __restrict p0, float* __restrict p1, float* __restrict p2,
                         float* __restrict p3, Factors first, Factors low, Factors high,
                         size_t count) {
    for (size_t k = 0; k < count; ++k) {
        const Point t1 = Turned(first.real[k], first.imaginary[k], Load(p1, k));
        const Point t3 = Turned(first.real[k], first.imaginary[k], Load(p3, k));
        const Point a0 = Sum(Load(p0, k), t1);
        const Point a1 = Difference(Load(p0, k), t1);
        const Point a2 = Turned(low.real[k], low.imaginary[k], Sum(Load(p2, k), t3));
        const Point a3 = Turned(high.real[k], high.imaginary[k], Difference(Load(p2, k), t3));
        Store(p0, k, Sum(a0, a2));
        Store(p1, k, Sum(a1, a3));
        Store(p2, k, Difference(a0, a2));
        Store(p3, k, Difference(a1, a3));
    }
}

CORVANTIS_CLONES void CombineBlock(float* values, size_t points, const BlockTwiddles& factors) {
    size_t half = kTile;
    for (; 4 * half <= points; half *= 4) {
        const Factors low = factors.Of(2 * half);
        const Factors high = factors.Of(3 * half);
        for (float* p = values; p != values + 2 * points; p += 8 * half) {
            CombineQuads(p, p + 2 * half, p + 4 * half, p + 6 * half, factors.Of(half), low, high,
                         half);
        }
    }
    if (2 * half <= points) CombinePairs(values, values + 2 * half, factors.Of(half), half);
}

void CombineBlocks(size_t points, float* values, const BlockTwiddles& factors) {
    const size_t block = std::min(points, kBlock);
    for (size_t k = 0; k < points; k += block) CombineBlock(values + 2 * k, block, factors);
}

CORVANTIS_CLONES void CombineStage(const StageStarts& starts, size_t half, size_t points,
                                   float* values) {
    constexpr size_t kDistance = StageStarts::kCount / kLanes;
    LaneTwiddles w(starts, 0, kDistance);
    const size_t length = half / kLanes;
    for (size_t k = 0; k < length; k += kChunk) {
        Chunk chunk;
        for (size_t i = 0; i < kChunk; i += kLanes) w.Take(chunk, i);
        for (size_t lane = 0; lane < kLanes; ++lane) {
            for (float* p = values + 2 * (lane * length + k); p < values + 2 * points;
                 p += 4 * half) {
                CombinePairs(p, p + 2 * half, chunk.Of(lane), kChunk);
            }
        }
    }
}

CORVANTIS_CLONES void CombineTwoStages(const StageStarts& first, const StageStarts& second,
                                       size_t half, size_t points, float* values) {
    constexpr size_t kDistance = StageStarts::kCount / kLanes;
    LaneTwiddles w(first, 0, kDistance);
    LaneTwiddles low(second, 0, kDistance / 2);
    LaneTwiddles high(second, StageStarts::kCount / 2, kDistance / 2);
    const size_t length = half / kLanes;
    for (size_t k = 0; k < length; k += kChunk) {
        Chunk chunks[3];
        for (size_t i = 0; i < kChunk; i += kLanes) {
            w.Take(chunks[0], i);
            low.Take(chunks[1], i);
            high.Take(chunks[2], i);
        }
        for (size_t lane = 0; lane < kLanes; ++lane) {
            for (float* p = values + 2 * (lane * length + k); p < values + 2 * points;
                 p += 8 * half) {
                CombineQuads(p, p + 2 * half, p + 4 * half, p + 6 * half, chunks[0].Of(lane),
                             chunks[1].Of(lane), chunks[2].Of(lane), kChunk);
            }
        }
    }
}

// From transforms of `half` points each to transforms of `points`.
void CombineStages(bool forward, size_t half, size_t points, float* values) {
    if (half < points && std::countr_zero(points / half) % 2 == 1) {
        CombineStage(KeptStageStarts(forward, half), half, points, values);
        half *= 2;
    }
    for (; half < points; half *= 4) {
        CombineTwoStages(KeptStageStarts(forward, half), KeptStageStarts(forward, 2 * half), half,
                         points, values);
    }
}

CORVANTIS_CLONES void Scale(float* values, uint64_t count, float factor) {
    for (uint64_t i = 0; i < count; ++i) values[i] *= factor;
}

}  // namespace

void TransformInBlocks(bool forward, uint32_t points, float* values) {
    const BlockTwiddles& factors = KeptBlockTwiddles(forward);
    ReverseAndCombineTiles(points, values, factors);
    const size_t part = std::min<size_t>(points, kPart);
    for (size_t k = 0; k < points; k += part) {
        CombineBlocks(part, values + 2 * k, factors);
        CombineStages(forward, kBlock, part, values + 2 * k);
    }
    CombineStages(forward, part, points, values);
}

void ScaleValues(float* values, uint64_t count, float factor) { Scale(values, count, factor); }

}  // namespace corvantis
