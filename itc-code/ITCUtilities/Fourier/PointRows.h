// Rows of eight points of a Fourier transform, eight real parts and then eight imaginary ones,
// which vectors take as they lie; and the butterflies between two rows.
#pragma once

#include <cstddef>
#include <cstring>

#include "ITCUtilities/FunctionClones.h"

namespace corvantis {

inline constexpr size_t kLanes = 8;
inline constexpr size_t kRowValues = 2 * kLanes;

using Singles __attribute__((vector_size(4 * kLanes))) = float;
using Doubles __attribute__((vector_size(8 * kLanes))) = double;
// Where callers' arrays begin, no vector needs to. (Always by this name: "auto" forgets it.)
using StoredSingles __attribute__((vector_size(4 * kLanes), aligned(4), may_alias)) = float;
// What every vector unit can shuffle; wider vectors fall to pieces on some.
inline constexpr size_t kFour = 4;
using FourSingles __attribute__((vector_size(4 * kFour))) = float;

struct Row {
    Singles real;
    Singles imaginary;
};

// The twiddle factors of a row's points.
struct FactorRow {
    Doubles real;
    Doubles imaginary;
};

CORVANTIS_INLINE void LoadRow(Row& row, const float* values) {
    row = {*reinterpret_cast<const StoredSingles*>(values),
           *reinterpret_cast<const StoredSingles*>(values + kLanes)};
}
CORVANTIS_INLINE void StoreRow(const Row& row, float* values) {
    *reinterpret_cast<StoredSingles*>(values) = row.real;
    *reinterpret_cast<StoredSingles*>(values + kLanes) = row.imaginary;
}

CORVANTIS_INLINE void LoadFour(FourSingles& four, const float* values) {
    std::memcpy(&four, values, sizeof four);
}
CORVANTIS_INLINE void StoreFour(const FourSingles& four, float* values) {
    std::memcpy(values, &four, sizeof four);
}

// A row from points as callers have them, each real part with its imaginary one behind it.
CORVANTIS_INLINE void SeparateParts(const float* points, float* row) {
    for (size_t k = 0; k < kLanes; k += kFour) {
        FourSingles a;
        FourSingles b;
        LoadFour(a, points + 2 * k);
        LoadFour(b, points + 2 * k + kFour);
        StoreFour(__builtin_shufflevector(a, b, 0, 2, 4, 6), row + k);
        StoreFour(__builtin_shufflevector(a, b, 1, 3, 5, 7), row + kLanes + k);
    }
}

// The way back.
CORVANTIS_INLINE void StorePoints(const Row& row, float* points) {
    float parts[kRowValues];
    StoreRow(row, parts);
    for (size_t k = 0; k < kLanes; k += kFour) {
        FourSingles a;
        FourSingles b;
        LoadFour(a, parts + k);
        LoadFour(b, parts + kLanes + k);
        StoreFour(__builtin_shufflevector(a, b, 0, 4, 1, 5), points + 2 * k);
        StoreFour(__builtin_shufflevector(a, b, 2, 6, 3, 7), points + 2 * k + kFour);
    }
}

// Four values of each of four rows, one below the other, to one place of four rows.
CORVANTIS_INLINE void LayAcross(const float* from, float* const (&to)[kFour], size_t place) {
    FourSingles rows[kFour];
    for (size_t i = 0; i < kFour; ++i) LoadFour(rows[i], from + i * kRowValues);
    const FourSingles a = __builtin_shufflevector(rows[0], rows[1], 0, 4, 1, 5);
    const FourSingles b = __builtin_shufflevector(rows[0], rows[1], 2, 6, 3, 7);
    const FourSingles c = __builtin_shufflevector(rows[2], rows[3], 0, 4, 1, 5);
    const FourSingles d = __builtin_shufflevector(rows[2], rows[3], 2, 6, 3, 7);
    StoreFour(__builtin_shufflevector(a, c, 0, 1, 4, 5), to[0] + place);
    StoreFour(__builtin_shufflevector(a, c, 2, 3, 6, 7), to[1] + place);
    StoreFour(__builtin_shufflevector(b, d, 0, 1, 4, 5), to[2] + place);
    StoreFour(__builtin_shufflevector(b, d, 2, 3, 6, 7), to[3] + place);
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

}  // namespace corvantis
