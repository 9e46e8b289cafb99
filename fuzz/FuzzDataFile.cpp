// Any bytes as a data file: every read, getter and recomputation that the library offers.
#include <array>
#include <numeric>
#include <utility>

#include "Session.h"

namespace {

constexpr int32_t kComponents[] = {0, 1, 255, 256, -1};

std::array<uint16_t, corvantis_fuzz::kBufferSamples> samples;
std::array<float, corvantis_fuzz::kBufferSamples> excitatory, inhibitory;
std::array<char, ITC_COMMENT_LENGTH> comment;

// Each call reads the epoch anew; without the release the components of sums would be lost.
template <class... Parameters, class... Arguments>
void Read(int32_t (*function)(Parameters...), Arguments... arguments) {
    function(arguments...);
    corvantis_fuzz::ReleaseStimuli();
}

void ReadHeaderFields(int32_t epoch, int32_t channel) {
    int32_t number = 0;
    float real = 0;
    uint16_t word = 0;
    for (auto* getter : {ITCGetEpochSegments, ITCGetEpochSize, ITCGetSamplingInterval})
        Read(getter, epoch, &number);
    for (auto* getter : {ITCGetAmpGain, ITCGetAmpMode, ITCGetNDF, ITCGetUserValue, ITCGetGClampERev,
                         ITCGetGClampIRev})
        Read(getter, epoch, channel, &real);
    for (auto* getter : {ITCGetMeanOutput, ITCGetInputChan, ITCGetOutputChan,
                         ITCGetSegmentForOutputChan, ITCGetSegmentForInputChan})
        Read(getter, epoch, channel, &number);
    for (auto* getter : {ITCGetWavelength, ITCGetDigitalOutput}) Read(getter, epoch, &word);
    Read(ITCGetLEDSetting, epoch, channel, &word);
    Read(ITCGetTemperature, epoch, &real);
}

// A channel, a component and a kind of reading for each file: all of them for every file would be
// few files.
void ExerciseEpoch(int32_t epoch, uint32_t choice) {
    const int32_t channel = static_cast<int32_t>(choice / 4 % 6) - 1;
    int32_t value = 0;
    if (choice % 4 == 0) return ReadHeaderFields(epoch, channel);
    if (choice % 4 == 1) {
        for (auto* getter : {ITCGetStmType, ITCGetStmAmp, ITCGetStmMean, ITCGetStmPts,
                             ITCGetStmPrePts, ITCGetStmTailPts, ITCGetSeed})
            Read(getter, epoch, channel, kComponents[choice / 24 % 5], &value);
        return;
    }
    if (choice % 4 == 2) {
        Read(ITCReadEpochStmGClamp, epoch, static_cast<uint32_t>(channel), excitatory.data(),
             inhibitory.data());
        for (float** block : {&ExcitatoryG, &InhibitoryG}) ITCFree(std::exchange(*block, nullptr));
        return;
    }
    Read(ITCReadEpoch, epoch, samples.data());
    Read(ITCReadEpochStm, epoch, samples.data());
    Read(ITCReadEpochComment, epoch, comment.data());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    corvantis_fuzz::StartLibrary();
    const corvantis_fuzz::MemoryFile file(data, size);
    const uint32_t choice = std::accumulate(data, data + size, uint32_t{0});
    ITCOpenFileForInput(file.path.c_str());
    int32_t epochs = 0;
    ITCGetNumberEpochs(&epochs);
    if (epochs > 0) {
        ExerciseEpoch(0, choice);
        ExerciseEpoch(static_cast<int32_t>(choice % static_cast<uint32_t>(epochs)), choice);
        corvantis_fuzz::ReachFirstEpoch();
    }
    ITCCloseOpenFile();
    return 0;
}
