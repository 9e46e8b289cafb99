// Any bytes as a sequence of calls: acquisition set-up, stimuli, sums, saving and reading back,
// with arguments from the bytes. Every result must be one of the documented codes.
#include <array>
#include <bit>
#include <cstring>
#include <type_traits>

#include "ITCFileIO/StimulusTypes.h"
#include "Session.h"

namespace {

// Arguments from the front of the input; zeros when it is used up.
struct Arguments {
    template <class T>
    T Take() {
        std::array<uint8_t, sizeof(T)> bytes = {};
        for (size_t i = 0; i < sizeof(T) && next != end; ++i) bytes[i] = *next++;
        return std::bit_cast<T>(bytes);
    }
    uint8_t Byte() { return Take<uint8_t>(); }
    // Near the epoch's points most of the time, or few calls would get past the length test.
    uint32_t Count() {
        const uint8_t kind = Byte();
        return kind < 250 ? kind % 64 : Take<uint32_t>();
    }
    const uint8_t* next;
    const uint8_t* end;
};

int32_t Expect(int32_t result) {
    corvantis_fuzz::Require(result >= 0 && result <= 9 && result != 3 && result != 8);
    return result;
}

// As many bytes for every type, so that an input keeps its later calls when a type is changed.
template <class Record>
Record TakeRecord(Arguments& from) {
    static std::array<uint16_t, 64> wave;
    Record record = {};
    const auto bytes = from.Take<std::array<uint8_t, 48>>();
    const uint32_t pre = from.Count(), points = from.Count(), total = pre + points;
    const uint32_t rest = static_cast<uint32_t>(epochhdr->epochPoints) - total;
    const uint32_t tail = from.Byte() == 0 ? from.Count() : rest;
    if constexpr (requires { record.samples; }) {
        record = {wave.data(), static_cast<int32_t>(total) % 65};
    } else if constexpr (requires { record.count; }) {
        record.count = static_cast<int32_t>(pre < 64 ? pre % 5 : pre);
    } else {
        static_assert(sizeof record <= sizeof bytes);
        std::memcpy(&record, bytes.data(), sizeof record);
    }
    if constexpr (requires { record.tailPoints; }) {
        record.points = static_cast<int32_t>(points);
        record.prePoints = static_cast<int32_t>(pre);
        record.tailPoints = static_cast<int32_t>(tail);
    } else if constexpr (requires { record.points; }) {
        record.points = static_cast<int32_t>(total);
    }
    return record;
}

using Call = void (*)(Arguments&);

// The first way to build a type, or the second, to add it to a sum.
template <auto build, auto... add>
void Install(Arguments& from) {
    const auto install = [&]<class Record>(int32_t (*)(int32_t, Record*)) {
        auto record = TakeRecord<std::remove_const_t<Record>>(from);
        const int32_t channel = from.Take<int8_t>() % 5;
        const bool isAdded = from.Byte() % 2 != 0 && sizeof...(add) > 0;
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
constexpr Call kInstalls[] = {Install<ITCSineParams, ITCAddSineParams>,
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

void SetUp(Arguments& from) {
    const char* const channels[] = {"0", "10", "D3", "0123", "4567", "", "01234", "x"};
    const char* const inputs = channels[from.Byte() % 8];
    Expect(ITCSetSeq(inputs, channels[from.Byte() % 8]));
    if (from.Byte() == 0) epochhdr->sequenceLength = from.Take<int32_t>();
    const int32_t interval = from.Take<uint16_t>() * 2;
    const auto points = static_cast<int32_t>(from.Count());
    Expect(ITCSetAcqParams(interval, points, from.Take<int8_t>(), 0));
}

void ReadBack(Arguments& from) {
    const int32_t epoch = from.Take<int8_t>();
    const uint32_t channel = from.Byte() % 5;
    int32_t value = 0;
    for (auto* retrieve : {ITCRetrieveEpoch, ITCRetrieveEpochStm}) Expect(retrieve(epoch));
    Expect(ITCRetrieveEpochStmGClamp(epoch, channel));
    Expect(ITCRetrieveRandomSeed(&value, channel));
    value = from.Take<int32_t>();
    Expect(ITCNewRandomSeed(value, channel, from.Byte()));
}

void SpoilHeaders(Arguments& from) {
    filehdr->version = from.Take<int8_t>();
    epochhdr->stimType[0] = from.Take<int8_t>();
}

constexpr Call kCalls[] = {
    SetUp,
    [](Arguments& from) { kInstalls[from.Byte() % corvantis::kLargestType](from); },
    [](Arguments&) { Expect(ITCUpdateStm()); },
    [](Arguments&) { Expect(ITCSaveToFile()); },
    ReadBack,
    [](Arguments& from) { Expect(ITCFreeParams(from.Byte() % 5)); },
    SpoilHeaders};

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
    Arguments arguments = {data, data + size};
    for (int calls = 0; calls < 64 && arguments.next != arguments.end; ++calls)
        kCalls[arguments.Byte() % std::size(kCalls)](arguments);
    corvantis_fuzz::ReleaseStimuli();
    ITCCloseFile();
    ExcitatoryG = InhibitoryG = nullptr;
    return 0;
}
