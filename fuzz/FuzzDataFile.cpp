// Any bytes as a data file: every read, getter and recomputation that the library offers.
#include <array>
#include <numeric>
#include <utility>

#include "Session.h"

namespace {

// Each call reads the epoch anew; without the release the components of sums would be lost.
template <class... Parameters, class... Arguments>
void Read(int32_t (*function)(Parameters...), Arguments... arguments) {
    function(arguments...);
    corvantis_fuzz::ReleaseStimuli();
}

void ReadFields(int32_t epoch, int32_t channel, int32_t component) {
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
    for (auto* getter : {ITCGetStmType, ITCGetStmAmp, ITCGetStmMean, ITCGetStmPts, ITCGetStmPrePts,
                         ITCGetStmTailPts, ITCGetSeed})
        Read(getter, epoch, channel, component, &number);
    for (auto* getter : {ITCGetWavelength, ITCGetDigitalOutput}) Read(getter, epoch, &word);
    Read(ITCGetLEDSetting, epoch, channel, &word);
    Read(ITCGetTemperature, epoch, &real);
}

void ReadSamples(int32_t epoch, int32_t channel) {
    static std::array<uint16_t, corvantis_fuzz::kBufferSamples> samples;
    static std::array<float, corvantis_fuzz::kBufferSamples> excitatory, inhibitory;
    static std::array<char, ITC_COMMENT_LENGTH> comment;
    for (auto* read : {ITCReadEpoch, ITCReadEpochStm}) Read(read, epoch, samples.data());
    Read(ITCReadEpochComment, epoch, comment.data());
    Read(ITCReadEpochStmGClamp, epoch, static_cast<uint32_t>(channel), excitatory.data(),
         inhibitory.data());
    for (float** block : {&ExcitatoryG, &InhibitoryG}) ITCFree(std::exchange(*block, nullptr));
}

}  // namespace

// Of a channel, a component and an epoch that the sum of the bytes chooses: all of them for every
// file would be few files.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const int32_t components[] = {0, 1, 255, 256, -1};
    corvantis_fuzz::StartLibrary();
    const corvantis_fuzz::MemoryFile file(data, size);
    const uint32_t choice = std::accumulate(data, data + size, uint32_t{0});
    ITCOpenFileForInput(file.path.c_str());
    int32_t epochs = 0;
    ITCGetNumberEpochs(&epochs);
    if (epochs > 0) {
        const auto epoch = static_cast<int32_t>(choice / 30 % static_cast<uint32_t>(epochs));
        const int32_t channel = static_cast<int32_t>(choice % 6) - 1;
        ReadFields(epoch, channel, components[choice / 6 % 5]);
        ReadSamples(epoch, channel);
        corvantis_fuzz::ReachFirstEpoch();
    }
    ITCCloseOpenFile();
    return 0;
}
