// The table of stimulus types.
#include "ITCFileIO/StimulusTypes.h"

#include <array>
#include <bit>
#include <utility>

#include "ITCFileIO/RecordCodec.h"
#include "ITCWaveforms/Extent.h"

namespace corvantis {
namespace {

template <class Record>
const Record& As(const void* record) {
    return *static_cast<const Record*>(record);
}

template <class Record>
bool WriteRecord(FILE* stream, const void* record) {
    return WriteStructure(stream, static_cast<const Record*>(record));
}

template <class Record>
bool ReadRecord(FILE* stream, void* record) {
    return ReadStructure(stream, static_cast<Record*>(record));
}

template <class Record>
void DecodeRecord(const uint8_t* bytes, void* record) {
    DecodeBytes(bytes, *static_cast<Record*>(record));
}

// A record of 32-bit fields: file, count and memory agree on its size.
template <class Record>
constexpr RecordForm Stored() {
    static_assert(EncodedSize<Record>() == sizeof(Record) && sizeof(Record) <= kLargestRecord);
    constexpr auto size = static_cast<uint32_t>(sizeof(Record));
    return {
        size,           size, size, WriteRecord<Record>, ReadRecord<Record>, DecodeRecord<Record>,
        kFields<Record>};
}

// Later positions lie so many bytes too far, as in every file recorded so far.
template <class Record>
constexpr RecordForm CountedOnly(uint32_t countedSize) {
    return {countedSize, 0, sizeof(Record), nullptr, nullptr, nullptr, {}};
}

// Written and read by its own codec, with its components behind it.
constexpr RecordForm SumForm() {
    return {0,
            kSummedCountedSize,
            sizeof(ITCSummedParameters),
            nullptr,
            nullptr,
            DecodeRecord<ITCSummedParameters>,
            kFields<ITCSummedParameters>};
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
constexpr FieldPlaces LevelPlaces() {
    FieldPlaces places = LengthPlaces<Record>();
    places.amplitude = offsetof(Record, amplitude);
    places.mean = offsetof(Record, mean);
    return places;
}

template <class Record>
constexpr FieldPlaces NoisePlaces() {
    FieldPlaces places = LevelPlaces<Record>();
    places.seed = offsetof(Record, seed);
    return places;
}

constexpr FieldPlaces kNoPlaces = {};
constexpr FieldPlaces kZeroPlaces = {kAlwaysZero, kAlwaysZero, kAlwaysZero,
                                     kAlwaysZero, kAlwaysZero, kNoSuchField};

constexpr Waveform kNoWaveform = nullptr;

// The record's waveform, which takes of the rest what it needs.
template <class Record>
int32_t Create(uint16_t* buffer, const void* params, const EpochSettings& settings,
               NoiseGenerators& generators) {
    const auto& record = As<Record>(params);
    if constexpr (requires { CreateWaveform(buffer, record, settings, generators); }) {
        return CreateWaveform(buffer, record, settings, generators);
    } else if constexpr (requires { CreateWaveform(buffer, record, generators); }) {
        CreateWaveform(buffer, record, generators);
    } else if constexpr (requires { CreateWaveform(buffer, record, settings.samplingInterval); }) {
        CreateWaveform(buffer, record, settings.samplingInterval);
    } else {
        CreateWaveform(buffer, record);
    }
    return ITC_SUCCESS;
}

int32_t CreateDynamicClamp(uint16_t* buffer, const void* /*record*/, const EpochSettings& settings,
                           NoiseGenerators& /*generators*/) {
    CreateDynamicClampWaveform(buffer, settings.epochPoints);
    return ITC_SUCCESS;
}

template <class Record, bool (*isComputable)(const Record&)>
bool WhereDefined(const void* record) {
    return record != nullptr && isComputable(As<Record>(record));
}
template <class Record>
bool Always(const void* record) {
    return record != nullptr;
}
bool WithoutRecord(const void* /*record*/) { return true; }
bool Never(const void* /*record*/) { return false; }

template <class Record, bool (*staysWithin)(const Record&, int64_t)>
bool Fits(const void* record, int64_t bufferPoints) {
    return staysWithin(As<Record>(record), bufferPoints);
}
template <class Record>
constexpr Extent kRunsFit = Fits<Record, RunsStayWithin<Record>>;
template <class Record>
constexpr Extent kSegmentsFit = Fits<Record, SegmentsStayWithin<Record>>;
bool FitsAnything(const void* /*record*/, int64_t /*bufferPoints*/) { return true; }

Draws DrawsNothing(const void* /*record*/, int8_t /*version*/) { return {}; }
template <class Record>
Draws DrawsSegments(const void* record, int8_t /*version*/) {
    return DrawsOf(As<Record>(record));
}
Draws DrawsFilteredNoise(const void* record, int8_t version) {
    return DrawsOf(As<ITCNoiseParameters>(record), version);
}

constexpr char kUnknown[] = "unknown";
constexpr char kNoCaveat[] = "";
constexpr char kApplications[] = "only the application knows its waveform";

constexpr StimulusType kNoType = {
    .name = kUnknown,
    .record = RecordForm{},
    .places = kNoPlaces,
    .waveform = kNoWaveform,
    .isComputable = Never,
    .staysWithin = FitsAnything,
    .draws = DrawsNothing,
    .caveat = "its type is not known",
};

// No default: a type of the interface that has no row does not compile.
constexpr StimulusType RowOf(ITCStimulusType type) {
    switch (type) {
        case ITC_STIMULUS_SINE:
            return {
                .name = "sine",
                .record = Stored<ITCSineParameters>(),
                .places = LevelPlaces<ITCSineParameters>(),
                .waveform = Create<ITCSineParameters>,
                .isComputable = Always<ITCSineParameters>,
                .staysWithin = kRunsFit<ITCSineParameters>,
                .draws = DrawsNothing,
                .caveat = kNoCaveat,
            };
        case ITC_STIMULUS_NOISE:
            return {
                .name = "noise",
                .record = Stored<ITCNoiseParameters>(),
                .places = NoisePlaces<ITCNoiseParameters>(),
                .waveform = Create<ITCNoiseParameters>,
                .isComputable = Always<ITCNoiseParameters>,
                .staysWithin = Fits<ITCNoiseParameters, FilteredNoiseStaysWithin>,
                .draws = DrawsFilteredNoise,
                .caveat = kNoCaveat,
            };
        case ITC_STIMULUS_PULSE:
            return {
                .name = "pulse",
                .record = Stored<ITCPulseParameters>(),
                .places = LevelPlaces<ITCPulseParameters>(),
                .waveform = Create<ITCPulseParameters>,
                .isComputable = Always<ITCPulseParameters>,
                .staysWithin = kRunsFit<ITCPulseParameters>,
                .draws = DrawsNothing,
                .caveat = kNoCaveat,
            };
        case ITC_STIMULUS_RAMP:
            return {
                .name = "ramp",
                .record = Stored<ITCRampParameters>(),
                .places = LevelPlaces<ITCRampParameters>(),
                .waveform = Create<ITCRampParameters>,
                .isComputable = Always<ITCRampParameters>,
                .staysWithin = kRunsFit<ITCRampParameters>,
                .draws = DrawsNothing,
                .caveat = kNoCaveat,
            };
        case ITC_STIMULUS_FILEWAVE:
            return {
                .name = "file wave",
                .record = CountedOnly<ITCFilewaveParameters>(8),
                .places = kNoPlaces,
                .waveform = Create<ITCFilewaveParameters>,
                .isComputable = WhereDefined<ITCFilewaveParameters, HasWave>,
                .staysWithin = Fits<ITCFilewaveParameters, WaveStaysWithin>,
                .draws = DrawsNothing,
                .caveat = "the wave was the application's and is not stored",
            };
        case ITC_STIMULUS_GENERIC:
            return {
                .name = "generic",
                .record = Stored<ITCGenericParameters>(),
                .places = LevelPlaces<ITCGenericParameters>(),
                .waveform = kNoWaveform,
                .isComputable = Never,
                .staysWithin = FitsAnything,
                .draws = DrawsNothing,
                .caveat = kApplications,
            };
        case ITC_STIMULUS_SUMMED:  // its callers expand it, component by component
            return {
                .name = "summed",
                .record = SumForm(),
                .places = kNoPlaces,
                .waveform = kNoWaveform,
                .isComputable = Never,
                .staysWithin = FitsAnything,
                .draws = DrawsNothing,
                .caveat = kNoCaveat,
            };
        case ITC_STIMULUS_TRIGGER_SERIES:
            return {
                .name = "trigger series",
                .record = CountedOnly<ITCTrigSeriesParameters>(36),
                .places = kNoPlaces,
                .waveform = Create<ITCTrigSeriesParameters>,
                .isComputable = WhereDefined<ITCTrigSeriesParameters, HasInterval>,
                .staysWithin = kRunsFit<ITCTrigSeriesParameters>,
                .draws = DrawsNothing,
                .caveat = "its parameters are not stored",
            };
        case ITC_STIMULUS_SEGMENTED_NOISE:
            return {
                .name = "segmented noise",
                .record = Stored<ITCSegmentedNoiseParameters>(),
                .places = NoisePlaces<ITCSegmentedNoiseParameters>(),
                .waveform = Create<ITCSegmentedNoiseParameters>,
                .isComputable = WhereDefined<ITCSegmentedNoiseParameters, HasSegments>,
                .staysWithin = kSegmentsFit<ITCSegmentedNoiseParameters>,
                .draws = DrawsSegments<ITCSegmentedNoiseParameters>,
                .caveat = kNoCaveat,
            };
        case ITC_STIMULUS_BINARY_NOISE:
            return {
                .name = "binary noise",
                .record = Stored<ITCBinaryNoiseParameters>(),
                .places = NoisePlaces<ITCBinaryNoiseParameters>(),
                .waveform = Create<ITCBinaryNoiseParameters>,
                .isComputable = WhereDefined<ITCBinaryNoiseParameters, HasSegments>,
                .staysWithin = kSegmentsFit<ITCBinaryNoiseParameters>,
                .draws = DrawsSegments<ITCBinaryNoiseParameters>,
                .caveat = kNoCaveat,
            };
        case ITC_STIMULUS_DYNAMIC_CLAMP:
            return {
                .name = "dynamic clamp",
                .record = Stored<ITCGClampParameters>(),
                .places = kZeroPlaces,
                .waveform = CreateDynamicClamp,
                .isComputable = WithoutRecord,
                .staysWithin = FitsAnything,
                .draws = DrawsNothing,
                .caveat =
                    "what was played followed the measured potential; its conductances are "
                    "stored",
            };
        case ITC_STIMULUS_CIRCLE_PULSE:
            return {
                .name = "circle pulse",
                .record = Stored<ITCCirclePulseParameters>(),
                .places = LengthPlaces<ITCCirclePulseParameters>(),
                .waveform = kNoWaveform,
                .isComputable = Never,
                .staysWithin = FitsAnything,
                .draws = DrawsNothing,
                .caveat = kApplications,
            };
        case ITC_STIMULUS_ALTERNATING_VOLTAGE:
            return {
                .name = "alternating voltage",
                .record = Stored<ITCAlternateVoltageParameters>(),
                .places = LevelPlaces<ITCAlternateVoltageParameters>(),
                .waveform = Create<ITCAlternateVoltageParameters>,
                .isComputable = WhereDefined<ITCAlternateVoltageParameters, HasHalfPeriod>,
                .staysWithin = kRunsFit<ITCAlternateVoltageParameters>,
                .draws = DrawsNothing,
                .caveat = kNoCaveat,
            };
        case ITC_STIMULUS_SPATIAL:
            return {
                .name = "spatial",
                .record = Stored<ITCSpatialStmParameters>(),
                .places = kNoPlaces,
                .waveform = Create<ITCSpatialStmParameters>,
                .isComputable = Always<ITCSpatialStmParameters>,
                .staysWithin = Fits<ITCSpatialStmParameters, PointsStayWithin>,
                .draws = DrawsNothing,
                .caveat = kNoCaveat,
            };
    }
    return kNoType;
}

constexpr ITCStimulusType TypeOf(uint32_t code) { return std::bit_cast<ITCStimulusType>(code); }
static_assert(RowOf(TypeOf(kLargestType + 1)).name == kUnknown, "kLargestType is smaller");

template <uint32_t... Code>
constexpr std::array<StimulusType, sizeof...(Code)> MakeTable(
    std::integer_sequence<uint32_t, Code...>) {
    return {(Code == 0 ? kNoType : RowOf(TypeOf(Code)))...};
}

constexpr auto kTypes = MakeTable(std::make_integer_sequence<uint32_t, kLargestType + 1>());

static_assert(EncodedSize<ITCSummedParameters>() == kSummedCountedSize);
static_assert(sizeof(void*) != 4 || (sizeof(ITCSummedParameters) == kSummedCountedSize &&
                                     sizeof(ITCFilewaveParameters) == 8));
static_assert(sizeof(ITCTrigSeriesParameters) == 36);

}  // namespace

const StimulusType& TypeRow(uint32_t type) { return kTypes[IsStimulusType(type) ? type : 0]; }

int32_t CalculateWaveform(uint32_t type, uint16_t* buffer, const void* record,
                          const EpochSettings& settings, NoiseGenerators& generators) {
    const StimulusType& row = TypeRow(type);
    const Waveform waveform = row.waveform;
    if (waveform == kNoWaveform || !row.isComputable(record)) return ITC_STIMULUS_ERROR;
    // Out of memory too: callers cannot tell it from a window that does not fit.
    return waveform(buffer, record, settings, generators) == ITC_SUCCESS ? ITC_SUCCESS
                                                                         : ITC_STIMULUS_ERROR;
}

}  // namespace corvantis
