// Every read, getter and recomputation that the library offers, on one data file.
#include <array>

#include "Corvantis.h"
#include "Session.h"

namespace corvantis_fuzz {
namespace {

// Each call reads the epoch anew; without the release the components of sums would be lost.
template <class... Parameters, class... Arguments>
void Read(int32_t (*function)(Parameters...), Arguments... arguments) {
    function(arguments...);
    ReleaseStimuli();
}

void ReadSamples(int32_t epoch) {
    static std::array<uint16_t, kBufferSamples> samples;
    static std::array<char, ITC_COMMENT_LENGTH> comment;
    Read(ITCReadEpoch, epoch, samples.data());
    Read(ITCReadEpochStm, epoch, samples.data());
    Read(ITCReadEpochComment, epoch, comment.data());
}

void ReadConductances(int32_t epoch, uint32_t channel) {
    static std::array<float, kBufferSamples> excitatory;
    static std::array<float, kBufferSamples> inhibitory;
    ExcitatoryG = nullptr;
    InhibitoryG = nullptr;
    Read(ITCReadEpochStmGClamp, epoch, channel, excitatory.data(), inhibitory.data());
    ITCFree(ExcitatoryG);
    ITCFree(InhibitoryG);
    ExcitatoryG = nullptr;
    InhibitoryG = nullptr;
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

// An epoch, a channel, a component and a kind of reading for each file: all of them for every file
// would be few files.
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

void ExerciseFile(const std::string& path, uint32_t choice) {
    ITCOpenFileForInput(path.c_str());
    int32_t epochs = 0;
    ITCGetNumberEpochs(&epochs);
    if (epochs > 0) {
        ExerciseEpoch(0, choice);
        ExerciseEpoch(static_cast<int32_t>(choice % static_cast<uint32_t>(epochs)), choice);
    }
    ITCCloseOpenFile();
}

}  // namespace corvantis_fuzz
