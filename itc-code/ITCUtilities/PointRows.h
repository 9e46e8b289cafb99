// Rows of eight points of a Fourier transform, eight real parts and then eight imaginary ones,
// which vectors take as they lie; and the butterflies between two rows.
#pragma once

#include <cstddef>
#include <initializer_list>

#include "ITCUtilities/FunctionClones.h"

namespace corvantis {

inline constexpr size_t kLanes = 8;
inline constexpr size_t kRowValues = 2 * kLanes;

using Singles __attribute__((vector_size(4 * kLanes))) = float;
using Doubles __attribute__((vector_size(8 * kLanes))) = double;
// Where callers' arrays begin, no vector needs to.
using StoredSingles __attribute__((vector_size(4 * kLanes), aligned(4), may_alias)) = float;

struct Row {
    Singles real;
    Singles imaginary;
};

// The twiddle factors of a row's points.
struct FactorRow {
    Doubles real;
    Doubles imaginary;
};

CORVANTIS_INLINE const StoredSingles& At(const float* values) {
    return *reinterpret_cast<const StoredSingles*>(values);
}
CORVANTIS_INLINE StoredSingles& At(float* values) {
    return *reinterpret_cast<StoredSingles*>(values);
}

CORVANTIS_INLINE void LoadRow(Row& row, const float* values) {
    row = {At(values), At(values + kLanes)};
}
CORVANTIS_INLINE void StoreRow(const Row& row, float* values) {
    At(values) = row.real;
    At(values + kLanes) = row.imaginary;
}

// As callers have the points: each real part with its imaginary one behind it.
CORVANTIS_INLINE void LoadPoints(Row& row, const float* values) {
    const Singles a = At(values);
    const Singles b = At(values + kLanes);
    row = {__builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14),
           __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15)};
}
CORVANTIS_INLINE void StorePoints(const Row& row, float* values) {
    const Singles& a = row.real;
    const Singles& b = row.imaginary;
    At(values) = __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
    At(values + kLanes) = __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
}

// Element by element, of which compilers make one instruction, as of no other way.
CORVANTIS_INLINE void Widen(const Singles& from, Doubles& to) {
    to = Doubles{from[0], from[1], from[2], from[3], from[4], from[5], from[6], from[7]};
}

CORVANTIS_INLINE void CombineUnturned(Row& even, Row& odd) {
    const Row a = even;
    even = {a.real + odd.real, a.imaginary + odd.imaginary};
    odd = {a.real - odd.real, a.imaginary - odd.imaginary};
}

CORVANTIS_INLINE void Combine(Row& even, Row& odd, const FactorRow& w) {
    Doubles real;
    Doubles imaginary;
    Widen(odd.real, real);
    Widen(odd.imaginary, imaginary);
    odd = {__builtin_convertvector(w.real * real - w.imaginary * imaginary, Singles),
           __builtin_convertvector(w.real * imaginary + w.imaginary * real, Singles)};
    CombineUnturned(even, odd);
}

// With the first factor of each stage, 1: in single precision, and with the zeros that make a NaN
// of infinity and a positive zero of a negative one.
CORVANTIS_INLINE void CombineFirst(Row& even, Row& odd) {
    odd = {odd.real - 0.0F * odd.imaginary, odd.imaginary + 0.0F * odd.real};
    CombineUnturned(even, odd);
}

// Makes lane i of row k of lane k of row i.
CORVANTIS_INLINE void Transpose(Singles (&rows)[kLanes]) {
    for (size_t i = 0; i < 4; ++i) {
        const Singles a = rows[i];
        const Singles b = rows[i + 4];
        rows[i] = __builtin_shufflevector(a, b, 0, 1, 2, 3, 8, 9, 10, 11);
        rows[i + 4] = __builtin_shufflevector(a, b, 4, 5, 6, 7, 12, 13, 14, 15);
    }
    for (const size_t i : {size_t{0}, size_t{1}, size_t{4}, size_t{5}}) {
        const Singles a = rows[i];
        const Singles b = rows[i + 2];
        rows[i] = __builtin_shufflevector(a, b, 0, 1, 8, 9, 4, 5, 12, 13);
        rows[i + 2] = __builtin_shufflevector(a, b, 2, 3, 10, 11, 6, 7, 14, 15);
    }
    for (size_t i = 0; i < kLanes; i += 2) {
        const Singles a = rows[i];
        const Singles b = rows[i + 1];
        rows[i] = __builtin_shufflevector(a, b, 0, 8, 2, 10, 4, 12, 6, 14);
        rows[i + 1] = __builtin_shufflevector(a, b, 1, 9, 3, 11, 5, 13, 7, 15);
    }
}

}  // namespace corvantis
