// Reading an epoch of the data file back into the current state.
#include "Corvantis.h"
#include "ITCFileAccess/DataFile.h"
#include "ITCFileIO/ArrayCodec.h"
#include "ITCInitialize/PositionTable.h"
#include "ITCInitialize/State.h"
#include "ITCStimulus/Slots.h"
#include "ITCUtilities/Diagnostics.h"

namespace corvantis {
namespace {

constexpr int kSamplesTooLargeLine = 703;
constexpr int kStimulusTooLargeLine = 759;
constexpr int kConductancesTooLargeLine = 815;
constexpr int64_t kEpochHeaderSize = sizeof(ITCEpochHeader);
constexpr int64_t kParametersPerEntry = 8;

bool IsEpoch(int32_t epoch) {
    return epoch >= 0 && epoch < CurrentFileHeader().numEpochs && epoch < PositionTableEntries();
}

bool ReadEpochHeader(FILE* stream, int32_t epoch) {
    RememberMove();
    return SeekTo(stream, EpochPosition[epoch]) &&
           Read_ITCEpochHeader(stream, &CurrentEpochHeader(), CurrentFileHeader().version);
}

// The size test comes last, so that the epoch's header and records can be looked at all the same.
int32_t RetrieveParameters(int32_t epoch, int tooLargeLine) {
    const int32_t result = ITCEpochParameters(epoch);
    if (result != ITC_SUCCESS) return result;
    const auto samples = CurrentSampleCount();
    if (!samples) return ITC_FILE_ERROR;
    if (*samples <= BufferCapacity()) return ITC_SUCCESS;
    PrintFailPoint(kFileAccessModule, tooLargeLine);
    return ITC_TOO_LARGE;
}

int32_t ReadConductances(FILE* stream, int32_t epoch) {
    const ITCEpochHeader& header = CurrentEpochHeader();
    // 8 bytes of parameters per entry, whatever the entries' types: the arrays are found only
    // behind a single entry. Readers of longer sequences get what lies there.
    const int64_t parameters = kParametersPerEntry * header.sequenceLength;
    const size_t points = static_cast<size_t>(header.epochPoints);
    if (!SeekTo(stream, EpochPosition[epoch] + kEpochHeaderSize + parameters))
        return ITC_FILE_ERROR;
    if (!ReadArray<float>(stream, ExcitatoryG, points)) return ITC_FILE_ERROR;
    return ReadArray<float>(stream, InhibitoryG, points) ? ITC_SUCCESS : ITC_FILE_ERROR;
}

}  // namespace
}  // namespace corvantis

int32_t ITCEpochParameters(int32_t epoch) {
    using namespace corvantis;
    if (!IsStarted()) return ITC_NOT_STARTED;
    FILE* stream = OpenStream();
    if (stream == nullptr || !IsEpoch(epoch)) return ITC_FILE_ERROR;
    if (!ReadEpochHeader(stream, epoch)) return ITC_FILE_ERROR;
    for (int32_t entry = 0; entry < CurrentEpochHeader().sequenceLength; ++entry) {
        const int32_t result = ITCReadStmParams(static_cast<uint32_t>(entry));
        if (result != ITC_SUCCESS) return ITC_FILE_ERROR;
    }
    return ITC_SUCCESS;
}

int32_t ITCRetrieveEpoch(int32_t epoch) {
    using namespace corvantis;
    const int32_t result = RetrieveParameters(epoch, kSamplesTooLargeLine);
    if (result != ITC_SUCCESS) return result;
    const size_t samples = static_cast<size_t>(CurrentSampleCount().value_or(0));
    if (samples > 0 && InputSamples() == nullptr) return ITC_TOO_LARGE;
    return ReadArray<uint16_t>(OpenStream(), InputSamples(), samples) ? ITC_SUCCESS
                                                                      : ITC_FILE_ERROR;
}

int32_t ITCRetrieveEpochStm(int32_t epoch) {
    using namespace corvantis;
    const int32_t result = RetrieveParameters(epoch, kStimulusTooLargeLine);
    if (result != ITC_SUCCESS) return result;
    return ITCUpdateStm() == ITC_SUCCESS ? ITC_SUCCESS : ITC_STIMULUS_ERROR;
}

int32_t ITCRetrieveEpochStmGClamp(int32_t epoch, uint32_t channel) {
    using namespace corvantis;
    const int32_t result = RetrieveParameters(epoch, kConductancesTooLargeLine);
    if (result != ITC_SUCCESS) return result;
    if (!IsChannel(channel) || SlotType(channel) != ITC_STIMULUS_DYNAMIC_CLAMP) {
        return ITC_STIMULUS_ERROR;
    }
    // Without entries there are no conductances, and the size test has said nothing of the points.
    if (CurrentEpochHeader().sequenceLength == 0) return ITC_STIMULUS_ERROR;
    if (ExcitatoryG == nullptr || InhibitoryG == nullptr) return ITC_STIMULUS_ERROR;
    return ReadConductances(OpenStream(), epoch);
}
