// What the library knows of each stimulus type: one row a type, which everything that asks reads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "Corvantis.h"

namespace corvantis {

inline constexpr uint32_t kPipelineLength = 5;
inline constexpr uint32_t kLargestType = ITC_STIMULUS_SPATIAL;

// Where a record keeps one of its values, or why a query has no answer.
enum FieldPlace : int32_t { kNoSuchField = -1, kAlwaysZero = -2 };

struct FieldPlaces {
    int32_t amplitude = kNoSuchField;
    int32_t mean = kNoSuchField;
    int32_t points = kNoSuchField;
    int32_t prePoints = kNoSuchField;
    int32_t tailPoints = kNoSuchField;
};

struct StimulusType {
    uint32_t countedSize = 0;  // bytes of the record as the data file counts it; 0: not counted
    size_t memorySize = 0;     // bytes of the record here; pointers make some records host-sized
    bool (*write)(FILE* stream, const void* record) = nullptr;
    bool (*read)(FILE* stream, void* record) = nullptr;
    FieldPlaces fields;
};

// The row of a type code, a row of nothing for a code that is none of the fourteen.
const StimulusType& TypeRow(uint32_t type);

// The summed record is counted, but not by the table: it cannot stand where a size is asked for.
inline constexpr uint32_t kSummedCountedSize = 1284;

}  // namespace corvantis
