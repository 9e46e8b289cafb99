// Any bytes as a data file: every read, getter and recomputation that the library offers.
#include <array>
#include <numeric>

#include "Session.h"

namespace {

using corvantis_fuzz::kBufferSamples;

// Each call reads the epoch anew; without the release the components of sums would be lost.
template <class... Parameters, class... Arguments>
void Read(int32_t (*function)(Parameters...), Arguments... arguments) {
    function(arguments...);
    corvantis_fuzz::ReleaseStimuli();
}

void ReadSamples(int32_t epoch) {
    static std::array<uint16_t, kBufferSamples> samples;
    static std::array<char, ITC_COMMENT_LENGTH> comment;
    Read(ITCReadEpoch, epoch, samples.data());
    Read(ITCReadEpochStm, epoch, samples.data());
    Read(ITCReadEpochComment, epoch, comment.data());
}

void ReadConductances(int32_t epoch, uint32_t channel) {
    static std::array<float, kBufferSamples> excitatory, inhibitory;
    ExcitatoryG = InhibitoryG = nullptr;
    Read(ITCReadEpochStmGClamp, epoch, channel, excitatory.data(), inhibitory.data());
    for (float** block : {&ExcitatoryG, &InhibitoryG}) {
        ITCFree(*block);
        *block = nullptr;
    }
}

void ReadHeaderFields(int32_t epoch, int32_t channel) {
    int32_t number = 0;
    float real = 0;
    uint16_t word = 0;
    for (auto* getter : {ITCGetEpochSegments, ITCGetEpochSize, ITCGetSamplingInterval}) {
        Read(getter, epoch, &number);
    }
    for (auto* getter : {ITCGetAmpGain, ITCGetAmpMode, ITCGetNDF, ITCGetUserValue, ITCGetGClampERev,
                         ITCGetGClampIRev}) {
        Read(getter, epoch, channel, &real);
    }
    for (auto* getter : {ITCGetMeanOutput, ITCGetInputChan, ITCGetOutputChan,
                         ITCGetSegmentForOutputChan, ITCGetSegmentForInputChan}) {
        Read(getter, epoch, channel, &number);
    }
    Read(ITCGetLEDSetting, epoch, channel, &word);
    Read(ITCGetWavelength, epoch, &word);
    Read(ITCGetDigitalOutput, epoch, &word);
    Read(ITCGetTemperature, epoch, &real);
}

void ReadStimulusFields(int32_t epoch, int32_t channel, int32_t component) {
    int32_t value = 0;
    for (auto* getter : {ITCGetStmType, ITCGetStmAmp, ITCGetStmMean, ITCGetStmPts, ITCGetStmPrePts,
                         ITCGetStmTailPts, ITCGetSeed}) {
        Read(getter, epoch, channel, component, &value);
    }
}

// A channel, a component and a kind of reading for each file: all of them for every file would be
// few files.
void ExerciseEpoch(int32_t epoch, uint32_t choice) {
    const int32_t channel = static_cast<int32_t>(choice / 4 % 6) - 1;
    const int32_t components[] = {0, 1, 255, 256, -1};
    switch (choice % 4) {
        case 0:
            return ReadHeaderFields(epoch, channel);
        case 1:
            return ReadStimulusFields(epoch, channel, components[choice / 24 % 5]);
        case 2:
            return ReadConductances(epoch, static_cast<uint32_t>(channel));
        default:
            return ReadSamples(epoch);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    corvantis_fuzz::StartLibrary();
    const corvantis_fuzz::MemoryFile file(data, size);
    const uint32_t choice = std::accumulate(data, data + size, uint32_t{0});
    ITCOpenFileForInput(file.Path().c_str());
    int32_t epochs = 0;
    ITCGetNumberEpochs(&epochs);
    if (epochs > 0) {
        ExerciseEpoch(0, choice);
        ExerciseEpoch(static_cast<int32_t>(choice % static_cast<uint32_t>(epochs)), choice);
    }
    ITCCloseOpenFile();
    return 0;
}
