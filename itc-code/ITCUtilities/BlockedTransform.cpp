// The Fourier transform for 64 points and more, with the plain form's every rounding. What changes
// is the order of the butterflies, of which each reads only what the stage before has left:
//   1. the bit reversal moves tiles of 8 by 8 points, and the first three stages run on them, where
//      8 butterflies with the same twiddle factor lie side by side;
//   2. further stages run two at a time on blocks that fit the first cache, with their twiddle
//      factors in a table on the stack;
//   3. the last stages run two at a time over everything, while the recurrence of the twiddle
//      factors, whose latency would else be waited for, runs a small chunk ahead.
#include "ITCUtilities/BlockedTransform.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "ITCUtilities/FunctionClones.h"
#include "ITCUtilities/Twiddle.h"

namespace corvantis {
namespace {

constexpr size_t kTile = 8;
constexpr size_t kBlock = 2048;
constexpr size_t kChunk = 64;
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

inline void CombineRows(float* __restrict even, float* __restrict odd, const Twiddle& w) {
    for (size_t c = 0; c < kTile; ++c) {
        const Point a = Load(even, c);
        const Point b = Turned(w.real, w.imaginary, Load(odd, c));
        Store(odd, c, Difference(a, b));
        Store(even, c, Sum(a, b));
    }
}

using FirstTwiddles = std::array<Twiddle, kTile - 1>;

// Those of the first three stages: 1, 2 and 4 of them.
FirstTwiddles CalculateFirstTwiddles(int32_t isign) {
    FirstTwiddles factors = {Twiddle(isign, 1), Twiddle(isign, 2), Twiddle(isign, 2),
                             Twiddle(isign, 4), Twiddle(isign, 4), Twiddle(isign, 4),
                             Twiddle(isign, 4)};
    factors[2].Advance();
    for (size_t k = 1; k < 4; ++k) {
        for (size_t i = 0; i < k; ++i) factors[3 + k].Advance();
    }
    return factors;
}

inline void CombineTile(Tile& tile, const FirstTwiddles& w) {
    for (size_t p = 0; p < kTile; p += 2) CombineRows(tile.at[p], tile.at[p + 1], w[0]);
    for (size_t p = 0; p < kTile; p += 4) {
        CombineRows(tile.at[p], tile.at[p + 2], w[1]);
        CombineRows(tile.at[p + 1], tile.at[p + 3], w[2]);
    }
    for (size_t p = 0; p < 4; ++p) CombineRows(tile.at[p], tile.at[p + 4], w[3 + p]);
}

// A point's number is its row, its tile and its column; reversing the bits reverses the tile's
// number and makes a row of each column. A tile changes places with the one of reversed number.
CORVANTIS_CLONES void ReverseAndCombineTiles(int32_t isign, size_t points, float* values) {
    const FirstTwiddles twiddles = CalculateFirstTwiddles(isign);
    const size_t tiles = points / (kTile * kTile);
    const size_t stride = points / kTile;
    size_t reversed = 0;
    for (size_t number = 0; number < tiles; ++number) {
        if (number <= reversed) {
            Tile tile;
            Tile other;
            Gather(tile, values + 2 * kTile * number, stride);
            Gather(other, values + 2 * kTile * reversed, stride);
            CombineTile(tile, twiddles);
            CombineTile(other, twiddles);
            Scatter(other, values + 2 * kTile * number, stride);
            Scatter(tile, values + 2 * kTile * reversed, stride);
        }
        size_t bit = tiles / 2;
        for (; (reversed & bit) != 0; bit /= 2) reversed ^= bit;
        reversed ^= bit;
    }
}

struct Factors {
    const double* real;
    const double* imaginary;
};

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

// The twiddle factors of all stages within a block, that of `half` points from half - kTile on.
struct BlockTwiddles {
    double real[kBlock - kTile];
    double imaginary[kBlock - kTile];
    Factors Of(size_t half) const { return {real + half - kTile, imaginary + half - kTile}; }
};

inline void TakeFactor(Twiddle& w, BlockTwiddles& factors, size_t place) {
    factors.real[place] = w.real;
    factors.imaginary[place] = w.imaginary;
    w.Advance();
}

// The recurrences of a stage and of the one before it in one loop: the processor follows both at
// the same time, and waits no longer than for the longer one.
void FillTwoStages(int32_t isign, size_t half, BlockTwiddles& factors) {
    Twiddle longer(isign, half);
    Twiddle shorter(isign, half / 2);
    for (size_t k = 0; k < half / 2; ++k) {
        TakeFactor(longer, factors, half - kTile + k);
        TakeFactor(shorter, factors, half / 2 - kTile + k);
    }
    for (size_t k = half / 2; k < half; ++k) TakeFactor(longer, factors, half - kTile + k);
}

void FillBlockTwiddles(int32_t isign, size_t block, BlockTwiddles& factors) {
    size_t half = block / 2;
    for (; half > kTile; half /= 4) FillTwoStages(isign, half, factors);
    if (half < kTile) return;
    Twiddle w(isign, kTile);
    for (size_t k = 0; k < kTile; ++k) TakeFactor(w, factors, k);
}

CORVANTIS_CLONES void CombineBlock(float* values, size_t points, const BlockTwiddles& factors) {
    size_t half = kTile;
    for (; 4 * half <= points; half *= 4) {
        const Factors low = factors.Of(2 * half);
        const Factors high = {low.real + half, low.imaginary + half};
        for (float* p = values; p != values + 2 * points; p += 8 * half) {
            CombineQuads(p, p + 2 * half, p + 4 * half, p + 6 * half, factors.Of(half), low, high,
                         half);
        }
    }
    if (2 * half <= points) CombinePairs(values, values + 2 * half, factors.Of(half), half);
}

void CombineBlocks(int32_t isign, size_t points, float* values) {
    BlockTwiddles factors;
    const size_t block = std::min(points, kBlock);
    FillBlockTwiddles(isign, block, factors);
    for (size_t k = 0; k < points; k += block) CombineBlock(values + 2 * k, block, factors);
}

// The next twiddle factors of one recurrence.
struct Chunk {
    double real[kChunk];
    double imaginary[kChunk];
    operator Factors() const { return {real, imaginary}; }
};

CORVANTIS_CLONES void CombineStage(int32_t isign, size_t half, size_t points, float* values) {
    Twiddle w(isign, half);
    for (size_t k = 0; k < half; k += kChunk) {
        Chunk chunk;
        for (size_t i = 0; i < kChunk; ++i, w.Advance()) {
            chunk.real[i] = w.real;
            chunk.imaginary[i] = w.imaginary;
        }
        for (float* p = values + 2 * k; p < values + 2 * points; p += 4 * half) {
            CombinePairs(p, p + 2 * half, chunk, kChunk);
        }
    }
}

CORVANTIS_CLONES void CombineTwoStages(int32_t isign, size_t half, size_t points, float* values) {
    Twiddle w[3] = {Twiddle(isign, half), Twiddle(isign, 2 * half), Twiddle(isign, 2 * half)};
    for (size_t k = 0; k < half; ++k) w[2].Advance();
    for (size_t k = 0; k < half; k += kChunk) {
        Chunk chunks[3];
        for (size_t i = 0; i < kChunk; ++i) {
            for (size_t c = 0; c < 3; ++c) {
                chunks[c].real[i] = w[c].real;
                chunks[c].imaginary[i] = w[c].imaginary;
                w[c].Advance();
            }
        }
        for (float* p = values + 2 * k; p < values + 2 * points; p += 8 * half) {
            CombineQuads(p, p + 2 * half, p + 4 * half, p + 6 * half, chunks[0], chunks[1],
                         chunks[2], kChunk);
        }
    }
}

CORVANTIS_CLONES void Scale(float* values, uint64_t count, float factor) {
    for (uint64_t i = 0; i < count; ++i) values[i] *= factor;
}

}  // namespace

void TransformInBlocks(int32_t isign, uint32_t points, float* values) {
    ReverseAndCombineTiles(isign, points, values);
    CombineBlocks(isign, points, values);
    size_t half = kBlock;
    if (half < points && std::countr_zero(points / half) % 2 == 1) {
        CombineStage(isign, half, points, values);
        half *= 2;
    }
    for (; half < points; half *= 4) CombineTwoStages(isign, half, points, values);
}

void ScaleValues(float* values, uint64_t count, float factor) { Scale(values, count, factor); }

}  // namespace corvantis
