// Waveforms beside their definitions, bit for bit and from the same state of the generators.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <tuple>
#include <vector>

#include "Corvantis.h"
#include "ITCFileIO/StimulusTypes.h"
#include "ITCUtilities/Random/LibraryGenerators.h"
#include "WrittenSamples.h"
#include "reference/Definitions.h"

namespace corvantis_test {

// A NaN equals every NaN: which one an operation on two gives, the arithmetic leaves open.
inline uint64_t Bits(float value) { return std::isnan(value) ? 1 : std::bit_cast<uint32_t>(value); }
inline uint64_t Bits(uint16_t value) { return value; }

// FNV-1a over whole values: no host may differ in what a test compares.
inline constexpr uint64_t kNoValues = 14695981039346656037u;
inline uint64_t digest = kNoValues;

template <class T>
void ExpectSame(const std::vector<T>& found, const std::vector<T>& expected, const auto&... what) {
    size_t differences = found.size() == expected.size() ? 0 : 1;
    for (size_t i = 0; i < std::min(found.size(), expected.size()); ++i) {
        digest = (digest ^ Bits(found[i])) * 1099511628211u;
        differences += Bits(found[i]) != Bits(expected[i]);
    }
    EXPECT_EQ(differences, 0u) << testing::PrintToString(std::tie(what...));
}

// Library and definition without spare deviates.
class ExactTest : public testing::Test {
  protected:
    ExactTest() {
        digest = kNoValues;
        generators.spare = generators.oldSpare = {};
        definition::DropSpareDeviates();
    }
    static void ExpectDigest(uint64_t expected) {
        EXPECT_EQ(digest, expected) << "as defined, but not as on the other hosts";
    }

    corvantis::NoiseGenerators& generators = corvantis::LibraryGenerators();
};

// Around the sizes of batches, blocks and vectors.
inline constexpr int32_t kAwkwardCounts[] = {1,   2,   3,   15,  16,   17,   31,   47,   48,
                                             49,  127, 128, 129, 255,  256,  257,  511,  512,
                                             513, 767, 769, 999, 1025, 4095, 5001, 65537};

// A level of any magnitude, small ones as often as large ones.
inline int32_t RandomLevel(std::mt19937& source) {
    const auto magnitude = static_cast<int32_t>(source() >> (1 + source() % 31));
    return source() % 2 == 0 ? magnitude : -magnitude;
}

template <class Record, class Definition>
void ExpectDefined(uint32_t type, const Record& record, Definition definition,
                   const corvantis::EpochSettings& settings = {}) {
    size_t points = 0;
    for (const int32_t run : {record.prePoints, record.points, record.tailPoints})
        points += static_cast<size_t>(std::max(run, 0));
    const auto calculate = [&](uint16_t* buffer) {
        CalculateWaveform(type, buffer, &record, settings, corvantis::LibraryGenerators());
    };
    const auto define = [&](uint16_t* buffer) { definition(buffer, record); };
    ExpectSame(Written(points, calculate), Written(points, define), type, settings.samplingInterval,
               record);
}

}  // namespace corvantis_test
