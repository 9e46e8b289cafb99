// Any bytes as a sequence of calls: acquisition set-up, stimuli, sums, saving and reading back,
// with arguments from the bytes. Every result must be one of the documented codes.
#include <array>
#include <cstdlib>
#include <cstring>

#include "Corvantis.h"
#include "Session.h"

namespace {

constexpr std::array<uint8_t, 1> kNoBytes = {};

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
    // Near the epoch's points most of the time, or few calls would get past the length test.
    int32_t Count() {
        const uint8_t kind = Take<uint8_t>();
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
    if (arguments.Take<uint8_t>() == 0) record.tailPoints = arguments.Count();
    return record;
}

template <class Record>
void Install(Arguments& arguments, int32_t (*build)(int32_t, const Record*),
             int32_t (*add)(uint32_t, const Record*)) {
    const Record record = TakeRuns<Record>(arguments);
    const int32_t channel = arguments.Take<int8_t>() % 5;
    if (add != nullptr && arguments.Take<uint8_t>() % 2 == 0) {
        Expect(add(static_cast<uint32_t>(channel), &record));
    } else {
        Expect(build(channel, &record));
    }
}

void InstallWave(Arguments& arguments) {
    static std::array<uint16_t, 64> wave;
    const ITCFilewaveParameters record = {wave.data(), arguments.Count() % 65};
    const int32_t channel = arguments.Take<int8_t>() % 5;
    Expect(arguments.Take<uint8_t>() % 2 == 0
               ? ITCAddFilewaveParams(static_cast<uint32_t>(channel), &record)
               : ITCFilewaveParams(channel, &record));
}

void InstallSum(Arguments& arguments) {
    ITCSummedParameters sum;
    std::memset(&sum, 0, sizeof sum);
    sum.count = arguments.Take<uint8_t>() == 0 ? arguments.Take<int32_t>() : arguments.Count() % 5;
    Expect(ITCSummedParams(arguments.Take<int8_t>() % 5, &sum));
}

void InstallDynamicClamp(Arguments& arguments) {
    const auto record = arguments.Take<ITCGClampParameters>();
    Expect(ITCGClampParams(arguments.Take<int8_t>() % 5, &record, arguments.Take<int16_t>()));
}

void SetUp(Arguments& arguments) {
    const char* const inputs[] = {"0", "01", "D3", "0123", "4567", "", "01234", "x"};
    const char* const text = inputs[arguments.Take<uint8_t>() % 8];
    const char* const outputs[] = {"0", "10", "1D", "3210", "0123", "", "01230", "0"};
    Expect(ITCSetSeq(text, outputs[arguments.Take<uint8_t>() % 8]));
    if (arguments.Take<uint8_t>() == 0) epochhdr->sequenceLength = arguments.Take<int32_t>();
    const int32_t interval = arguments.Take<uint16_t>() * 2;
    Expect(ITCSetAcqParams(interval, arguments.Count(), arguments.Take<int8_t>(), 0));
}

void ReadBack(Arguments& arguments) {
    const int32_t epoch = arguments.Take<int8_t>();
    const uint32_t channel = arguments.Take<uint8_t>() % 5;
    int32_t value = 0;
    Expect(ITCRetrieveEpoch(epoch));
    Expect(ITCRetrieveEpochStm(epoch));
    Expect(ITCRetrieveEpochStmGClamp(epoch, channel));
    Expect(ITCRetrieveRandomSeed(&value, channel));
    Expect(ITCNewRandomSeed(arguments.Take<int32_t>(), channel, arguments.Take<uint8_t>()));
}

void Call(Arguments& arguments) {
    switch (arguments.Take<uint8_t>() % 18) {
        case 0:
            return SetUp(arguments);
        case 1:
            return Install<ITCSineParameters>(arguments, ITCSineParams, ITCAddSineParams);
        case 2:
            return Install<ITCNoiseParameters>(arguments, ITCNoiseParams, ITCAddNoiseParams);
        case 3:
            return Install<ITCPulseParameters>(arguments, ITCPulseParams, ITCAddPulseParams);
        case 4:
            return Install<ITCRampParameters>(arguments, ITCRampParams, ITCAddRampParams);
        case 5:
            return InstallWave(arguments);
        case 6:
            return InstallSum(arguments);
        case 7:
            return InstallDynamicClamp(arguments);
        case 8:
            return Install<ITCTrigSeriesParameters>(arguments, ITCTrigSeriesParams, nullptr);
        case 9:
            return Install<ITCSegmentedNoiseParameters>(arguments, ITCSegmentedNoiseParams,
                                                        ITCAddSegmentedNoiseParams);
        case 10:
            return Install<ITCBinaryNoiseParameters>(arguments, ITCBinaryNoiseParams,
                                                     ITCAddBinaryNoiseParams);
        case 11:
            return Install<ITCCirclePulseParameters>(arguments, ITCCirclePulseParams,
                                                     ITCAddCirclePulseParams);
        case 12:
            return Install<ITCAlternateVoltageParameters>(arguments, ITCAltVoltageParams,
                                                          ITCAddAltVoltParams);
        case 13:
            return Expect(ITCUpdateStm());
        case 14:
            return Expect(ITCSaveToFile());
        case 15:
            return ReadBack(arguments);
        case 16:
            return Expect(ITCFreeParams(arguments.Take<uint8_t>() % 5));
        default:
            filehdr->version = arguments.Take<int8_t>();
            epochhdr->stimType[arguments.Take<uint8_t>() % 4] = arguments.Take<int8_t>();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static std::array<float, corvantis_fuzz::kBufferSamples> conductance;
    corvantis_fuzz::StartLibrary();
    std::memset(epochhdr, 0, sizeof *epochhdr);
    std::memset(filehdr, 0, sizeof *filehdr);
    filehdr->version = ITC_FILE_VERSION;
    ExcitatoryG = conductance.data();
    InhibitoryG = conductance.data();
    const corvantis_fuzz::MemoryFile file(kNoBytes.data(), 0);
    Expect(ITCCreateFile(file.Path().c_str(), 1));
    Arguments arguments(data, size);
    for (int calls = 0; calls < 64 && !arguments.Empty(); ++calls) Call(arguments);
    corvantis_fuzz::ReleaseStimuli();
    ITCCloseFile();
    ExcitatoryG = nullptr;
    InhibitoryG = nullptr;
    return 0;
}
