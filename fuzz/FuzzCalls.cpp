// Any bytes as a sequence of calls: acquisition set-up, stimuli, sums, saving and reading back,
// with arguments from the bytes. Every result must be one of the documented codes.
#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <span>
#include <type_traits>

#include "ITCFileIO/StimulusTypes.h"
#include "ITCUtilities/WrappingArithmetic.h"
#include "Session.h"

namespace {

std::span<const uint8_t> input;

// From the front of the input; zeros when it is used up.
template <class T>
T Take() {
    std::array<uint8_t, sizeof(T)> bytes = {};
    const size_t count = std::min(sizeof(T), input.size());
    std::copy_n(input.begin(), count, bytes.begin());
    input = input.subspan(count);
    return std::bit_cast<T>(bytes);
}
uint32_t Byte() { return Take<uint8_t>(); }
// Near the epoch's points most of the time, or few calls would get past the length test.
int32_t Count() {
    const uint32_t kind = Byte();
    return kind < 250 ? static_cast<int32_t>(kind % 64) : Take<int32_t>();
}

int32_t Expect(int32_t result) {
    corvantis_fuzz::Require(result >= 0 && result <= 9 && result != 3 && result != 8);
    return result;
}

// As many bytes for every type, so that an input keeps its later calls when a type is changed.
template <class Record>
Record TakeRecord() {
    static std::array<uint16_t, 64> wave;
    Record record = {};
    const auto bytes = Take<std::array<uint8_t, 48>>();
    const int32_t pre = Count(), points = Count();
    const int32_t total = corvantis::WrappingAdd(pre, points);
    if constexpr (requires { record.samples; }) {
        record = {wave.data(), total % 65};
    } else if constexpr (requires { record.count; }) {
        record.count = pre < 64 ? pre % 5 : pre;
    } else {
        static_assert(sizeof record <= sizeof bytes);
        std::memcpy(&record, bytes.data(), sizeof record);
    }
    if constexpr (requires { record.points; }) record.points = total;
    const int32_t tail = Byte() == 0 ? Count() : epochhdr->epochPoints;
    if constexpr (requires { record.tailPoints; }) {
        record.points = points;
        record.prePoints = pre;
        record.tailPoints = corvantis::WrappingSubtract(tail, total);
    }
    return record;
}

// The first way to build a type, or the second, to add it to a sum.
template <auto build, auto... add>
void Install() {
    const auto install = []<class Record>(int32_t (*)(int32_t, Record*)) {
        auto record = TakeRecord<std::remove_const_t<Record>>();
        const int32_t channel = Take<int8_t>() % 5;
        const bool isAdded = Byte() % 2 != 0 && sizeof...(add) > 0;
        if (isAdded) (Expect(add(static_cast<uint32_t>(channel), &record)), ...);
        if (isAdded || Expect(build(channel, &record)) != ITC_SUCCESS) return;
        for (const int8_t type : epochhdr->stimType) corvantis_fuzz::reachedTypes.insert(type);
    };
    install(build);
}

int32_t BuildGeneric(int32_t /*channel*/, const ITCGenericParameters* record) {
    return ITCGenericParams(record);
}
int32_t BuildDynamicClamp(int32_t channel, const ITCGClampParameters* record) {
    return ITCGClampParams(channel, record, 77);
}

// By the type's code.
constexpr void (*kInstalls[])() = {Install<ITCSineParams, ITCAddSineParams>,
                                   Install<ITCNoiseParams, ITCAddNoiseParams>,
                                   Install<ITCPulseParams, ITCAddPulseParams>,
                                   Install<ITCRampParams, ITCAddRampParams>,
                                   Install<ITCFilewaveParams, ITCAddFilewaveParams>,
                                   Install<BuildGeneric>,
                                   Install<ITCSummedParams>,
                                   Install<ITCTrigSeriesParams>,
                                   Install<ITCSegmentedNoiseParams, ITCAddSegmentedNoiseParams>,
                                   Install<ITCBinaryNoiseParams, ITCAddBinaryNoiseParams>,
                                   Install<BuildDynamicClamp, ITCAddGClampParams>,
                                   Install<ITCCirclePulseParams, ITCAddCirclePulseParams>,
                                   Install<ITCAltVoltageParams, ITCAddAltVoltParams>,
                                   Install<ITCSpatialParams>};
static_assert(std::size(kInstalls) == corvantis::kLargestType);

void SetUp() {
    const char* const channels[] = {"0", "10", "D3", "0123", "4567", "", "01234", "x"};
    const char* const inputs = channels[Byte() % 8];
    Expect(ITCSetSeq(inputs, channels[Byte() % 8]));
    if (Byte() == 0) epochhdr->sequenceLength = Take<int32_t>();
    const int32_t interval = Take<uint16_t>() * 2, points = Count();
    Expect(ITCSetAcqParams(interval, points, Take<int8_t>(), 0));
}

void ReadBack() {
    const int32_t epoch = Take<int8_t>();
    const uint32_t channel = Byte() % 5, component = Byte();
    int32_t value = 0;
    for (auto* retrieve : {ITCRetrieveEpoch, ITCRetrieveEpochStm}) Expect(retrieve(epoch));
    Expect(ITCRetrieveEpochStmGClamp(epoch, channel));
    Expect(ITCRetrieveRandomSeed(&value, channel));
    Expect(ITCNewRandomSeed(Take<int32_t>(), channel, component));
}

constexpr void (*kCalls[])() = {SetUp,
                                [] { kInstalls[Byte() % corvantis::kLargestType](); },
                                [] { Expect(ITCUpdateStm()); },
                                [] { Expect(ITCSaveToFile()); },
                                ReadBack,
                                [] { Expect(ITCFreeParams(Byte() % 5)); },
                                [] { filehdr->version = Take<int8_t>(); },
                                [] { epochhdr->stimType[0] = Take<int8_t>(); }};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static std::array<float, corvantis_fuzz::kBufferSamples> conductance;
    corvantis_fuzz::StartLibrary();
    *epochhdr = {};
    *filehdr = {};
    filehdr->version = ITC_FILE_VERSION;
    ExcitatoryG = InhibitoryG = conductance.data();
    const corvantis_fuzz::MemoryFile file;
    Expect(ITCCreateFile(file.path.c_str(), 1));
    input = {data, size};
    for (int calls = 0; calls < 64 && !input.empty(); ++calls) kCalls[Byte() % std::size(kCalls)]();
    corvantis_fuzz::ReleaseStimuli();
    ITCCloseFile();
    ExcitatoryG = InhibitoryG = nullptr;
    return 0;
}
