// Reading whole epochs into the caller's memory.
#include <algorithm>
#include <cstring>

#include "Corvantis.h"
#include "ITCFileAccess/DataFile.h"
#include "ITCInitialize/State.h"
#include "ITCStimulus/Slots.h"
#include "ITCUtilities/Memory.h"

namespace corvantis {
namespace {

void CopySamples(const uint16_t* samples, uint16_t* destination) {
    std::copy_n(samples, CurrentSampleCount().value_or(0), destination);
}

// An array that the global pointed to before is not freed: the application may have put it there.
bool AllocateConductance(float*& conductance, int64_t points) {
    conductance = AllocateArray<float>(points).release();
    return conductance != nullptr;
}

// Two arrays that the rest of the file cannot fill are not worth their memory.
bool FileHoldsConductances(int32_t points) {
    return points >= 0 && int64_t{8} * points <= FileSize(OpenStream());
}

}  // namespace
}  // namespace corvantis

int32_t ITCReadEpoch(int32_t epoch, uint16_t* destination) {
    const int32_t result = ITCRetrieveEpoch(epoch);
    if (result == ITC_SUCCESS) corvantis::CopySamples(corvantis::InputSamples(), destination);
    return result;
}

int32_t ITCReadEpochStm(int32_t epoch, uint16_t* destination) {
    const int32_t result = ITCRetrieveEpochStm(epoch);
    if (result == ITC_SUCCESS) corvantis::CopySamples(corvantis::OutputSamples(), destination);
    return result;
}

int32_t ITCReadEpochComment(int32_t epoch, char* destination) {
    if (ITCEpochParameters(epoch) != ITC_SUCCESS) return ITC_FILE_ERROR;
    const char* comment = corvantis::CurrentEpochHeader().epochComment;
    std::memcpy(destination, comment, strnlen(comment, ITC_COMMENT_LENGTH));
    return ITC_SUCCESS;
}

int32_t ITCReadEpochStmGClamp(int32_t epoch, uint32_t channel, float* excitatory,
                              float* inhibitory) {
    using namespace corvantis;
    if (ITCEpochParameters(epoch) != ITC_SUCCESS) return ITC_FILE_ERROR;
    if (!IsChannel(channel) || SlotType(channel) != ITC_STIMULUS_DYNAMIC_CLAMP)
        return ITC_FILE_ERROR;
    const int32_t points = CurrentEpochHeader().epochPoints;
    // More than the buffers hold is refused below, and first of all.
    const bool isTooLarge = CurrentSampleCount().value_or(0) > BufferCapacity();
    if (isTooLarge) return ITCRetrieveEpochStmGClamp(epoch, channel);
    if (!FileHoldsConductances(points)) return ITC_FILE_ERROR;
    if (!AllocateConductance(ExcitatoryG, points)) return ITC_OUT_OF_MEMORY;
    if (!AllocateConductance(InhibitoryG, points)) return ITC_OUT_OF_MEMORY;
    const int32_t result = ITCRetrieveEpochStmGClamp(epoch, channel);
    if (result != ITC_SUCCESS) return result;
    std::copy_n(ExcitatoryG, points, excitatory);
    std::copy_n(InhibitoryG, points, inhibitory);
    return ITC_SUCCESS;
}
