// What the library knows of each stimulus type: one row a type, which everything that asks reads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>

#include "Corvantis.h"
#include "ITCFileIO/RecordFields.h"
#include "ITCWaveforms/Draws.h"
#include "ITCWaveforms/Waveforms.h"

namespace corvantis {

inline constexpr uint32_t kPipelineLength = 5;
// Of inputs and outputs, in files of this library.
inline constexpr float kCountsPerVolt = 3200.0F;
inline constexpr uint32_t kLargestType = ITC_STIMULUS_SPATIAL;

// A column of the table: without a default, so that a row which leaves one out does not compile.
template <class T>
class Column {
  public:
    constexpr Column(T value) : value_(value) {}  // NOLINT(google-explicit-constructor): see above
    constexpr operator T() const { return value_; }  // NOLINT(google-explicit-constructor)
    constexpr const T& Get() const { return value_; }
    constexpr const T* operator->() const { return &value_; }

  private:
    T value_;
};

// How a record lies in memory and in the data file. The types without an encoding, file wave and
// trigger series, are counted in the epoch's size although nothing of them is written.
struct RecordForm {
    uint32_t countedSize = 0;  // bytes as the data file counts them; 0: not by this table
    uint32_t fileSize = 0;     // bytes that are really there
    size_t memorySize = 0;     // bytes here; pointers make some records host-sized
    bool (*write)(FILE* stream, const void* record) = nullptr;
    bool (*read)(FILE* stream, void* record) = nullptr;
    void (*decode)(const uint8_t* bytes, void* record) = nullptr;  // the bytes of the file
    std::span<const Field> fields;                                 // of what is on file
};

// Where a record keeps one of its values, or why a query has no answer.
enum FieldPlace : int32_t { kNoSuchField = -1, kAlwaysZero = -2 };

struct FieldPlaces {
    int32_t amplitude = kNoSuchField;
    int32_t mean = kNoSuchField;
    int32_t points = kNoSuchField;
    int32_t prePoints = kNoSuchField;
    int32_t tailPoints = kNoSuchField;
    int32_t seed = kNoSuchField;
};

// The record must be of the type; dynamic clamp reads none.
using Waveform = int32_t (*)(uint16_t* buffer, const void* record, const EpochSettings& settings,
                             NoiseGenerators& generators);
using Computable = bool (*)(const void* record);
using Extent = bool (*)(const void* record, int64_t bufferPoints);
using DrawCount = Draws (*)(const void* record, int8_t version);

struct StimulusType {
    Column<const char*> name;  // for people, the same everywhere
    Column<RecordForm> record;
    Column<FieldPlaces> places;
    Column<Waveform> waveform;        // null: the library computes none
    Column<Computable> isComputable;  // false for a null record that would be read
    Column<Extent> staysWithin;       // true also where nothing is computed
    Column<DrawCount> draws;
    // Why what is computed from a file's record is not what was played; empty if nothing is against
    // it.
    Column<const char*> caveat;
};

// The row of a type code, a row of nothing for a code that is no stimulus type.
const StimulusType& TypeRow(uint32_t type);
constexpr bool IsStimulusType(uint32_t type) { return type >= 1 && type <= kLargestType; }

// No record of another type than the sum takes more [bytes].
inline constexpr size_t kLargestRecord = 64;

// The summed record is counted, but not by the table: it cannot stand where a size is asked for.
inline constexpr uint32_t kSummedCountedSize = 1284;

// ITC_STIMULUS_ERROR for a type or a record that has no waveform, or whose waveform failed; nothing
// is written then.
int32_t CalculateWaveform(uint32_t type, uint16_t* buffer, const void* record,
                          const EpochSettings& settings, NoiseGenerators& generators);

}  // namespace corvantis
