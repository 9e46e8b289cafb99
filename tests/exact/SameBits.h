// Comparison of computed values bit for bit, and the counts at which fast paths change their ways.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

#include "Corvantis.h"

namespace corvantis_test {

// A NaN equals every NaN: which one an operation on two gives, the arithmetic leaves open.
inline bool IsSame(float a, float b) {
    return std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b) ||
           (std::isnan(a) && std::isnan(b));
}
inline bool IsSame(uint16_t a, uint16_t b) { return a == b; }

template <class T>
size_t CountDifferences(std::span<const T> a, std::span<const T> b) {
    size_t differences = a.size() == b.size() ? 0 : 1;
    for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        differences += IsSame(a[i], b[i]) ? 0 : 1;
    }
    return differences;
}
template <class T>
size_t CountDifferences(const std::vector<T>& a, const std::vector<T>& b) {
    return CountDifferences(std::span<const T>(a), std::span<const T>(b));
}

// Around the sizes of batches, blocks and vectors.
inline const std::vector<int32_t> kAwkwardCounts = {1,   2,   3,   15,  16,   17,   31,   47,   48,
                                                    49,  127, 128, 129, 255,  256,  257,  511,  512,
                                                    513, 767, 769, 999, 1025, 4095, 5001, 65537};

// A level of any magnitude, small ones as often as large ones.
inline int32_t RandomLevel(std::mt19937& source) {
    const auto magnitude = static_cast<int32_t>(source() >> (1 + source() % 31));
    return source() % 2 == 0 ? magnitude : -magnitude;
}

// A buffer for a record's samples, with content that a forgotten sample would show.
template <class Record>
std::vector<uint16_t> BufferFor(const Record& record) {
    return std::vector<uint16_t>(
        static_cast<size_t>(record.prePoints + record.points + record.tailPoints), 0x5AA5);
}

inline int16_t* SignedSamples(std::vector<uint16_t>& samples) {
    return reinterpret_cast<int16_t*>(samples.data());
}

}  // namespace corvantis_test
