// The table of stimulus types.
#include "ITCFileIO/StimulusTypes.h"

#include <array>

#include "ITCFileIO/RecordCodec.h"

namespace corvantis {
namespace {

template <class Record>
bool WriteRecord(FILE* stream, const void* record) {
    return WriteStructure(stream, static_cast<const Record*>(record));
}

template <class Record>
bool ReadRecord(FILE* stream, void* record) {
    return ReadStructure(stream, static_cast<Record*>(record));
}

// A record of plain 32-bit fields: file, count and memory agree on its size.
template <class Record>
constexpr StimulusType Stored(FieldPlaces fields) {
    static_assert(EncodedSize<Record>() == sizeof(Record));
    return {sizeof(Record), sizeof(Record), WriteRecord<Record>, ReadRecord<Record>, fields};
}

// Counted in the epoch's size although nothing of it is written: later positions lie that many
// bytes too far, as in every file recorded so far.
template <class Record>
constexpr StimulusType CountedOnly(uint32_t countedSize) {
    return {countedSize, sizeof(Record), nullptr, nullptr, {}};
}

template <class Record>
constexpr FieldPlaces LengthPlaces() {
    FieldPlaces places;
    places.points = offsetof(Record, points);
    places.prePoints = offsetof(Record, prePoints);
    places.tailPoints = offsetof(Record, tailPoints);
    return places;
}

template <class Record>
constexpr FieldPlaces AllPlaces() {
    FieldPlaces places = LengthPlaces<Record>();
    places.amplitude = offsetof(Record, amplitude);
    places.mean = offsetof(Record, mean);
    return places;
}

template <class Record>
constexpr StimulusType Ordinary() {
    return Stored<Record>(AllPlaces<Record>());
}

constexpr FieldPlaces kZeroPlaces = {kAlwaysZero, kAlwaysZero, kAlwaysZero, kAlwaysZero,
                                     kAlwaysZero};

constexpr std::array<StimulusType, kLargestType + 1> kTypes = {
    StimulusType{},
    Ordinary<ITCSineParameters>(),
    Ordinary<ITCNoiseParameters>(),
    Ordinary<ITCPulseParameters>(),
    Ordinary<ITCRampParameters>(),
    CountedOnly<ITCFilewaveParameters>(8),
    Ordinary<ITCGenericParameters>(),
    StimulusType{0, sizeof(ITCSummedParameters), nullptr, nullptr, {}},
    CountedOnly<ITCTrigSeriesParameters>(36),
    Ordinary<ITCSegmentedNoiseParameters>(),
    Ordinary<ITCBinaryNoiseParameters>(),
    Stored<ITCGClampParameters>(kZeroPlaces),
    Stored<ITCCirclePulseParameters>(LengthPlaces<ITCCirclePulseParameters>()),
    Ordinary<ITCAlternateVoltageParameters>(),
    Stored<ITCSpatialStmParameters>({}),
};

static_assert(EncodedSize<ITCSummedParameters>() == kSummedCountedSize);
static_assert(sizeof(void*) != 4 || (sizeof(ITCSummedParameters) == kSummedCountedSize &&
                                     sizeof(ITCFilewaveParameters) == 8));
static_assert(sizeof(ITCTrigSeriesParameters) == 36);

}  // namespace

const StimulusType& TypeRow(uint32_t type) { return kTypes[type <= kLargestType ? type : 0]; }

}  // namespace corvantis
