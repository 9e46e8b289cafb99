// Any bytes as a sequence of calls: acquisition set-up, stimuli, sums, saving and reading back,
// with arguments from the bytes. Every result must be one of the documented codes.
#include <array>
#include <cstring>
#include <type_traits>

#include "ITCFileIO/StimulusTypes.h"
#include "Session.h"

namespace {

// Takes arguments from the front of the input; zeros when it is used up.
class Arguments {
  public:
    Arguments(const uint8_t* data, size_t size) : next_(data), end_(data + size) {}
    bool Empty() const { return next_ == end_; }
    template <class T>
    T Take() {
        T value;
        std::memset(&value, 0, sizeof value);
        for (size_t i = 0; i < sizeof value && next_ != end_; ++i) {
            reinterpret_cast<uint8_t*>(&value)[i] = *next_++;
        }
        return value;
    }
    uint8_t Byte() { return Take<uint8_t>(); }
    int32_t Channel() { return Take<int8_t>() % 5; }
    // Near the epoch's points most of the time, or few calls would get past the length test.
    int32_t Count() {
        const uint8_t kind = Byte();
        return kind < 250 ? kind % 64 : Take<int32_t>();
    }

  private:
    const uint8_t* next_;
    const uint8_t* end_;
};

void Expect(int32_t result) {
    const bool documented = (result >= 0 && result <= 9) && result != 3 && result != 8;
    if (!documented) std::abort();
}

template <class Record>
Record TakeRuns(Arguments& arguments) {
    Record record = arguments.Take<Record>();
    record.prePoints = arguments.Count();
    record.points = arguments.Count();
    record.tailPoints = static_cast<int32_t>(static_cast<uint32_t>(epochhdr->epochPoints) -
                                             static_cast<uint32_t>(record.prePoints) -
                                             static_cast<uint32_t>(record.points));
    if (arguments.Byte() == 0) record.tailPoints = arguments.Count();
    return record;
}

template <auto build, auto add, class Record>
void InstallRecord(Arguments& arguments, const Record& record) {
    const int32_t channel = arguments.Channel();
    if constexpr (!std::is_null_pointer_v<decltype(add)>) {
        if (arguments.Byte() % 2 == 0) return Expect(add(static_cast<uint32_t>(channel), &record));
    }
    Expect(build(channel, &record));
}

template <class Record, auto build, auto add>
void Install(Arguments& arguments) {
    InstallRecord<build, add>(arguments, TakeRuns<Record>(arguments));
}

void InstallWave(Arguments& arguments) {
    static std::array<uint16_t, 64> wave;
    const ITCFilewaveParameters record = {wave.data(), arguments.Count() % 65};
    InstallRecord<ITCFilewaveParams, ITCAddFilewaveParams>(arguments, record);
}

void InstallSum(Arguments& arguments) {
    ITCSummedParameters sum;
    std::memset(&sum, 0, sizeof sum);
    sum.count = arguments.Byte() == 0 ? arguments.Take<int32_t>() : arguments.Count() % 5;
    Expect(ITCSummedParams(arguments.Channel(), &sum));
}

void InstallDynamicClamp(Arguments& arguments) {
    const auto record = arguments.Take<ITCGClampParameters>();
    const int32_t channel = arguments.Channel();
    Expect(ITCGClampParams(channel, &record, arguments.Take<int16_t>()));
}

void SetUp(Arguments& arguments) {
    const char* const inputs[] = {"0", "01", "D3", "0123", "4567", "", "01234", "x"};
    const char* const outputs[] = {"0", "10", "1D", "3210", "0123", "", "01230", "0"};
    const char* const text = inputs[arguments.Byte() % 8];
    Expect(ITCSetSeq(text, outputs[arguments.Byte() % 8]));
    if (arguments.Byte() == 0) epochhdr->sequenceLength = arguments.Take<int32_t>();
    const int32_t interval = arguments.Take<uint16_t>() * 2;
    const int32_t points = arguments.Count();
    Expect(ITCSetAcqParams(interval, points, arguments.Take<int8_t>(), 0));
}

void ReadBack(Arguments& arguments) {
    const int32_t epoch = arguments.Take<int8_t>();
    const uint32_t channel = arguments.Byte() % 5;
    int32_t value = 0;
    Expect(ITCRetrieveEpoch(epoch));
    Expect(ITCRetrieveEpochStm(epoch));
    Expect(ITCRetrieveEpochStmGClamp(epoch, channel));
    Expect(ITCRetrieveRandomSeed(&value, channel));
    const int32_t seed = arguments.Take<int32_t>();
    Expect(ITCNewRandomSeed(seed, channel, arguments.Byte()));
}

void SpoilHeaders(Arguments& arguments) {
    filehdr->version = arguments.Take<int8_t>();
    int8_t& type = epochhdr->stimType[arguments.Byte() % 4];
    type = arguments.Take<int8_t>();
}

void InstallGeneric(Arguments& arguments) {
    const auto record = TakeRuns<ITCGenericParameters>(arguments);
    Expect(ITCGenericParams(&record));
}

void InstallSpatial(Arguments& arguments) {
    const auto record = arguments.Take<ITCSpatialStmParameters>();
    Expect(ITCSpatialParams(arguments.Channel(), &record));
}

// No default: a new type is not to be forgotten here.
void InstallAny(Arguments& arguments) {
    switch (static_cast<ITCStimulusType>(1 + arguments.Byte() % corvantis::kLargestType)) {
        case ITC_STIMULUS_SINE:
            return Install<ITCSineParameters, ITCSineParams, ITCAddSineParams>(arguments);
        case ITC_STIMULUS_NOISE:
            return Install<ITCNoiseParameters, ITCNoiseParams, ITCAddNoiseParams>(arguments);
        case ITC_STIMULUS_PULSE:
            return Install<ITCPulseParameters, ITCPulseParams, ITCAddPulseParams>(arguments);
        case ITC_STIMULUS_RAMP:
            return Install<ITCRampParameters, ITCRampParams, ITCAddRampParams>(arguments);
        case ITC_STIMULUS_FILEWAVE:
            return InstallWave(arguments);
        case ITC_STIMULUS_GENERIC:
            return InstallGeneric(arguments);
        case ITC_STIMULUS_SUMMED:
            return InstallSum(arguments);
        case ITC_STIMULUS_TRIGGER_SERIES:
            return Install<ITCTrigSeriesParameters, ITCTrigSeriesParams, nullptr>(arguments);
        case ITC_STIMULUS_SEGMENTED_NOISE:
            return Install<ITCSegmentedNoiseParameters, ITCSegmentedNoiseParams,
                           ITCAddSegmentedNoiseParams>(arguments);
        case ITC_STIMULUS_BINARY_NOISE:
            return Install<ITCBinaryNoiseParameters, ITCBinaryNoiseParams, ITCAddBinaryNoiseParams>(
                arguments);
        case ITC_STIMULUS_DYNAMIC_CLAMP:
            return InstallDynamicClamp(arguments);
        case ITC_STIMULUS_CIRCLE_PULSE:
            return Install<ITCCirclePulseParameters, ITCCirclePulseParams, ITCAddCirclePulseParams>(
                arguments);
        case ITC_STIMULUS_ALTERNATING_VOLTAGE:
            return Install<ITCAlternateVoltageParameters, ITCAltVoltageParams, ITCAddAltVoltParams>(
                arguments);
        case ITC_STIMULUS_SPATIAL:
            return InstallSpatial(arguments);
    }
}

constexpr void (*kCalls[])(Arguments&) = {
    SetUp,
    InstallAny,
    [](Arguments&) { Expect(ITCUpdateStm()); },
    [](Arguments&) { Expect(ITCSaveToFile()); },
    ReadBack,
    [](Arguments& arguments) { Expect(ITCFreeParams(arguments.Byte() % 5)); },
    SpoilHeaders};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static std::array<float, corvantis_fuzz::kBufferSamples> conductance;
    corvantis_fuzz::StartLibrary();
    std::memset(epochhdr, 0, sizeof *epochhdr);
    std::memset(filehdr, 0, sizeof *filehdr);
    filehdr->version = ITC_FILE_VERSION;
    ExcitatoryG = InhibitoryG = conductance.data();
    const corvantis_fuzz::MemoryFile file;
    Expect(ITCCreateFile(file.Path().c_str(), 1));
    Arguments arguments(data, size);
    for (int calls = 0; calls < 64 && !arguments.Empty(); ++calls) {
        kCalls[arguments.Byte() % std::size(kCalls)](arguments);
    }
    corvantis_fuzz::ReleaseStimuli();
    ITCCloseFile();
    ExcitatoryG = InhibitoryG = nullptr;
    return 0;
}
