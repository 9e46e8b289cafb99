// The stages of a Fourier transform between rows of points that lie at equal distances, two at a
// time, so that the rows are loaded and stored half as often.
#pragma once

#include <bit>
#include <cstddef>

#include "ITCUtilities/Fourier/PointRows.h"

namespace corvantis {

struct Rows {
    float* first;
    size_t distance;
    CORVANTIS_INLINE float* operator[](size_t row) const { return first + distance * row; }
};

// Where one pass over the rows takes them from, keeps them between its stages and leaves them.
struct RowPlaces {
    Rows from;
    Rows between;
    Rows to;
};

// What a pass leaves: rows for the next one or, the last one, the caller's points, normalised.
struct AsRows {
    CORVANTIS_INLINE void operator()(const Row& row, float* values) const { StoreRow(row, values); }
};
struct AsPoints {
    CORVANTIS_INLINE void operator()(const Row& row, float* values) const {
        StorePoints({row.real * factor, row.imaginary * factor}, values);
    }
    float factor;
};

template <class Store>
CORVANTIS_INLINE void CombinePairs(const Rows& from, const Rows& to, size_t count,
                                   const FactorRow* w, Store store) {
    for (size_t r = 0; r < count; r += 2) {
        Row even;
        Row odd;
        LoadRow(even, from[r]);
        LoadRow(odd, from[r + 1]);
        Combine(even, odd, w[1]);
        store(even, to[r]);
        store(odd, to[r + 1]);
    }
}

// The stage that combines `half` rows with the next, and the one behind it.
template <class Store>
CORVANTIS_INLINE void CombineQuads(const Rows& from, const Rows& to, size_t count, size_t half,
                                   const FactorRow* w, Store store) {
    for (size_t start = 0; start < count; start += 4 * half) {
        for (size_t j = 0; j < half; ++j) {
            const size_t places[4] = {start + j, start + j + half, start + j + 2 * half,
                                      start + j + 3 * half};
            Row rows[4];
            for (size_t i = 0; i < 4; ++i) LoadRow(rows[i], from[places[i]]);
            Combine(rows[0], rows[1], w[half + j]);
            Combine(rows[2], rows[3], w[half + j]);
            Combine(rows[0], rows[2], w[2 * half + j]);
            Combine(rows[1], rows[3], w[3 * half + j]);
            for (size_t i = 0; i < 4; ++i) store(rows[i], to[places[i]]);
        }
    }
}

// All stages of `count` rows. The factors of the stage that combines h rows with the next begin at
// row h of `w`.
template <class Store>
CORVANTIS_INLINE void CombineRows(const RowPlaces& places, size_t count, const FactorRow* w,
                                  Store store) {
    const auto& [start, between, to] = places;
    if (count == 2) return CombinePairs(start, to, count, w, store);
    Rows from = start;
    size_t half = 1;
    if (std::countr_zero(count) % 2 != 0) {
        CombinePairs(from, between, count, w, AsRows());
        from = between;
        half = 2;
    }
    for (; 4 * half < count; half *= 4) {
        CombineQuads(from, between, count, half, w, AsRows());
        from = between;
    }
    CombineQuads(from, to, count, half, w, store);
}

}  // namespace corvantis
