// What one epoch of an open recording holds besides its samples.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "files/DataFile.h"

namespace corvantis::tool {

struct EpochRecords {
    int64_t number = 0;
    CorvantisEpochInfo info = {};
    alignas(8) std::array<uint8_t, CORVANTIS_EPOCH_HEADER_SIZE> header = {};
};

// Nothing for an epoch that is damaged or lost. Throws a Failure if the file's bytes do not come.
std::optional<EpochRecords> ReadEpoch(const DataFile& file, int64_t number);

// Epochs that cannot be read: one whose place is known, or all of a gap, which may be millions.
struct LostEpochs {
    int64_t first = 0;
    int64_t last = 0;
    int64_t offset = -1;  // where it was [bytes]
    std::string text;     // why
};
// That one, and those of its gap behind it.
LostEpochs LostFrom(const DataFile& file, int64_t number);

// Of an entry, or of a component of its sum.
CorvantisStimulusRecord ParametersOf(const DataFile& file, int64_t epoch, int32_t entry,
                                     int32_t component = -1);

CorvantisScaleInfo ScaleOf(const DataFile& file, int64_t epoch, int32_t entry, int32_t direction);

// As the library says it.
std::string StimulusJsonOf(const DataFile& file, int64_t epoch, int32_t entry);

// What is to be said of an entry's computed stimulus.
struct StimulusState {
    std::string problem;  // why it cannot be computed; empty if it can
    CorvantisDoubt doubt = {};
    bool fillsEpoch = true;
};
StimulusState StimulusStateOf(const DataFile& file, int64_t epoch, int32_t entry);

std::string TypeName(int32_t type);

}  // namespace corvantis::tool
